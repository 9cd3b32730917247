#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "config/mRegistry.h"
#include "config/mmEncrypt.h"
#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "support/FakeClock.h"
#include "support/FakePump.h"
#include "support/FakeShell.h"
#include "support/FakeSound.h"
#include "support/MemoryRegistry.h"
#include "support/ScriptedSocket.h"
#include "support/ScriptedToolkit.h"
#include "support/TestLocale.h"

namespace vesko {

/// Everything around a window, and what the component's parts share. At its end it fails the test
/// where a server's script was not followed to its end.
struct FakeMachine {
  FakeMachine() { store.Load(configuration); }
  ~FakeMachine() {
    EXPECT_EQ(socket.faults, std::vector<std::string>{});
    EXPECT_EQ(socket.Unused(), 0u);
  }

  Text Record(const Text& name, const Text& password = u"secret", const Text& port = u"110",
              const Text& save = u"1") const {
    return vesko::Account{name, name + u".example", u"ann", Encrypt(password, *locale), port, save}
        .ToRecord();
  }
  void AddAccount(const Text& record) {
    Variant value = record;
    configuration.Accounts.Add(value);
  }
  vesko::Account Account(int32_t n) const { return configuration.AccountAt(n); }
  /// Names of all accounts, joined with commas.
  Text AccountNames() const {
    std::vector<Text> names;
    for (int32_t n = 1; n <= configuration.Accounts.Count(); ++n) names.push_back(Account(n).name);
    return Join(names, u",");
  }

  cMessage& AddMail(const Text& from, const Text& subject = u"hello") {
    auto message = std::make_shared<cMessage>(*locale);
    message->From = from;
    message->Subject = subject;
    message->Server = u"one.example";
    message->MessageID = u"<" + Decimal(static_cast<int64_t>(mails.Count())) + u"@mail.example>";
    message->MessageBody = u"body from " + from;
    message->SetIndex(static_cast<int32_t>(mails.Count() + 1));
    if (mails.Count() == 0) mails.BeginSession({message->Server, kPop3Port, u"ann"});
    mails.Add(message);
    return *message;
  }

  FakeClock clock;
  ScriptedSocket socket{clock};
  FakePump pump{clock, socket};
  ScriptedToolkit toolkit{&pump};
  MemoryRegistry registry;
  FakeShell shell;
  std::unique_ptr<Locale> locale = MakeTestLocale();
  NotingSound sound;
  Services services{*locale, registry, shell, sound, clock, pump, socket};
  mRegistry store{registry, *locale, shell};
  SharedData data;
  Configuration& configuration = data.configuration;
  colMails& mails = data.mails;
};

/// A mailbox of one message with this sender, checked with the default settings.
inline Script OneMessage(const Text& from) {
  const Text content = u"From: " + from + u"\r\nMessage-ID: <new@mail.example>\r\n\r\nHi\r\n";
  return Login() + Stat(u"1 100") + Top(1, content, 20) + Quit();
}

}  // namespace vesko
