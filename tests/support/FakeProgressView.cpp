#include "support/FakeProgressView.h"

#include "support/ScriptedSocket.h"

namespace vesko {
namespace {

constexpr int kNo = 1;

}  // namespace

void FakeProgressView::Note(const std::string& what, const Text& text) {
  log.push_back((unloaded ? "after the end " : "") + what + ": " + Narrow(text));
}

void FakeProgressView::ShowError(const Text& text, const Text& title) {
  Note("error", text + u" [" + title + u"]");
}

int FakeProgressView::AskRetry(const Text& question, const Text& title) {
  Note("ask", question + u" [" + title + u"]");
  if (answers.empty()) return kNo;
  const int answer = answers.front();
  answers.pop_front();
  return answer;
}

bool FakeProgressView::AskCredentials(Credentials& credentials) {
  Note("credentials", credentials.server + u"/" + credentials.user + u"/" + credentials.password +
                          (credentials.save_password ? u"/saved" : u"/"));
  return on_credentials && on_credentials(credentials);
}

void FakeProgressView::UnloadWindow() {
  Note("unload", {});
  unloaded = true;
  if (on_unload) on_unload();
}

std::vector<std::string> FakeProgressView::Noted(const std::string& what) const {
  std::vector<std::string> texts;
  for (const std::string& line : log) {
    if (line.starts_with(what + ": ")) texts.push_back(line.substr(what.size() + 2));
  }
  return texts;
}

}  // namespace vesko
