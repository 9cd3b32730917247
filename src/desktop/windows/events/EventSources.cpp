#include "desktop/windows/events/EventSources.h"

namespace vesko {

void EventSources::Add(Source& source, HANDLE event) {
  sources_.push_back(&source);
  events_.push_back(event);
}

void EventSources::Remove(const Source& source) {
  for (size_t i = sources_.size(); i-- > 0;) {
    if (sources_[i] != &source) continue;
    sources_.erase(sources_.begin() + static_cast<ptrdiff_t>(i));
    events_.erase(events_.begin() + static_cast<ptrdiff_t>(i));
  }
}

// By position, because a delivery may add or remove sources.
bool EventSources::Deliver() {
  bool delivered = false;
  for (size_t i = 0; i < sources_.size(); ++i) delivered |= sources_[i]->Deliver();
  return delivered;
}

bool EventSources::DeliverWithin(DWORD milliseconds) {
  if (events_.empty()) return false;
  const auto count = static_cast<DWORD>(events_.size());
  return DeliverSignalled(WaitForMultipleObjects(count, events_.data(), FALSE, milliseconds));
}

bool EventSources::DeliverUnlessMessage(DWORD milliseconds) {
  const auto count = static_cast<DWORD>(events_.size());
  return DeliverSignalled(MsgWaitForMultipleObjectsEx(count, events_.data(), milliseconds,
                                                      QS_ALLINPUT, MWMO_INPUTAVAILABLE));
}

bool EventSources::DeliverSignalled(DWORD outcome) {
  const size_t position = outcome - WAIT_OBJECT_0;
  return position < sources_.size() && sources_[position]->Deliver();
}

}  // namespace vesko
