#include "component/AutomationObject.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "VeskoEx/VeskoEx.h"
#include "base/Ascii.h"
#include "base/RunTimeError.h"
#include "component/Hresult.h"
#include "component/cVeskoEx.h"

namespace vesko {
namespace {

struct Member {
  DISPID id;
  TextView name;
  WORD kind;
  UINT arguments;
};

enum : DISPID { kIsBusy = 1, kSetFont, kConfigure, kCheckTime, kCheckMail, kViewMail };

constexpr std::array<Member, 6> kMembers = {{
    {kIsBusy, u"IsBusy", DISPATCH_PROPERTYGET, 0},
    {kSetFont, u"SetFont", DISPATCH_METHOD, 2},
    {kConfigure, u"Configure", DISPATCH_METHOD, 0},
    {kCheckTime, u"CheckTime", DISPATCH_METHOD, 0},
    {kCheckMail, u"CheckMail", DISPATCH_METHOD, 0},
    {kViewMail, u"ViewMail", DISPATCH_METHOD, 0},
}};

bool SameName(TextView left, TextView right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char16_t a, char16_t b) { return AsciiLower(a) == AsciiLower(b); });
}

/// OLECHAR has the size of char16_t, but on Windows it is another type.
TextView ViewOf(const OLECHAR* text) {
  return text == nullptr ? TextView() : TextView(reinterpret_cast<const char16_t*>(text));
}
Text TextOf(BSTR text) {
  if (text == nullptr) return {};
  return Text(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
}
BSTR NewBstr(TextView text) {
  return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()),
                           static_cast<UINT>(text.size()));
}

DISPID FindMember(TextView name) {
  auto found = std::find_if(kMembers.begin(), kMembers.end(),
                            [&](const Member& member) { return SameName(member.name, name); });
  return found == kMembers.end() ? DISPID_UNKNOWN : found->id;
}

/// S_OK where the call fits a member, else the code that tells a client why not.
HRESULT CheckCall(DISPID id, WORD flags, const DISPPARAMS* arguments) {
  if (id < kIsBusy || id > kViewMail) return DISP_E_MEMBERNOTFOUND;
  const Member& member = kMembers[static_cast<size_t>(id - kIsBusy)];
  // Callers that cannot tell a property from a method ask for both at once.
  if ((flags & member.kind) == 0) return DISP_E_MEMBERNOTFOUND;
  if (arguments == nullptr) return E_INVALIDARG;
  if (arguments->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
  if (arguments->cArgs != member.arguments) return DISP_E_BADPARAMCOUNT;
  return arguments->cArgs != 0 && arguments->rgvarg == nullptr ? E_INVALIDARG : S_OK;
}

void Describe(const RunTimeError& error, EXCEPINFO* exception) {
  if (exception == nullptr) return;
  std::memset(exception, 0, sizeof *exception);
  exception->scode = ToHresult(error);
  exception->bstrSource = NewBstr(error.Source().empty() ? TextView(u"VeskoEx") : error.Source());
  exception->bstrDescription = NewBstr(error.Description());
}

size_t SizeOf(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    case VT_BSTR:
      return sizeof(BSTR);
    default:
      throw RunTimeError(kTypeMismatch);
  }
}

VARIANT Dereference(const VARIANT& value) {
  if ((value.vt & VT_BYREF) == 0) return value;
  if (value.byref == nullptr) throw RunTimeError(kTypeMismatch);
  VARIANT plain;
  VariantInit(&plain);
  if (value.vt == (VT_BYREF | VT_VARIANT)) {
    plain = *value.pvarVal;
    if (plain.vt == value.vt) throw RunTimeError(kTypeMismatch);
    return Dereference(plain);
  }
  plain.vt = static_cast<VARTYPE>(value.vt & ~VT_BYREF);
  std::memcpy(&plain.llVal, value.byref, SizeOf(plain.vt));
  return plain;
}

/// Converts the arguments of a call, which are stored in reverse order, and remembers which one was
/// converted last, so that a client can be told which one does not fit.
class Arguments {
 public:
  explicit Arguments(const DISPPARAMS& parameters) : parameters_(parameters) {}

  Text TextAt(UINT position) { return ToText(At(position)); }
  int32_t NumberAt(UINT position) { return ToInt32(At(position)); }

  /// Index in the client's array of the argument that was converted last.
  UINT Last() const { return last_; }

 private:
  Variant At(UINT position) {
    last_ = parameters_.cArgs - 1 - position;
    return FromAutomation(parameters_.rgvarg[last_]);
  }

  const DISPPARAMS& parameters_;
  UINT last_ = 0;
};

class AutomationObject final : public _cVeskoEx, private Retired {
 public:
  static bool Offers(REFIID iid) {
    return iid == IID_IUnknown || iid == IID_IDispatch || iid == IID__cVeskoEx;
  }

