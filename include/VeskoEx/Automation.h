#pragma once

/// The automation types: on Windows the system's own, elsewhere the same names with the same
/// shapes, numbers and vtable order, as far as an automation component and its host need them.
///
/// The rules that hold for every interface below, on both systems:
///
/// * A method returns an HRESULT: negative on failure. Where a method says nothing else, a failed
///   call has changed nothing.
/// * An out parameter that is an interface pointer is null after a failure. Others are then as they
///   were.
/// * Who receives an interface pointer owns one reference and gives it back by Release. Who passes
///   one keeps his own.
/// * A BSTR or VARIANT argument stays the caller's; one that is returned becomes the caller's, who
///   frees it by SysFreeString or VariantClear. Both sides allocate with malloc here, so one may
///   free what the other allocated.
/// * An object belongs to the thread that created it. Calls on other threads fail with
///   RPC_E_WRONG_THREAD, but for AddRef and Release, which may be called anywhere.
/// * No exception leaves a method, and none may leave a method that a host implements.

#ifdef _WIN32

#include <objbase.h>
#include <oleauto.h>
#include <olectl.h>

// The system's interfaces have public destructors that nobody calls.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

#else

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// Calling conventions matter on Windows only.
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

// Integers of fixed width; a LONG has 32 bits everywhere.
using BYTE = uint8_t;
using WORD = uint16_t;
using BOOL = int;
using INT = int32_t;
using UINT = uint32_t;
using LONG = int32_t;
using ULONG = uint32_t;
using DWORD = uint32_t;
using LONGLONG = int64_t;
using ULONGLONG = uint64_t;

/// A language. Nothing here depends on one, so any number does.
using LCID = uint32_t;

/// Number of a member for late bound calls. A name keeps its number for as long as its interface
/// exists, so a host may keep it too.
using DISPID = int32_t;

/// Outcome of a call: negative on failure, else a kind of success. SCODE is an older name for it.
using HRESULT = int32_t;
using SCODE = int32_t;

/// A UTF-16 code unit. Positions and lengths of texts count these.
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;

/// A counted text: its length in bytes stands in the four bytes before the first character, and a
/// NUL follows the last one, so a text may hold NULs of its own. Null means the empty text. Made
/// and freed by the functions at the end of this file, and by nothing else.
using BSTR = OLECHAR*;

/// What a VARIANT holds: one of VARENUM, with VT_BYREF or VT_ARRAY added where they apply.
using VARTYPE = uint16_t;

/// An automation boolean. True has all bits set, so compare with VARIANT_FALSE, never with 1.
using VARIANT_BOOL = int16_t;

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;
#ifndef TRUE
inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;
#endif

/// Identifies a class (CLSID), an interface (IID) or a type library. Compared by value.
struct GUID {
  uint32_t Data1;
  uint16_t Data2;
  uint16_t Data3;
  uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool operator==(REFGUID left, REFGUID right) {
  return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}
inline bool operator!=(REFGUID left, REFGUID right) { return !(left == right); }

// IID_NULL is what IDispatch wants for its reserved arguments.
inline constexpr IID IID_NULL = {};
inline constexpr IID IID_IUnknown = {0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IClassFactory = {0x00000001, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IDispatch = {0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Results of every kind of call. S_FALSE is a success that says "no", as DllCanUnloadNow does.
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;

// Any method may fail with these, whatever its own contract says: E_UNEXPECTED is a fault of the
// component, E_OUTOFMEMORY is what it says, E_POINTER a null where an out parameter belongs.
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);

// The object, or the component while any object of it lives, belongs to another thread.
inline constexpr HRESULT RPC_E_WRONG_THREAD = static_cast<HRESULT>(0x8001010E);

// Creation, in the order of its steps: no class is registered under a ProgID, the ProgID makes no
// sense, the library cannot be loaded, it is no server of classes, it does not serve this class,
// another object is to contain the new one.
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);
inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3);
inline constexpr HRESULT CO_E_DLLNOTFOUND = static_cast<HRESULT>(0x800401F8);
inline constexpr HRESULT CO_E_ERRORINDLL = static_cast<HRESULT>(0x800401F9);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);

// Registration: the keys or the class file cannot be written or removed.
inline constexpr HRESULT SELFREG_E_CLASS = static_cast<HRESULT>(0x80040201);

