#include "dialogs/SpamPage.h"

#include <algorithm>
#include <utility>

#include "ui/InputBox.h"

namespace vesko {

KeywordEditor::KeywordEditor(Form& form, Toolkit& toolkit, const std::string& kind, Text caption,
                             Text prompt)
    : form_(form),
      toolkit_(toolkit),
      prompt_(std::move(prompt)),
      label_(form, "lbl" + kind),
      list_(form, "lst" + kind),
      buttons_(form, "cmd" + kind) {
  list_.SetAccessibleName(caption);
  label_.SetCaption(std::move(caption));
  buttons_[0].SetCaption(u"&Add");
  buttons_[0].on_click = [this] { Add(); };
  buttons_[1].SetCaption(u"&Rename");
  buttons_[1].on_click = [this] { Rename(); };
  buttons_[2].SetCaption(u"&Delete");
  buttons_[2].on_click = [this] { Delete(); };
}

Layout KeywordEditor::Arrange() {
  return Column({Item(label_), Item(list_, 1),
                 Row({Item(buttons_[0]), Item(buttons_[1]), Item(buttons_[2])})},
                1);
}

void KeywordEditor::Load(const std::vector<Text>& keywords) {
  list_.Clear();
  for (const Text& keyword : keywords) {
    if (!keyword.empty()) list_.AddItem(keyword);
  }
  if (list_.Count() > 0) list_.SetListIndex(0);
}

/// Joined and split as the registry does it, so that the configuration holds what a load will give.
std::vector<Text> KeywordEditor::Keywords() const {
  std::vector<Text> entries;
  entries.reserve(static_cast<size_t>(list_.Count()));
  for (int i = 0; i < list_.Count(); ++i) entries.push_back(list_.Item(i));
  return Split(Join(entries, kCrLf), kCrLf);
}

// The host may unload the window, which empties the list, while the input box is open.
void KeywordEditor::Add() {
  Text keyword = InputBox(toolkit_, prompt_, u"New Spam Mail");
  if (!keyword.empty() && form_.IsLoaded()) list_.AddItem(std::move(keyword));
}

void KeywordEditor::Rename() {
  const int index = list_.ListIndex();
  if (index < 0) return;
  Text keyword = InputBox(toolkit_, prompt_, u"Rename Spam Mail", list_.Item(index));
  if (!keyword.empty() && form_.IsLoaded()) list_.SetItem(index, std::move(keyword));
}

void KeywordEditor::Delete() {
  const int index = list_.ListIndex();
  if (index < 0) return;
  list_.RemoveItem(index);
  list_.SetListIndex(std::min(index, list_.Count() - 1));
}

SpamPage::SpamPage(Form& form, Toolkit& toolkit)
    : senders_(form, toolkit, "SpamSender", u"Sender Keyword",
               u"Type new spam mail address keyword\r\n"
               u"such as offers@spam.example or @spam.example:"),
      subjects_(form, toolkit, "SpamSubject", u"Subject Keyword",
                u"Type new spam mail subject keyword\r\n"
                u"such as \"ILOVEYOU\" or \"MELISSA\":") {}

void SpamPage::Load(const Configuration& configuration) {
  senders_.Load(configuration.SpamSenders);
  subjects_.Load(configuration.SpamSubjects);
}

void SpamPage::Store(Configuration& configuration) const {
  configuration.SpamSenders = senders_.Keywords();
  configuration.SpamSubjects = subjects_.Keywords();
}

void SpamPage::Clear() {
  senders_.Clear();
  subjects_.Clear();
}

}  // namespace vesko
