#pragma once

#include "VeskoEx/Automation.h"

/// Identities and the dual interface of the component. They never change: hosts and registries keep
/// them. Objects are created by the ProgID "VeskoEx.cVeskoEx" (VeskoEx/Host.h does it on Linux).

/// The class. {63A46929-8458-4AA5-8CB6-4BD1B0873CC2}
inline constexpr CLSID CLSID_cVeskoEx = {
    0x63A46929, 0x8458, 0x4AA5, {0x8C, 0xB6, 0x4B, 0xD1, 0xB0, 0x87, 0x3C, 0xC2}};

/// Its dual interface, below. {3EA79F0F-0DE9-4632-B078-BF59F031D50B}
inline constexpr IID IID__cVeskoEx = {
    0x3EA79F0F, 0x0DE9, 0x4632, {0xB0, 0x78, 0xBF, 0x59, 0xF0, 0x31, 0xD5, 0x0B}};

/// The type library, on Windows. {247CCFDB-4E5B-4023-9A6D-E871C6D2BA4B}
inline constexpr GUID LIBID_VeskoEx = {
    0x247CCFDB, 0x4E5B, 0x4023, {0x9A, 0x6D, 0xE8, 0x71, 0xC6, 0xD2, 0xBA, 0x4B}};

/// What an object of the class offers, early bound; late bound the members have the same names and
/// the numbers 1 to 6. The order is the vtable's.
///
/// All objects of a process share settings, fetched messages and windows, from the first object's
/// creation to the last one's end. Creation loads the settings; the end of an object empties the
/// fetched messages, saves the settings and unloads the windows. Everything happens on the thread
/// that created the first object, which must be the one that shows the host's windows: every other
/// gets RPC_E_WRONG_THREAD.
///
/// Configure, CheckMail and ViewMail show windows and return when these are closed. Meanwhile the
/// events of the host's other windows are handled too, so a host may be called back, and may even
/// release its object. It must not start one of the three while IsBusy is true: none of them asks.
/// What goes wrong in a check is told to the user and is S_OK for the host. The failures that a
/// host does see are faults of the component (0x800Axxxx, E_UNEXPECTED) and E_OUTOFMEMORY; whatever
/// the operation had done by then stays done, and the object can be used on.
struct _cVeskoEx : public IDispatch {
  /// VARIANT_TRUE while Configure, CheckMail or ViewMail of any object runs. E_POINTER for null.
  virtual HRESULT STDMETHODCALLTYPE get_IsBusy(VARIANT_BOOL* busy) = 0;

  /// Face name of the host's font, which windows that open from now on use in their own size; the
  /// empty text leaves them their own. `hFont` is only kept. Both are copied. `result`, which may
  /// be null, becomes empty.
  virtual HRESULT STDMETHODCALLTYPE SetFont(BSTR sFontName, LONG hFont, VARIANT* result) = 0;

  /// Shows the settings.
  virtual HRESULT STDMETHODCALLTYPE Configure() = 0;

  /// How often the user wants mail checked: the minutes between two checks, or -1 for not without
  /// being asked. The component has no timer; the host keeps time. E_POINTER for null.
  virtual HRESULT STDMETHODCALLTYPE CheckTime(LONG* minutes) = 0;

  /// Checks every account in a window that shows the progress, after deleting on the servers what
  /// the user marked for it. Then shows the list with a sound where there is unread mail, else a
  /// message. Without an account it first offers the settings.
  virtual HRESULT STDMETHODCALLTYPE CheckMail() = 0;

  /// Shows the list of the messages fetched so far, without asking a server; where there are none,
  /// offers a check.
  virtual HRESULT STDMETHODCALLTYPE ViewMail() = 0;

 protected:
  ~_cVeskoEx() = default;
};
