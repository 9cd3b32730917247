#pragma once

#include <functional>
#include <memory>

#include "component/Desktop.h"
#include "support/FakeClock.h"
#include "support/FakeShell.h"
#include "support/MemoryRegistry.h"
#include "support/ScriptedSocket.h"
#include "support/ScriptedToolkit.h"
#include "support/TestLocale.h"

namespace vesko {

/// A machine without a display, a network and a time of its own.
class FakeDesktop : public Desktop {
 public:
  class SilentSound : public Sound {
   public:
    int OutputDevices() override { return 0; }
    void Play(const Text&) override {}
  };

  ~FakeDesktop() override {
    if (on_end) on_end();
  }

  const Locale& GetLocale() override { return *locale; }
  Registry& GetRegistry() override { return registry; }
  std::unique_ptr<Socket> NewSocket() override { return std::make_unique<ScriptedSocket>(clock); }
  Sound& GetSound() override { return sound; }
  Shell& GetShell() override { return shell; }
  const Clock& GetClock() override { return clock; }
  Toolkit& GetToolkit() override { return toolkit; }

  std::unique_ptr<Locale> locale = MakeTestLocale();
  MemoryRegistry registry;
  FakeShell shell;
  FakeClock clock;
  SilentSound sound;
  ScriptedToolkit toolkit;
  std::function<void()> on_end;
};

}  // namespace vesko
