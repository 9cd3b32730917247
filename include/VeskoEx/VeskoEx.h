#pragma once

#include "VeskoEx/Automation.h"

/// Identities and the dual interface of the component. They never change: hosts and registries
/// keep them.

// {63A46929-8458-4AA5-8CB6-4BD1B0873CC2}
inline constexpr CLSID CLSID_cVeskoEx = {
    0x63A46929, 0x8458, 0x4AA5, {0x8C, 0xB6, 0x4B, 0xD1, 0xB0, 0x87, 0x3C, 0xC2}};

// {3EA79F0F-0DE9-4632-B078-BF59F031D50B}
inline constexpr IID IID__cVeskoEx = {
    0x3EA79F0F, 0x0DE9, 0x4632, {0xB0, 0x78, 0xBF, 0x59, 0xF0, 0x31, 0xD5, 0x0B}};

// {247CCFDB-4E5B-4023-9A6D-E871C6D2BA4B}
inline constexpr GUID LIBID_VeskoEx = {
    0x247CCFDB, 0x4E5B, 0x4023, {0x9A, 0x6D, 0xE8, 0x71, 0xC6, 0xD2, 0xBA, 0x4B}};

/// What an object of the class offers, early bound. The order is the vtable's.
struct _cVeskoEx : public IDispatch {
  /// VARIANT_TRUE while Configure, CheckMail or ViewMail runs.
  virtual HRESULT STDMETHODCALLTYPE get_IsBusy(VARIANT_BOOL* busy) = 0;

  /// Face name and handle of the host's font. The result, which may be null, becomes empty.
  virtual HRESULT STDMETHODCALLTYPE SetFont(BSTR sFontName, LONG hFont, VARIANT* result) = 0;

  /// Shows the settings; returns when the window is closed, as do all that show one.
  virtual HRESULT STDMETHODCALLTYPE Configure() = 0;

  /// Minutes between automatic checks; -1: do not check automatically.
  virtual HRESULT STDMETHODCALLTYPE CheckTime(LONG* minutes) = 0;

  virtual HRESULT STDMETHODCALLTYPE CheckMail() = 0;
  virtual HRESULT STDMETHODCALLTYPE ViewMail() = 0;

 protected:
  ~_cVeskoEx() = default;
};