// Late bound calls. DISP_E_UNKNOWNNAME comes from GetIDsOfNames. From Invoke:
// DISP_E_MEMBERNOTFOUND is an unknown number or the wrong kind of access, DISP_E_BADPARAMCOUNT a
// wrong number of arguments; DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW and DISP_E_PARAMNOTOPTIONAL are
// an argument that does not fit, whose index `bad_argument` then holds; DISP_E_EXCEPTION is an
// error within the member, described by the EXCEPINFO.
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = static_cast<HRESULT>(0x80020001);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = static_cast<HRESULT>(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = static_cast<HRESULT>(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = static_cast<HRESULT>(0x80020006);
inline constexpr HRESULT DISP_E_NONAMEDARGS = static_cast<HRESULT>(0x80020007);
inline constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008);
inline constexpr HRESULT DISP_E_EXCEPTION = static_cast<HRESULT>(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = static_cast<HRESULT>(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000B);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = static_cast<HRESULT>(0x8002000E);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = static_cast<HRESULT>(0x8002000F);

/// Whether a call succeeded or failed. S_FALSE succeeded, so a comparison with S_OK asks for more
/// than these do.
constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

// Numbers of members that are not an interface's own: no such name, the default member, and the
// name of the value that a property is set to.
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;

// How a member is to be used: called, read, or set to a value or a reference. A caller that cannot
// tell a method from a property adds both.
inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 4;
inline constexpr WORD DISPATCH_PROPERTYPUTREF = 8;

/// What a VARIANT can hold. VT_EMPTY is no value; VT_NULL is a value that is known to be missing,
/// and fits no argument. VT_ERROR with DISP_E_PARAMNOTFOUND stands for an argument left out.
/// VT_BYREF: `byref` points to the caller's value of that type. VT_ARRAY is here to be recognised;
/// nothing below handles arrays.
///
/// A host that receives a value looks at its type before it touches the union; a component returns
/// VT_BOOL, VT_I4, VT_BSTR or VT_EMPTY.
enum VARENUM {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
  VT_TYPEMASK = 0xFFF,
};

/// What every object offers: its other interfaces, and a count of the references to it.
struct IUnknown {
  /// Stores the object's interface `iid`, with a reference for the caller. E_NOINTERFACE where it
  /// has no such interface, E_POINTER where `object` is null.
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;

  /// Counts one reference more or one less; the last Release ends the object, on its own thread.
  /// Both return the new count, which is for tests only.
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;

 protected:
  ~IUnknown() = default;
};

// Descriptions of interfaces and arrays do not exist here; pointers to them are always null.
struct IDispatch;
struct ITypeInfo;
struct SAFEARRAY;

/// An amount of money, in ten-thousandths.
struct CY {
  int64_t int64;
};

/// Never used; gives a VARIANT the size that it has elsewhere.
struct RECORDREF {
  void* pvRecord;
  void* pRecInfo;
};

/// A value that knows its type. It owns its BSTR and its reference to an object; what VT_BYREF
/// points to is somebody else's. Copying the struct copies no ownership. Begins with VariantInit,
/// ends with VariantClear. The members of the union are named by type: lVal is VT_I4, dblVal VT_R8
/// and so on; a date counts days from 30 December 1899.
struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONGLONG llVal;
    LONG lVal;
    BYTE bVal;
    int16_t iVal;
    float fltVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    CY cyVal;
    double date;
    BSTR bstrVal;
    IUnknown* punkVal;
    IDispatch* pdispVal;
    SAFEARRAY* parray;
    int8_t cVal;
    uint16_t uiVal;
    ULONG ulVal;
    ULONGLONG ullVal;
    INT intVal;
    UINT uintVal;
    VARIANT* pvarVal;
    BSTR* pbstrVal;
    void* byref;
    RECORDREF recordVal;
  };
};
using VARIANTARG = VARIANT;

