#include "component/AutomationServer.h"

#include <utility>

#include "VeskoEx/VeskoEx.h"
#include "base/RunTimeError.h"
#include "component/AutomationObject.h"
#include "component/Hresult.h"

namespace vesko {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(AutomationServer& server) : server_(server), lock_(server) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return Guard([&] { return CreateAutomationObject(server_, iid, object); });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    lock ? server_.Lock() : server_.Unlock();
    return S_OK;
  }

 private:
  ~ClassFactory() = default;

  bool OnOwnThread() const { return thread_ == CurrentThread(); }

  AutomationServer& server_;
  ServerLock lock_;
  const void* const thread_ = CurrentThread();
  std::atomic<ULONG> references_{1};
};

}  // namespace

HRESULT AutomationServer::GetClassObject(REFCLSID clsid, REFIID iid, void** factory) noexcept {
  if (factory == nullptr) return E_POINTER;
  *factory = nullptr;
  if (clsid != CLSID_cVeskoEx) return CLASS_E_CLASSNOTAVAILABLE;
  return Guard([&] {
    auto* made = new ClassFactory(*this);
    const HRESULT outcome = made->QueryInterface(iid, factory);
    made->Release();
    return outcome;
  });
}

bool AutomationServer::CanUnload() noexcept {
  DestroyRetired();
  return alive_ == 0;
}

bool AutomationServer::OnOwnThread() const noexcept {
  const void* owner = owner_;
  return owner == nullptr || owner == CurrentThread();
}

std::shared_ptr<ComponentState> AutomationServer::ShareState() {
  DestroyRetired();
  const Claim claim(*this);
  auto shared = shared_.lock();
  if (!shared) {
    shared = std::make_shared<Shared>(*this);
    shared_ = shared;
  }
  return {shared, &shared->state};
}

void AutomationServer::Retire(Retired* retired) noexcept {
  if (OnOwnThread()) {
    delete retired;
    return;
  }
  retired->next_ = retired_;
  while (!retired_.compare_exchange_weak(retired->next_, retired)) {
  }
}

void AutomationServer::DestroyRetired() noexcept {
  if (!OnOwnThread()) return;
  Retired* next = retired_.exchange(nullptr);
  while (next != nullptr) {
    Retired* retired = std::exchange(next, next->next_);
    delete retired;
  }
}

AutomationServer::Claim::Claim(AutomationServer& server) : server_(server) {
  const void* nobody = nullptr;
  const bool taken = server_.owner_.compare_exchange_strong(nobody, CurrentThread());
  if (!taken && nobody != CurrentThread()) {
    throw RunTimeError(RPC_E_WRONG_THREAD, u"VeskoEx", u"Another thread owns the component.");
  }
  ++server_.claims_;
}

AutomationServer::Claim::~Claim() {
  if (--server_.claims_ == 0) server_.owner_ = nullptr;
}

const void* CurrentThread() noexcept {
  static thread_local const char here = 0;
  return &here;
}

}  // namespace vesko
