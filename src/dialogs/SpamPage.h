#pragma once

#include <string>
#include <vector>

#include "config/Configuration.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// A list of keywords with buttons to add, rename and delete one. A keyword is asked for in an
/// input box, and an empty answer changes nothing. Renaming and deleting need a selected keyword;
/// after a deletion the one now at its place is selected, or else the last.
class KeywordEditor {
 public:
  /// The form owns the editor. `kind` is the common part of the controls' names: "SpamSender" makes
  /// "lstSpamSender". `prompt` says in the input box what a keyword is.
  KeywordEditor(Form& form, Toolkit& toolkit, const std::string& kind, Text caption, Text prompt);

  /// The editor as a column. Called once.
  Layout Arrange();

  /// Lists the keywords, empty ones left out, and selects the first.
  void Load(const std::vector<Text>& keywords);

  /// The keywords in their order, as a load of the stored settings would give them.
  std::vector<Text> Keywords() const;

  /// Empties the list.
  void Clear() { list_.Clear(); }

 private:
  // The buttons. Adding selects nothing.
  void Add();
  void Rename();
  void Delete();

  Form& form_;
  Toolkit& toolkit_;
  Text prompt_;
  Label label_;
  ListBox list_;
  ControlArray<CommandButton, 3> buttons_;
};

/// The page "SPAM Mail Filter" of the settings window: keywords for senders and for subjects.
class SpamPage {
 public:
  /// The form owns the page; the toolkit must outlive it.
  SpamPage(Form& form, Toolkit& toolkit);

  /// What stands on the page. Called once.
  Layout Arrange() { return Row({senders_.Arrange(), subjects_.Arrange()}); }

  /// Shows the keywords of a configuration.
  void Load(const Configuration& configuration);
  /// Replaces both lists of the configuration.
  void Store(Configuration& configuration) const;
  /// Empties the lists on the page; the configuration keeps its own.
  void Clear();

 private:
  KeywordEditor senders_;
  KeywordEditor subjects_;
};

}  // namespace vesko
