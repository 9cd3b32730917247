#pragma once

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

/// What TOP gives of a message: its subject is `name`, its identifier too.
Text Mail(const Text& name);

/// The retry question as the view notes it.
std::string Asked(const std::string& last_command);

/// A check with everything around it.
struct CheckRig {
  CheckRig();

  void AddAccount(const Text& server = u"pop.example.org", const Text& user = u"ann",
                  const Text& password = u"secret", const Text& port = u"995");

  struct Seen {
    Text name;
    int number;
  };

  /// What an earlier check has seen in ann's maildrop, or another, all of it marked as spam and for
  /// deletion.
  void AddMarked(const std::vector<Seen>& messages, int32_t count,
                 const Maildrop& maildrop = {u"pop.example.org", 995, u"ann"});

  /// Does something at the first turn at which the last line that was sent is this one.
  void When(const std::string& sent, std::function<void()> deed);

  /// One showing of the window, from preparation to its end.
  void Run();

  /// Boxes and questions, in their order, and whatever is shown after the window is gone.
  std::vector<std::string> Dialogs() const;

  /// The message with that subject.
  cMessage& Find(const Text& name) const;

  /// "subject#number" of every fetched message.
  std::vector<std::string> Mails() const;

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
