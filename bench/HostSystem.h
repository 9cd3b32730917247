#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Locale.h"
#include "platform/Registry.h"
#include "platform/Shell.h"

namespace vesko {

/// What a measuring host asks of the system that it runs on. One in a process, made first; the
/// thread that makes it is the one that shows windows. The settings are not the user's own.
class HostSystem {
 public:
  virtual ~HostSystem() = default;

  virtual std::unique_ptr<Registry> NewRegistry() = 0;
  virtual std::unique_ptr<Locale> NewLocale() = 0;
  virtual std::unique_ptr<Shell> NewShell() = 0;

  /// Loads a library and finds what it exports; null where either fails. It stays loaded.
  virtual void* Load(const std::string& library, const char* symbol) = 0;

  /// From now on every window that shows a list is closed as soon as it opens, after this call.
  virtual void CloseLists(std::function<void()> opened) = 0;

  /// Used by this process until now, the system's part included.
  virtual double ProcessorSeconds() = 0;
};

std::unique_ptr<HostSystem> MakeHostSystem();

}  // namespace vesko
