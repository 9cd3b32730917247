#pragma once

#include <windows.h>

#include <string>

namespace vesko {

/// What holds this code: the DLL, or the program that it is linked into.
inline HMODULE OwnModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&OwnModule), &module);
  return module;
}

/// Full path of its file, as the loader was asked for it: letters in any case, through links and
/// short names.
inline std::wstring OwnModulePath() {
  constexpr DWORD kLongestPath = 32768;  // characters, NUL included
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(OwnModule(), path.data(), kLongestPath));
  return path;
}

}  // namespace vesko
