#include "pop3/CheckRig.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

#include "config/mmEncrypt.h"
#include "support/TestLocale.h"

namespace vesko {

Text Mail(const Text& name) {
  return u"From: a@example.org\r\nSubject: " + name + u"\r\nMessage-ID: <" + name +
         u"@example.org>\r\n\r\nbody\r\n";
}

std::string Asked(const std::string& last_command) {
  return "ask: Checking mail is failed on 'pop.example.org'.\r\nLast command was '" + last_command +
         "'.\r\nTry again ? \r\n [Quarnel]";
}

CheckRig::CheckRig()
    : locale([]() -> const Locale& {
        static const std::unique_ptr<Locale> shared = MakeTestLocale(949);
        return *shared;
      }()) {
  configuration.DownLines = 5;
  configuration.WaitTime = 20;
  view.on_unload = [this] { run.WindowUnloaded(); };
}

void CheckRig::AddAccount(const Text& server, const Text& user, const Text& password,
                          const Text& port) {
  const Text scrambled = password.empty() ? Text() : Encrypt(password, locale);
  configuration.AddAccount({u"Home", server, user, scrambled, port, u"1"});
}

void CheckRig::AddMarked(const std::vector<std::pair<Text, int>>& messages, int32_t count,
                         const Maildrop& maildrop) {
  mails.BeginSession(maildrop);
  for (const auto& [name, number] : messages) {
    auto message = std::make_shared<cMessage>(locale);
    message->CreateFromText(Mail(name));
    message->Server = maildrop.server;
    message->SetIndex(number);
    message->Spam = message->Delete = true;
    mails.Add(message);
  }
  mails.CompleteSession(count);
}

void CheckRig::When(const std::string& line, std::function<void()> deed) {
  pump.on_turn = [this, line, deed = std::move(deed)](int) {
    if (socket.sent.empty() || socket.sent.back() != line) return;
    const auto now = deed;  // the next line destroys this lambda
    pump.on_turn = nullptr;
    now();
  };
}

void CheckRig::Run(std::deque<Script> conversations) {
  socket.conversations = std::move(conversations);
  Run();
}

void CheckRig::Run() {
  view.unloaded = false;
  run.Prepare();
  run.Activate();
}

Lines CheckRig::Dialogs() const {
  Lines dialogs;
  for (const std::string& line : view.log) {
    for (const char* kind : {"error", "ask", "credentials", "after"}) {
      if (line.starts_with(kind)) dialogs.push_back(line);
    }
  }
  return dialogs;
}

cMessage& CheckRig::Find(const Text& name) const {
  cMessage* found = nullptr;
  mails.ForEach([&](cMessage& message) {
    if (Trim(Text(message.Subject)) == name) found = &message;
    return !found;
  });
  if (!found) throw std::logic_error("no such message");
  return *found;
}

Lines CheckRig::Mails() const {
  Lines names;
  mails.ForEach([&](const cMessage& message) {
    names.push_back(Narrow(Trim(Text(message.Subject))) + "#" + std::to_string(message.Index()));
    return true;
  });
  return names;
}

void CheckRig::ExpectScriptFollowed() const {
  EXPECT_EQ(socket.faults, Lines{});
  EXPECT_EQ(socket.Unused(), 0u);
}

}  // namespace vesko