/// The arguments of a late bound call, `cArgs` in number, the last one first. They stay the
/// caller's, who may pass them by reference or as another type that can be converted: numbers and
/// texts of digits for a number, numbers for a text. Of these arguments the first `cNamedArgs` are
/// for those that `rgdispidNamedArgs` names, not for those in their place.
struct DISPPARAMS {
  VARIANTARG* rgvarg;
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

/// What went wrong within a late bound call: `scode` is the HRESULT, `bstrSource` names the part
/// and `bstrDescription` has words for a person. Filled only where Invoke returns DISP_E_EXCEPTION;
/// the caller then frees the three texts.
struct EXCEPINFO {
  WORD wCode;
  WORD wReserved;
  BSTR bstrSource;
  BSTR bstrDescription;
  BSTR bstrHelpFile;
  DWORD dwHelpContext;
  void* pvReserved;
  HRESULT(STDMETHODCALLTYPE* pfnDeferredFillIn)(EXCEPINFO*);
  SCODE scode;
};

/// Makes objects of one class. It serves the thread that obtained it.
/// Obtained from the entry point DllGetClassObject of the library; while one lives, the library is
/// needed, as it is while an object lives.
struct IClassFactory : IUnknown {
  /// Makes an object and stores its interface `iid`, with a reference for the caller. `outer` must
  /// be null: CLASS_E_NOAGGREGATION. E_NOINTERFACE where objects have no such interface; none is
  /// made then.
  virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) = 0;

  /// Keeps the library loaded without an object, until each TRUE was answered by a FALSE.
  virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;

 protected:
  ~IClassFactory() = default;
};

/// Calls by name: first the number of a name, then the call by that number.
struct IDispatch : IUnknown {
  /// 1 where the object can describe its members, 0 where it cannot, as on Linux.
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) = 0;

  /// The description, which has the index 0; DISP_E_BADINDEX for another, E_NOTIMPL where there is
  /// none. The language is ignored.
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) = 0;

  /// The numbers of a member, whose name stands first, and of its arguments. Letters count in
  /// either case. DISP_E_UNKNOWNNAME where one is not known; its number is DISPID_UNKNOWN, the
  /// others are set. `iid` must be IID_NULL; the language is ignored.
  virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count,
                                                  LCID lcid, DISPID* ids) = 0;

  /// Uses the member with this number as `flags` say. `result`, `exception` and `bad_argument` may
  /// be null. `result` is overwritten without being cleared first; after a failure it is empty or
  /// as it was. `bad_argument` receives the index in `arguments->rgvarg` of the argument that does
  /// not fit. `iid` must be IID_NULL; the language is ignored.
  virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID lcid, WORD flags,
                                           DISPPARAMS* arguments, VARIANT* result,
                                           EXCEPINFO* exception, UINT* bad_argument) = 0;

 protected:
  ~IDispatch() = default;
};

/// A new text of `length` code units, which the caller frees. They are copied from `text`; where
/// that is null, the caller has to fill them. Null where there is no memory for it.
inline BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  if (length > (UINT32_MAX - 8) / sizeof(OLECHAR)) return nullptr;
  const auto bytes = static_cast<uint32_t>(length * sizeof(OLECHAR));
  auto* block = static_cast<char*>(std::malloc(sizeof bytes + bytes + sizeof(OLECHAR)));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &bytes, sizeof bytes);
  if (text != nullptr) std::memcpy(block + sizeof bytes, text, bytes);
  std::memset(block + sizeof bytes + bytes, 0, sizeof(OLECHAR));
  return reinterpret_cast<BSTR>(block + sizeof bytes);
}

/// A copy of a text that ends at its first NUL; null for null.
inline BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  UINT length = 0;
  while (text[length] != 0) ++length;
  return SysAllocStringLen(text, length);
}

/// Frees a text. Null is nothing to free.
inline void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(reinterpret_cast<char*>(text) - sizeof(uint32_t));
}

/// Length in bytes or in code units, without the NUL at the end; 0 for null.
inline UINT SysStringByteLen(BSTR text) {
  if (text == nullptr) return 0;
  uint32_t bytes;
  std::memcpy(&bytes, reinterpret_cast<char*>(text) - sizeof bytes, sizeof bytes);
  return bytes;
}

inline UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / sizeof(OLECHAR); }

/// Makes a value empty without looking at what it held.
inline void VariantInit(VARIANT* value) { std::memset(value, 0, sizeof *value); }

/// Frees what the value owns and makes it empty. DISP_E_BADVARTYPE for an array, which stays as it
/// is.
inline HRESULT VariantClear(VARIANT* value) {
  if (value->vt & VT_BYREF) {
    VariantInit(value);
    return S_OK;
  }
  if (value->vt & VT_ARRAY) return DISP_E_BADVARTYPE;
  if (value->vt == VT_BSTR) SysFreeString(value->bstrVal);
  if (value->vt == VT_UNKNOWN && value->punkVal != nullptr) value->punkVal->Release();
  if (value->vt == VT_DISPATCH && value->pdispVal != nullptr) value->pdispVal->Release();
  VariantInit(value);
  return S_OK;
}

#endif
