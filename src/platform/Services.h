#pragma once

#include "platform/Clock.h"
#include "platform/Locale.h"
#include "platform/Pump.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/Socket.h"
#include "platform/Sound.h"

namespace vesko {

/// What the core asks of a machine, windows apart. A desktop owns the services; all of them live as
/// long as it does, and all are used on one thread. There is one socket because there is one POP3
/// session at a time; whoever connects it owns its events until it closes it.
///
/// Whoever is handed this bundle uses only the services that it needs; tests fill it with
/// stand-ins.
struct Services {
  const Locale& locale;
  Registry& registry;
  Shell& shell;
  Sound& sound;
  const Clock& clock;
  Pump& pump;
  Socket& socket;
};

}  // namespace vesko