  explicit AutomationObject(AutomationServer& server)
      : server_(server), lock_(server), state_(server.ShareState()), component_(*state_) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    if (!Offers(iid)) return E_NOINTERFACE;
    *object = static_cast<_cVeskoEx*>(this);
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) server_.Retire(this);
    return left;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    *count = server_.TypeInfo() ? 1 : 0;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    if (!server_.TypeInfo()) return E_NOTIMPL;
    if (index != 0) return DISP_E_BADINDEX;
    return Guard([&] { return server_.TypeInfo()(info); });
  }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (count == 0 || names == nullptr || ids == nullptr) return E_INVALIDARG;
    // The member's name is followed by names of its arguments, of which none can be used.
    std::fill_n(ids, count, DISPID_UNKNOWN);
    ids[0] = FindMember(ViewOf(names[0]));
    return count > 1 || ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception,
                                   UINT* bad_argument) override {
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    const HRESULT fits = CheckCall(id, flags, parameters);
    if (FAILED(fits)) return fits;
    VARIANT ignored;
    VARIANT& outcome = result != nullptr ? *result : ignored;
    VariantInit(&outcome);
    if (id == kSetFont) return InvokeSetFont(*parameters, bad_argument, exception);
    return Call([&] { Run(id, outcome); }, exception);
  }

  HRESULT STDMETHODCALLTYPE get_IsBusy(VARIANT_BOOL* busy) override {
    if (busy == nullptr) return E_POINTER;
    return Early([&] { *busy = component_.IsBusy() ? VARIANT_TRUE : VARIANT_FALSE; });
  }

  HRESULT STDMETHODCALLTYPE SetFont(BSTR sFontName, LONG hFont, VARIANT* result) override {
    if (result != nullptr) VariantInit(result);
    return Early([&] { component_.SetFont(TextOf(sFontName), static_cast<int32_t>(hFont)); });
  }

  HRESULT STDMETHODCALLTYPE Configure() override {
    return Early([&] { component_.Configure(); });
  }
  HRESULT STDMETHODCALLTYPE CheckMail() override {
    return Early([&] { component_.CheckMail(); });
  }
  HRESULT STDMETHODCALLTYPE ViewMail() override {
    return Early([&] { component_.ViewMail(); });
  }

  HRESULT STDMETHODCALLTYPE CheckTime(LONG* minutes) override {
    if (minutes == nullptr) return E_POINTER;
    return Early([&] { *minutes = component_.CheckTime(); });
  }

 private:
  /// Holds a reference during a call: a client may release its last one while a window of the call
  /// is open.
  class KeepAlive {
   public:
    explicit KeepAlive(AutomationObject& object) : object_(object) { object_.AddRef(); }
    ~KeepAlive() { object_.Release(); }

   private:
    AutomationObject& object_;
  };

  ~AutomationObject() override = default;

  bool OnOwnThread() const { return server_.OnOwnThread(); }

  /// A member without arguments.
  void Run(DISPID id, VARIANT& result) {
    switch (id) {
      case kIsBusy:
        result.vt = VT_BOOL;
        result.boolVal = component_.IsBusy() ? VARIANT_TRUE : VARIANT_FALSE;
        break;
      case kCheckTime:
        result.lVal = component_.CheckTime();
        result.vt = VT_I4;
        break;
      case kConfigure:
        return component_.Configure();
      case kCheckMail:
        return component_.CheckMail();
      case kViewMail:
        return component_.ViewMail();
    }
  }

  /// A late bound call, which describes a run-time error in words.
  template <typename Step>
  HRESULT Call(Step&& step, EXCEPINFO* exception) {
    return Guard([&] {
      KeepAlive keep(*this);
      try {
        step();
        return S_OK;
      } catch (const RunTimeError& error) {
        Describe(error, exception);
        return DISP_E_EXCEPTION;
      }
    });
  }

  HRESULT InvokeSetFont(const DISPPARAMS& parameters, UINT* bad_argument, EXCEPINFO* exception) {
    Arguments arguments(parameters);
    Text name;
    int32_t font = 0;
    const HRESULT fits = Guard([&] {
      name = arguments.TextAt(0);
      font = arguments.NumberAt(1);
      return S_OK;
    });
    if (FAILED(fits)) {
      if (bad_argument != nullptr) *bad_argument = arguments.Last();
      return fits;
    }
    return Call([&] { component_.SetFont(name, font); }, exception);
  }

  template <typename Step>
  HRESULT Early(Step&& step) {
    if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
    return Guard([&] {
      KeepAlive keep(*this);
      step();
      return S_OK;
    });
  }

  AutomationServer& server_;
  ServerLock lock_;
  std::shared_ptr<ComponentState> state_;
  cVeskoEx component_;
  std::atomic<ULONG> references_{1};
};

}  // namespace

HRESULT CreateAutomationObject(AutomationServer& server, REFIID iid, void** object) {
  // Creating an object may write to the user's registry, so the interface is checked first.
  if (!AutomationObject::Offers(iid)) return E_NOINTERFACE;
  auto* made = new AutomationObject(server);
  const HRESULT outcome = made->QueryInterface(iid, object);
  made->Release();
  return outcome;
}

Variant FromAutomation(const VARIANT& passed) {
  const VARIANT value = Dereference(passed);
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_I1:
      return int16_t{value.cVal};
    case VT_UI1:
      return int16_t{value.bVal};
    case VT_I2:
      return int16_t{value.iVal};
    case VT_UI2:
      return int32_t{value.uiVal};
    case VT_I4:
    case VT_INT:
      return static_cast<int32_t>(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return static_cast<double>(value.ulVal);
    case VT_I8:
      return static_cast<double>(value.llVal);
    case VT_UI8:
      return static_cast<double>(value.ullVal);
    case VT_R4:
      return static_cast<double>(value.fltVal);
    case VT_R8:
    case VT_DATE:
      return value.dblVal;
    case VT_CY:
      return static_cast<double>(value.cyVal.int64) / 10000;
    case VT_BSTR:
      return TextOf(value.bstrVal);
    case VT_ERROR:
      if (value.scode == DISP_E_PARAMNOTFOUND) throw RunTimeError(DISP_E_PARAMNOTOPTIONAL);
      [[fallthrough]];
    default:
      throw RunTimeError(kTypeMismatch);
  }
}

}  // namespace vesko
