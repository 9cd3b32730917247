#include "config/SaveJournal.h"

#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr TextView kMark = u"Complete";

}  // namespace

SaveJournal::SaveJournal(HiveValues& values, const Text& key)
    : values_(values),
      journal_key_(key + u" Pending"),
      settings_(values, key),
      journal_(values, journal_key_) {}

const HiveSettings& SaveJournal::Current() { return IsComplete() ? journal_ : settings_; }

void SaveJournal::Save(const Configuration& configuration) {
  Complete();
  if (Failed()) return;
  journal_.Delete();
  journal_.Save(configuration);
  if (Failed()) return;
  values_.Write(journal_key_, kMark, kRegDword, 1);
  if (!Failed()) Apply(configuration);
}

void SaveJournal::Complete() {
  if (!IsComplete()) return;
  Configuration configuration;
  journal_.Load({}, configuration);
  if (!Failed()) Apply(configuration);
}

/// The mark goes first: without it what is left of a journal means nothing.
void SaveJournal::Apply(const Configuration& configuration) {
  settings_.Save(configuration);
  if (Failed()) return;
  values_.DeleteValue(journal_key_, kMark);
  if (!Failed()) journal_.Delete();
}

bool SaveJournal::IsComplete() {
  int32_t mark = 0;
  IgnoreErrors([&] { mark = values_.ReadNumber(journal_key_, kMark, 0); });
  return mark == 1;
}

}  // namespace vesko
