#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "pop3/ProgressView.h"
#include "support/ScriptedSocket.h"

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
  void ShowError(const Text& text, const Text& title) override {
    Note("error", text + u" [" + title + u"]");
  }
  int AskRetry(const Text& question, const Text& title) override {
    Note("ask", question + u" [" + title + u"]");
    if (answers.empty()) return 1;
    const int answer = answers.front();
    answers.pop_front();
    return answer;
  }
  bool AskCredentials(Credentials& credentials) override {
    Note("credentials", credentials.server + u"/" + credentials.user + u"/" + credentials.password +
                            (credentials.save_password ? u"/saved" : u"/"));
    return on_credentials && on_credentials(credentials);
  }
  void UnloadWindow() override {
    Note("unload", {});
    unloaded = true;
    if (on_unload) on_unload();
  }

  /// The lines that begin with `what` and a colon, without that.
  std::vector<std::string> Noted(const std::string& what) const {
    std::vector<std::string> texts;
    for (const std::string& line : log) {
      if (line.starts_with(what + ": ")) texts.push_back(line.substr(what.size() + 2));
    }
    return texts;
  }

  std::vector<std::string> log;
  std::deque<int> answers;                           // to retry questions; "&No" when used up
  std::function<bool(Credentials&)> on_credentials;  // cancelled when empty
  std::function<void()> on_unload;
  bool unloaded = false;

 private:
  void Note(const std::string& what, const Text& text) {
    log.push_back((unloaded ? "after the end " : "") + what + ": " + Narrow(text));
  }
};

}  // namespace vesko
