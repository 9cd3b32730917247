#include "component/AutomationServer.h"

#include "VeskoEx/VeskoEx.h"
#include "component/AutomationObject.h"
#include "component/Outcome.h"

namespace vesko {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(AutomationServer& server) : server_(server), lock_(server) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
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
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return Guard([&] { return CreateAutomationObject(server_, iid, object); });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lock ? server_.Lock() : server_.Unlock();
    return S_OK;
  }

 private:
  ~ClassFactory() = default;

  AutomationServer& server_;
  ServerLock lock_;
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

std::shared_ptr<ComponentState> AutomationServer::ShareState() {
  auto shared = shared_.lock();
  if (!shared) {
    shared = std::make_shared<Shared>(new_desktop_());
    shared_ = shared;
  }
  return {shared, &shared->state};
}

}  // namespace vesko
