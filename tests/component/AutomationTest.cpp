#include <gtest/gtest.h>
#include <pthread.h>

#include <cmath>
#include <functional>
#include <new>
#include <stdexcept>

#include "VeskoEx/VeskoEx.h"
#include "base/RunTimeError.h"
#include "component/AutomationObject.h"
#include "component/AutomationServer.h"
#include "dialogs/fConfig.h"
#include "support/FakeDesktop.h"

namespace vesko {
namespace {

using namespace std::string_literals;

constexpr WORD kLateBound = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

class AutomationTest : public testing::Test {
 protected:
  AutomationTest()
      : server_([this]() -> std::unique_ptr<Desktop> {
          auto made = std::make_unique<FakeDesktop>();
          made->on_end = [this] { desktop_ = nullptr; };
          desktop_ = made.get();
          return made;
        }) {}

  ~AutomationTest() override {
    EXPECT_EQ(desktop_, nullptr) << "the shared state outlived the objects";
    EXPECT_TRUE(server_.CanUnload());
  }

  IClassFactory* Factory() {
    void* factory = nullptr;
    EXPECT_EQ(server_.GetClassObject(CLSID_cVeskoEx, IID_IClassFactory, &factory), S_OK);
    return static_cast<IClassFactory*>(factory);
  }

  template <typename Interface = IDispatch>
  Interface* NewObject(REFIID iid = IID_IDispatch) {
    IClassFactory* factory = Factory();
    void* object = nullptr;
    EXPECT_EQ(factory->CreateInstance(nullptr, iid, &object), S_OK);
    factory->Release();
    return static_cast<Interface*>(object);
  }

