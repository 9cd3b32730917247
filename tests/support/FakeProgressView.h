#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "pop3/ProgressView.h"

namespace vesko {

/// Notes what a check shows and asks, a line each, and answers as told.
class FakeProgressView : public ProgressView {
 public:
  void ShowCaption(const Text& caption) override { Note("caption", caption); }
  void ShowProgress(const Text& text) override { Note("progress", text); }
  void ShowTime(const Text& text) override { Note("time", text); }
  void ShowCommand(const Text& text) override { Note("lblCmd", text); }
  void SetProgressMaximum(int32_t maximum) override { Note("maximum", Decimal(maximum)); }
  void SetProgressValue(int32_t value) override { Note("value", Decimal(value)); }
  void EnableNext(bool enabled) override { Note("next", enabled ? u"on" : u"off"); }
  void ShowError(const Text& text, const Text& title) override;
  int AskRetry(const Text& question, const Text& title) override;
  bool AskCredentials(Credentials& credentials) override;
  void UnloadWindow() override;

  /// The lines that begin with `what` and a colon, without that.
  std::vector<std::string> Noted(const std::string& what) const;

  std::vector<std::string> log;
  std::deque<int> answers;                           // to retry questions; "&No" when used up
  std::function<bool(Credentials&)> on_credentials;  // cancelled when empty
  std::function<void()> on_unload;
  bool unloaded = false;

 private:
  void Note(const std::string& what, const Text& text);
};

}  // namespace vesko
