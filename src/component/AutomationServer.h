#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "component/ComponentState.h"
#include "component/Desktop.h"
#include "platform/Automation.h"

namespace vesko {

/// The component as a library: hands out class factories, knows what of it is alive, and keeps the
/// state that all objects share from the first one's creation to the last one's end.
class AutomationServer {
 public:
  /// Raises a run-time error where the machine cannot show windows.
  using NewDesktop = std::function<std::unique_ptr<Desktop>()>;

  /// Loads the description of the dual interface; empty where the system has no such thing.
  using NewTypeInfo = std::function<HRESULT(ITypeInfo** info)>;

  explicit AutomationServer(NewDesktop new_desktop, NewTypeInfo new_type_info = {})
      : new_desktop_(std::move(new_desktop)), new_type_info_(std::move(new_type_info)) {}
  AutomationServer(const AutomationServer&) = delete;
  AutomationServer& operator=(const AutomationServer&) = delete;

  /// The factory of the one class. `factory` is null after a failure.
  HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** factory) noexcept;

  /// True when no object, no factory and no lock is alive.
  bool CanUnload() const noexcept { return alive_ == 0; }

  /// While one is held the library is needed.
  void Lock() noexcept { ++alive_; }
  void Unlock() noexcept { --alive_; }

  const NewTypeInfo& TypeInfo() const { return new_type_info_; }

  /// The objects' state, with the desktop under it; both go with the last holder. To be called on
  /// the user-interface thread. Raises what NewDesktop raises.
  std::shared_ptr<ComponentState> ShareState();

 private:
  struct Shared {
    explicit Shared(std::unique_ptr<Desktop> made) : desktop(std::move(made)), state(*desktop) {}
    std::unique_ptr<Desktop> desktop;
    ComponentState state;
  };

  NewDesktop new_desktop_;
  NewTypeInfo new_type_info_;
  std::atomic<long> alive_{0};
  std::weak_ptr<Shared> shared_;
};

/// A lock on the server as a member of what keeps it alive.
class ServerLock {
 public:
  explicit ServerLock(AutomationServer& server) : server_(server) { server_.Lock(); }
  ~ServerLock() { server_.Unlock(); }
  ServerLock(const ServerLock&) = delete;
  ServerLock& operator=(const ServerLock&) = delete;

 private:
  AutomationServer& server_;
};

}  // namespace vesko
