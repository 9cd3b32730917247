#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "component/ComponentState.h"
#include "component/Desktop.h"
#include "platform/Automation.h"

namespace vesko {

/// Something that ends on the component's thread; see AutomationServer::Retire.
class Retired {
 public:
  virtual ~Retired() = default;

 private:
  friend class AutomationServer;
  Retired* next_ = nullptr;
};

/// The component as a library: hands out class factories, counts what of it is alive, and keeps the
/// state that all objects share from the creation of the first to the end of the last.
///
/// All of that state belongs to the thread that created the first object, since windows and sockets
/// do. The thread is free to be another one as soon as the last object is gone. Members may be
/// called from any thread unless they say otherwise.
class AutomationServer {
 public:
  /// Throws a RunTimeError where the machine cannot show windows.
  using NewDesktop = std::function<std::unique_ptr<Desktop>()>;

  /// Loads the description of the dual interface; empty where the system has no such thing.
  using NewTypeInfo = std::function<HRESULT(ITypeInfo** info)>;

  explicit AutomationServer(NewDesktop new_desktop, NewTypeInfo new_type_info = {})
      : new_desktop_(std::move(new_desktop)), new_type_info_(std::move(new_type_info)) {}
  AutomationServer(const AutomationServer&) = delete;
  AutomationServer& operator=(const AutomationServer&) = delete;

  /// Stores the factory of the one class, with a reference for the caller. The factory serves the
  /// calling thread alone. CLASS_E_CLASSNOTAVAILABLE for another class, E_NOINTERFACE for another
  /// interface; `factory` is null after a failure.
  HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** factory) noexcept;

  /// True when no object, no factory and no lock is alive.
  bool CanUnload() noexcept;

  /// The library is needed until each Lock has met its Unlock.
  void Lock() noexcept { ++alive_; }
  void Unlock() noexcept { --alive_; }

  const NewTypeInfo& TypeInfo() const { return new_type_info_; }

  /// Whether the calling thread may touch the shared state: it owns the state, or nobody does.
  bool OnOwnThread() const noexcept;

  /// The objects' state, with the desktop under it; both go with the last holder, which must let go
  /// on the same thread. Throws RunTimeError(RPC_E_WRONG_THREAD) where another thread owns the
  /// state, and whatever NewDesktop throws.
  std::shared_ptr<ComponentState> ShareState();

  /// Takes ownership and destroys it on the thread that owns the state: at once where this is the
  /// one, else the next time that thread creates an object or asks whether the library may go.
  void Retire(Retired* retired) noexcept;

 private:
  /// Makes the calling thread the owner of the state for as long as one of these lives.
  class Claim {
   public:
    explicit Claim(AutomationServer& server);
    ~Claim();
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;

   private:
    AutomationServer& server_;
  };

  struct Shared {
    explicit Shared(AutomationServer& server)
        : claim(server), desktop(server.new_desktop_()), state(*desktop) {}
    Claim claim;
    std::unique_ptr<Desktop> desktop;
    ComponentState state;
  };

  void DestroyRetired() noexcept;

  NewDesktop new_desktop_;
  NewTypeInfo new_type_info_;
  std::atomic<long> alive_{0};
  std::atomic<const void*> owner_{nullptr};  // a thread, by CurrentThread
  long claims_ = 0;                          // the owner's, like shared_
  std::weak_ptr<Shared> shared_;
  std::atomic<Retired*> retired_{nullptr};  // the head of a list
};

/// Differs between any two threads that exist at the same time. The standard's own identities need
/// a threading library that not every compiler for Windows brings.
const void* CurrentThread() noexcept;

/// Holds a lock on the server: a member of everything that needs the library loaded.
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
