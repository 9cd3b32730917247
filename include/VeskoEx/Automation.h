#pragma once

/// The automation types: on Windows the system's own, elsewhere the same names with the same
/// shapes, numbers and vtable order. Only what an automation component and its host need. The
/// helpers are inline and use malloc, so that one side may free what the other allocated.

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

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

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
using LCID = uint32_t;
using DISPID = int32_t;
using HRESULT = int32_t;
using SCODE = int32_t;
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using VARTYPE = uint16_t;
using VARIANT_BOOL = int16_t;

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;
#ifndef TRUE
inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;
#endif

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

inline constexpr IID IID_NULL = {};
inline constexpr IID IID_IUnknown = {0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IClassFactory = {0x00000001, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IDispatch = {0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr HRESULT RPC_E_WRONG_THREAD = static_cast<HRESULT>(0x8001010E);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111);
inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3);
inline constexpr HRESULT CO_E_DLLNOTFOUND = static_cast<HRESULT>(0x800401F8);
inline constexpr HRESULT CO_E_ERRORINDLL = static_cast<HRESULT>(0x800401F9);
inline constexpr HRESULT SELFREG_E_CLASS = static_cast<HRESULT>(0x80040201);
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

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;

inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 4;
inline constexpr WORD DISPATCH_PROPERTYPUTREF = 8;

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

struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;

 protected:
  ~IUnknown() = default;
};

struct IDispatch;
struct ITypeInfo;
struct SAFEARRAY;

struct CY {
  int64_t int64;
};

struct RECORDREF {
  void* pvRecord;
  void* pRecInfo;
};

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
    RECORDREF recordVal;  // gives the union its two pointers' size
  };
};
using VARIANTARG = VARIANT;

struct DISPPARAMS {
  VARIANTARG* rgvarg;  // the last argument first
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

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

struct IClassFactory : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;

 protected:
  ~IClassFactory() = default;
};

struct IDispatch : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count,
                                                  LCID lcid, DISPID* ids) = 0;
  virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID lcid, WORD flags,
                                           DISPPARAMS* arguments, VARIANT* result,
                                           EXCEPINFO* exception, UINT* bad_argument) = 0;

 protected:
  ~IDispatch() = default;
};

/// A BSTR has its length in bytes in the four bytes in front of its first character and a NUL
/// behind the last; null counts as the empty text.
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

inline BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  UINT length = 0;
  while (text[length] != 0) ++length;
  return SysAllocStringLen(text, length);
}

inline void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(reinterpret_cast<char*>(text) - sizeof(uint32_t));
}

inline UINT SysStringByteLen(BSTR text) {
  if (text == nullptr) return 0;
  uint32_t bytes;
  std::memcpy(&bytes, reinterpret_cast<char*>(text) - sizeof bytes, sizeof bytes);
  return bytes;
}

inline UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / sizeof(OLECHAR); }

inline void VariantInit(VARIANT* value) { std::memset(value, 0, sizeof *value); }

/// Frees what the value owns and makes it empty. Arrays are not known here: DISP_E_BADVARTYPE.
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
