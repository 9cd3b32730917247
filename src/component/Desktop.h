#pragma once

#include <memory>

#include "platform/Clock.h"
#include "platform/Locale.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/Socket.h"
#include "platform/Sound.h"
#include "ui/Toolkit.h"

namespace vesko {

/// Everything that the component asks of a machine. The services live as long as the desktop.
class Desktop {
 public:
  virtual ~Desktop() = default;

  virtual const Locale& GetLocale() = 0;
  virtual Registry& GetRegistry() = 0;
  virtual std::unique_ptr<Socket> NewSocket() = 0;
  virtual Sound& GetSound() = 0;
  virtual Shell& GetShell() = 0;
  virtual const Clock& GetClock() = 0;
  virtual Toolkit& GetToolkit() = 0;
};

}  // namespace vesko
