#pragma once

#include <windows.h>

#include <string>

namespace vesko {

/// What holds this code: the DLL, or the program that it is linked into. No reference is counted.
inline HMODULE OwnModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&OwnModule), &module);
  return module;
}

/// Full path of its file in the form in which the loader was asked for it: letters may be in any
/// case, folders may be links or short names. Empty where the system does not say.
inline std::wstring OwnModulePath() {
  constexpr DWORD kLongestPath = 32768;  // characters, NUL included
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(OwnModule(), path.data(), kLongestPath));
  return path;
}

}  // namespace vesko
