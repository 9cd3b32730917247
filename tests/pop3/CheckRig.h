#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "pop3/CheckRun.h"
#include "support/FakeClock.h"
#include "support/FakeProgressView.h"
#include "support/FakePump.h"
#include "support/FakeShell.h"
#include "support/FakeSound.h"
#include "support/MemoryRegistry.h"
#include "support/ScriptedSocket.h"

namespace vesko {

using Lines = std::vector<std::string>;

/// The text that TOP returns for a message whose subject and identifier are `name`.
Text Mail(const Text& name);

/// The retry question as the view records it.
std::string Asked(const std::string& last_command);

/// A check run with fakes of everything that it uses.
struct CheckRig {
  CheckRig();

  void AddAccount(const Text& server = u"pop.example.org", const Text& user = u"ann",
                  const Text& password = u"secret", const Text& port = u"995");

  /// Adds messages that an earlier check has seen in a maildrop of `count` messages. All are marked
  /// as spam and for deletion.
  void AddMarked(const std::vector<std::pair<Text, int>>& messages, int32_t count,
                 const Maildrop& maildrop = {u"pop.example.org", 995, u"ann"});

  /// Calls `deed` at the first turn of the pump after this line was sent.
  void When(const std::string& sent, std::function<void()> deed);

  /// Shows the window once, from its preparation to its end, with a conversation for each time
  /// that it connects.
  void Run(std::deque<Script> conversations);
  void Run();

  /// All boxes and questions in order, and anything shown after the window was unloaded.
  Lines Dialogs() const;

  /// The message with this subject.
  cMessage& Find(const Text& name) const;

  /// Every fetched message as "subject#number".
  Lines Mails() const;

  /// Fails the test where a server's script was not followed to its end.
  void ExpectScriptFollowed() const;

  const Locale& locale;
  MemoryRegistry registry;
  FakeShell shell;
  NotingSound sound;
  FakeClock clock;
  ScriptedSocket socket{clock};
  FakePump pump{clock, socket};
  FakeProgressView view;
  Services services{locale, registry, shell, sound, clock, pump, socket};
  SharedData data;
  Configuration& configuration = data.configuration;
  colMails& mails = data.mails;
  CheckRun run{services, data, view};
};

}  // namespace vesko