  FakeDesktop* desktop_ = nullptr;
  AutomationServer server_;
};

// OLECHAR has the size of char16_t, but on Windows it is another type.
OLECHAR* Ole(char16_t* text) { return reinterpret_cast<OLECHAR*>(text); }
const OLECHAR* Ole(const char16_t* text) { return reinterpret_cast<const OLECHAR*>(text); }
Text TextOf(BSTR text) { return reinterpret_cast<const char16_t*>(text); }

VARIANT Make(VARTYPE type) {
  VARIANT value;
  VariantInit(&value);
  value.vt = type;
  return value;
}
template <typename Field>
VARIANT Make(VARTYPE type, Field VARIANT::*field, std::type_identity_t<Field> content) {
  VARIANT value = Make(type);
  value.*field = content;
  return value;
}
VARIANT Int32(LONG number) { return Make(VT_I4, &VARIANT::lVal, number); }
VARIANT Double(double number) { return Make(VT_R8, &VARIANT::dblVal, number); }
VARIANT ByReference(VARTYPE type, void* pointed) {
  return Make(static_cast<VARTYPE>(VT_BYREF | type), &VARIANT::byref, pointed);
}

/// A late bound call, as scripts make it.
HRESULT Call(IDispatch* object, DISPID id, DISPPARAMS parameters = {}, VARIANT* result = nullptr,
             WORD flags = kLateBound, UINT* bad = nullptr, EXCEPINFO* exception = nullptr) {
  return object->Invoke(id, IID_NULL, 0, flags, &parameters, result, exception, bad);
}

TEST_F(AutomationTest, NamesAreFoundWithoutRegardToCase) {
  IDispatch* object = NewObject();
  const std::pair<const char16_t*, DISPID> rows[] = {
      {u"ISBUSY", 1},   {u"setfont", 2}, {u"Configure", 3}, {u"CHECKtime", 4},   {u"CheckMail", 5},
      {u"viewmail", 6}, {u"", -1},       {u"CheckMai", -1}, {u"CheckMail ", -1}, {u"İsBusy", -1},
  };
  for (const auto& [given, expected] : rows) {
    Text name = given;
    LPOLESTR names[] = {Ole(name.data())};
    DISPID id = 99;
    const HRESULT outcome = object->GetIDsOfNames(IID_NULL, names, 1, 0, &id);
    EXPECT_EQ(id, expected) << testing::PrintToString(name);
    EXPECT_EQ(outcome, expected == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK);
  }
  Text method = u"SetFont", argument = u"hFont";
  LPOLESTR names[] = {Ole(method.data()), Ole(argument.data())};
  DISPID ids[] = {99, 99};
  EXPECT_EQ(object->GetIDsOfNames(IID_NULL, names, 2, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[0], 2);
  EXPECT_EQ(ids[1], DISPID_UNKNOWN);
  EXPECT_EQ(object->GetIDsOfNames(IID_IUnknown, names, 1, 0, ids), DISP_E_UNKNOWNINTERFACE);
  object->Release();
}

TEST_F(AutomationTest, CallsThatDoNotFitGetTheStandardCodes) {
  IDispatch* object = NewObject();
  const struct {
    const char* name;
    DISPID id;
    WORD flags;
    UINT arguments, named;
    HRESULT outcome;
  } rows[] = {
      {"property called", 1, DISPATCH_METHOD, 0, 0, DISP_E_MEMBERNOTFOUND},
      {"method read", 4, DISPATCH_PROPERTYGET, 0, 0, DISP_E_MEMBERNOTFOUND},
      {"read-only property set", 1, DISPATCH_PROPERTYPUT, 1, 1, DISP_E_MEMBERNOTFOUND},
      {"default member", DISPID_VALUE, kLateBound, 0, 0, DISP_E_MEMBERNOTFOUND},
      {"unknown member", 7, kLateBound, 0, 0, DISP_E_MEMBERNOTFOUND},
      {"one argument too many", 4, kLateBound, 1, 0, DISP_E_BADPARAMCOUNT},
      {"one argument missing", 2, kLateBound, 1, 0, DISP_E_BADPARAMCOUNT},
      {"named argument", 2, kLateBound, 2, 1, DISP_E_NONAMEDARGS},
  };
  for (const auto& row : rows) {
    VARIANT arguments[] = {Int32(1), Int32(2)};
    DISPID named[] = {0};
    const DISPPARAMS parameters = {arguments, named, row.arguments, row.named};
    EXPECT_EQ(Call(object, row.id, parameters, nullptr, row.flags), row.outcome) << row.name;
  }
  DISPPARAMS none = {};
  EXPECT_EQ(object->Invoke(1, IID_IDispatch, 0, kLateBound, &none, nullptr, nullptr, nullptr),
            DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(object->Invoke(1, IID_NULL, 0, kLateBound, nullptr, nullptr, nullptr, nullptr),
            E_INVALIDARG);
  object->Release();
}

TEST_F(AutomationTest, ArgumentsAreConvertedAsAutomationDoes) {
  IDispatch* object = NewObject();
  const auto state = server_.ShareState();
  BSTR gulim = SysAllocString(Ole(u"Gulim"));
  BSTR with_nul = SysAllocStringLen(Ole(u"A\0B"), 3);
  BSTR digits = SysAllocString(Ole(u" 17 "));
  const VARIANT text = Make(VT_BSTR, &VARIANT::bstrVal, gulim);
  const VARIANT nul_text = Make(VT_BSTR, &VARIANT::bstrVal, with_nul);
  VARIANT digit_text = Make(VT_BSTR, &VARIANT::bstrVal, digits);
  LONG number = 8;
  VARIANT text_reference = ByReference(VT_BSTR, &gulim);
  VARIANT loop = Make(VT_BYREF | VT_VARIANT);
  loop.pvarVal = &loop;
  constexpr HRESULT kMismatch = DISP_E_TYPEMISMATCH;
  constexpr UINT kFontArgument = 0;  // the last argument stands first
  constexpr UINT kNameArgument = 1;
  const struct {
    const char* name;
    VARIANT font_name, font;
    HRESULT outcome;
    Text expected_name;
    int32_t expected_font;  // after a failure: index of the bad argument
  } rows[] = {
      {"as declared", text, Int32(7), S_OK, u"Gulim", 7},
      {"text with a NUL within", nul_text, Int32(7), S_OK, u"A\0B"s, 7},
      {"boolean", text, Make(VT_BOOL, &VARIANT::iVal, VARIANT_TRUE), S_OK, u"Gulim", -1},
      {"half to even", text, Double(2.5), S_OK, u"Gulim", 2},
      {"64-bit handle", text, Make(VT_I8, &VARIANT::llVal, 0x7FFFFFFF), S_OK, u"Gulim", 0x7FFFFFFF},
      {"digits", text, digit_text, S_OK, u"Gulim", 17},
      {"empty", Make(VT_EMPTY), Make(VT_EMPTY), S_OK, u"", 0},
      {"number for text", Int32(12), Int32(7), S_OK, u"12", 7},
      {"references", text_reference, ByReference(VT_I4, &number), S_OK, u"Gulim", 8},
      {"reference to a variant", ByReference(VT_VARIANT, &text_reference),
       ByReference(VT_VARIANT, &digit_text), S_OK, u"Gulim", 17},
      {"text for a number", text, text, kMismatch, u"", kFontArgument},
      {"object for text", Make(VT_DISPATCH), Int32(7), kMismatch, u"", kNameArgument},
      {"to nothing", ByReference(VT_BSTR, nullptr), Int32(7), kMismatch, u"", kNameArgument},
      {"reference to itself", loop, Int32(7), kMismatch, u"", kNameArgument},
      {"left out", text, Make(VT_ERROR, &VARIANT::scode, DISP_E_PARAMNOTFOUND),
       DISP_E_PARAMNOTOPTIONAL, u"", kFontArgument},
      {"too large", text, Double(2147483648.0), DISP_E_OVERFLOW, u"", kFontArgument},
      {"no number", text, Double(std::nan("")), DISP_E_OVERFLOW, u"", kFontArgument},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    state->data.font_name.clear();
    state->font_handle = 0;
    VARIANT reversed[] = {row.font, row.font_name};
    VARIANT result = Int32(5);
    UINT bad = 99;
    EXPECT_EQ(Call(object, 2, {reversed, nullptr, 2, 0}, &result, kLateBound, &bad), row.outcome);
    EXPECT_EQ(result.vt, VT_EMPTY);
    EXPECT_EQ(state->data.font_name, row.expected_name);
    const UINT number_or_index = SUCCEEDED(row.outcome) ? state->font_handle : bad;
    EXPECT_EQ(number_or_index, static_cast<UINT>(row.expected_font));
  }
  for (BSTR owned : {gulim, with_nul, digits}) SysFreeString(owned);
  object->Release();
}

TEST_F(AutomationTest, LateAndEarlyBoundCallsAnswerAlike) {
  auto* object = NewObject<_cVeskoEx>(IID__cVeskoEx);
  const auto state = server_.ShareState();
  state->data.configuration.ManualChecking = 0;
  state->data.configuration.CheckInterval = 25;
  state->busy = true;

  VARIANT result;
  EXPECT_EQ(Call(object, 1, {}, &result), S_OK);
  EXPECT_TRUE(result.vt == VT_BOOL && result.boolVal == VARIANT_TRUE);
  EXPECT_EQ(Call(object, 4, {}, &result), S_OK);
  EXPECT_TRUE(result.vt == VT_I4 && result.lVal == 25);

  // Through the bare vtable, as a compiled client calls: three of IUnknown, four of IDispatch.
  using Getter = HRESULT(STDMETHODCALLTYPE*)(void*, void*);
  void** vtable = *reinterpret_cast<void***>(object);
  VARIANT_BOOL busy = VARIANT_FALSE;
  LONG minutes = 0;
  EXPECT_EQ(reinterpret_cast<Getter>(vtable[7])(object, &busy), S_OK);
  EXPECT_EQ(busy, VARIANT_TRUE);
  EXPECT_EQ(reinterpret_cast<Getter>(vtable[10])(object, &minutes), S_OK);
  EXPECT_EQ(minutes, 25);

  BSTR name = SysAllocString(Ole(u"Gulim"));
  result = Int32(5);
  EXPECT_EQ(object->SetFont(name, 3, &result), S_OK);
  EXPECT_EQ(object->SetFont(name, 4, nullptr), S_OK);
  EXPECT_EQ(result.vt, VT_EMPTY);
  EXPECT_EQ(state->data.font_name, u"Gulim");
  EXPECT_EQ(state->font_handle, 4);
  EXPECT_EQ(object->get_IsBusy(nullptr), E_POINTER);
  EXPECT_EQ(object->CheckTime(nullptr), E_POINTER);
  SysFreeString(name);
  state->busy = false;
  object->Release();
}

TEST_F(AutomationTest, EveryInterfaceIsTheSameObject) {
  auto* object = NewObject<IUnknown>(IID_IUnknown);
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, IID__cVeskoEx}) {
    void* other = nullptr;
    ASSERT_EQ(object->QueryInterface(iid, &other), S_OK);
    EXPECT_EQ(other, object);
    EXPECT_EQ(object->Release(), 1u);
  }
  void* other = &other;
  EXPECT_EQ(object->QueryInterface(IID_IClassFactory, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(object->Release(), 0u);
}

TEST_F(AutomationTest, TheFactoryRefusesWhatItCannotMake) {
  void* made = &made;
  EXPECT_EQ(server_.GetClassObject(LIBID_VeskoEx, IID_IClassFactory, &made),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(server_.GetClassObject(CLSID_cVeskoEx, IID_IDispatch, &made), E_NOINTERFACE);
  EXPECT_EQ(server_.GetClassObject(CLSID_cVeskoEx, IID_IClassFactory, nullptr), E_POINTER);

  IClassFactory* factory = Factory();
  EXPECT_EQ(factory->CreateInstance(factory, IID_IUnknown, &made), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IClassFactory, &made), E_NOINTERFACE);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(desktop_, nullptr) << "a desktop was made for nothing";
  factory->Release();
}

TEST_F(AutomationTest, ObjectsShareTheStateUntilTheLastIsGone) {
  IDispatch* first = NewObject();
  IDispatch* second = NewObject();
  server_.ShareState()->data.font_name = u"Gulim";
  first->Release();
  EXPECT_EQ(server_.ShareState()->data.font_name, u"Gulim");
  second->Release();
  EXPECT_EQ(desktop_, nullptr);
  EXPECT_TRUE(server_.CanUnload());

  IClassFactory* factory = Factory();
  EXPECT_FALSE(server_.CanUnload());
  factory->LockServer(TRUE);
  factory->Release();
  EXPECT_FALSE(server_.CanUnload());
  server_.Unlock();
}

TEST_F(AutomationTest, TheLastReferenceMayGoWhileAWindowIsOpen) {
  IDispatch* object = NewObject();
  desktop_->toolkit.On("fConfig", [&](Form& window) {
    object->Release();
    EXPECT_TRUE(window.IsLoaded());
    EXPECT_FALSE(server_.CanUnload());
    window.Unload();
  });
  EXPECT_EQ(Call(object, 3), S_OK);
}

TEST_F(AutomationTest, NoExceptionReachesTheClient) {
  auto* object = NewObject<_cVeskoEx>(IID__cVeskoEx);
  EXCEPINFO exception = {};
  const auto invoke = [&](const auto& thrown) {
    desktop_->toolkit.On("fConfig", [=](Form& window) {
      window.Unload();
      throw thrown;
    });
    return Call(object, 3, {}, nullptr, kLateBound, nullptr, &exception);
  };
  EXPECT_EQ(invoke(RunTimeError(5, u"VeskoEx.fConfig", u"Wrong")), DISP_E_EXCEPTION);
  EXPECT_EQ(exception.scode, static_cast<SCODE>(0x800A0005));
  EXPECT_EQ(TextOf(exception.bstrSource), u"VeskoEx.fConfig");
  EXPECT_EQ(TextOf(exception.bstrDescription), u"Wrong");
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  EXPECT_EQ(invoke(std::bad_alloc()), E_OUTOFMEMORY);
  EXPECT_EQ(invoke(std::runtime_error("fault")), E_UNEXPECTED);
  desktop_->registry.on_transaction = [] { throw std::bad_alloc(); };
  EXPECT_EQ(object->Release(), 0u);
}

/// Runs a step on a thread of its own. Not by std::thread, which the compiler for Windows lacks.
void OnAnotherThread(std::function<void()> step) {
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, nullptr, run, &step), 0);
  pthread_join(thread, nullptr);
}

TEST_F(AutomationTest, AnotherThreadsCallsAreRefused) {
  auto* object = NewObject<_cVeskoEx>(IID__cVeskoEx);
  IClassFactory* factory = Factory();
  BSTR face = SysAllocString(Ole(u"Gulim"));
  LPOLESTR names[] = {face};
  void* made = nullptr;
  ITypeInfo* info = nullptr;
  VARIANT_BOOL busy;
  VARIANT result;
  LONG minutes;
  UINT count;
  DISPID id;
  const std::pair<const char*, std::function<HRESULT()>> calls[] = {
      {"QueryInterface", [&] { return object->QueryInterface(IID_IUnknown, &made); }},
      {"GetTypeInfoCount", [&] { return object->GetTypeInfoCount(&count); }},
      {"GetTypeInfo", [&] { return object->GetTypeInfo(0, 0, &info); }},
      {"GetIDsOfNames", [&] { return object->GetIDsOfNames(IID_NULL, names, 1, 0, &id); }},
      {"late IsBusy", [&] { return Call(object, 1, {}, &result); }},
      {"late Configure", [&] { return Call(object, 3); }},
      {"IsBusy", [&] { return object->get_IsBusy(&busy); }},
      {"SetFont", [&] { return object->SetFont(face, 3, &result); }},
      {"Configure", [&] { return object->Configure(); }},
      {"CheckTime", [&] { return object->CheckTime(&minutes); }},
      {"CheckMail", [&] { return object->CheckMail(); }},
      {"ViewMail", [&] { return object->ViewMail(); }},
      {"the factory", [&] { return factory->QueryInterface(IID_IUnknown, &made); }},
      {"creation", [&] { return factory->CreateInstance(nullptr, IID_IDispatch, &made); }},
      {"a lock", [&] { return factory->LockServer(TRUE); }},
      {"creation by another factory",
       [&] {
         IClassFactory* own = Factory();
         const HRESULT outcome = own->CreateInstance(nullptr, IID_IDispatch, &made);
         own->Release();
         return outcome;
       }},
  };
  for (const auto& call : calls) {
    made = &made;
    OnAnotherThread([&] { EXPECT_EQ(call.second(), RPC_E_WRONG_THREAD) << call.first; });
    EXPECT_TRUE(made == nullptr || made == &made) << call.first;
  }
  EXPECT_EQ(server_.ShareState()->data.font_name, u"");
  SysFreeString(face);
  factory->Release();
  object->Release();
}

TEST_F(AutomationTest, AnObjectEndsOnItsOwnThreadWhoeverLetsGo) {
  IDispatch* object = NewObject();
  server_.ShareState()->data.font_name = u"Gulim";
  OnAnotherThread([&] {
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_FALSE(server_.CanUnload());
  });
  ASSERT_NE(desktop_, nullptr);
  IDispatch* next = NewObject();
  EXPECT_EQ(server_.ShareState()->data.font_name, u"") << "the state of the object before";
  OnAnotherThread([&] { next->Release(); });
  EXPECT_TRUE(server_.CanUnload());

  NewObject()->Release();  // on its own thread, which frees the next object to live on another
  OnAnotherThread([&] {
    IDispatch* last = NewObject();
    EXPECT_EQ(Call(last, 4), S_OK);
    last->Release();
  });
}

TEST(CreationTest, AFailedDesktopIsACodeAndLeavesNothingAlive) {
  AutomationServer server([]() -> std::unique_ptr<Desktop> { throw RunTimeError(53); });
  void* factory = nullptr;
  ASSERT_EQ(server.GetClassObject(CLSID_cVeskoEx, IID_IClassFactory, &factory), S_OK);
  void* object = &object;
  auto* classes = static_cast<IClassFactory*>(factory);
  EXPECT_EQ(classes->CreateInstance(nullptr, IID_IDispatch, &object),
            static_cast<HRESULT>(0x800A0035));
  EXPECT_EQ(object, nullptr);
  classes->Release();
  EXPECT_TRUE(server.CanUnload());
}

}  // namespace
}  // namespace vesko
