#include "desktop/common/Mirror.h"

#include <algorithm>

namespace vesko {

Mirrored::~Mirrored() {
  if (listed_) mirror_.Forget(*this);
}

void Mirrored::Synchronise() {
  changed_ = false;
  ShowState();
}

void Mirrored::SynchroniseIfChanged() {
  if (changed_) Synchronise();
}

void Mirror::SynchroniseIfDue() {
  if (HasChanges() && Clock::now() >= Due()) SynchroniseAll();
}

void Mirror::SynchroniseAll() {
  if (!showing_.empty()) return;  // changes made while showing are shown the next time
  showing_.swap(listed_);
  for (size_t i = 0; i < showing_.size(); ++i) {
    Mirrored* const item = showing_[i];
    if (!item) continue;
    item->listed_ = false;
    item->SynchroniseIfChanged();
  }
  showing_.clear();
  last_ = Clock::now();
}

void Mirror::Forget(Mirrored& item) {
  std::erase(listed_, &item);
  std::replace(showing_.begin(), showing_.end(), &item, static_cast<Mirrored*>(nullptr));
}

}  // namespace vesko
