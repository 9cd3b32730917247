#include "desktop/windows/registration/WinRegistration.h"

#include <windows.h>

#include <string_view>

#include "VeskoEx/VeskoEx.h"
#include "component/Registration.h"
#include "desktop/windows/shell/OwnModule.h"

namespace vesko {
namespace {

constexpr DWORD kLongestPath = 32768;  // characters, NUL included
constexpr const char* kPlatform = sizeof(void*) == 8 ? "win64" : "win32";

std::wstring FinalPath(const std::wstring& path) {
  const HANDLE file =
      CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return path;
  std::wstring final(kLongestPath, L'\0');
  final.resize(GetFinalPathNameByHandleW(file, final.data(), kLongestPath, VOLUME_NAME_DOS));
  CloseHandle(file);
  return final.empty() ? path : final;
}

// Not every program that loads a registered class accepts the long form.
std::wstring WithoutLongPrefix(const std::wstring& path) {
  constexpr std::wstring_view kShare = L"\\\\?\\UNC\\";
  constexpr std::wstring_view kLong = L"\\\\?\\";
  if (path.starts_with(kShare)) return L"\\\\" + path.substr(kShare.size());
  return path.starts_with(kLong) ? path.substr(kLong.size()) : path;
}

/// The text in the system's code page; empty where that lacks one of the characters.
std::string ToCodePage(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string bytes(text.size() * 4, '\0');
  // UTF-8 lacks no character, and asking for one that is missing is an error there.
  const bool may_lack = GetACP() != CP_UTF8;
  BOOL lacked = FALSE;
  const int size = WideCharToMultiByte(CP_ACP, may_lack ? WC_NO_BEST_FIT_CHARS : 0, text.c_str(),
                                       length, bytes.data(), static_cast<int>(bytes.size()),
                                       nullptr, may_lack ? &lacked : nullptr);
  bytes.resize(lacked ? 0 : static_cast<size_t>(size));
  return bytes;
}

/// The path in the system's code page, with short names where the long ones cannot be converted.
std::string RegisteredPath() {
  const std::wstring path = OwnPath();
  const std::string bytes = ToCodePage(path);
  if (!bytes.empty()) return bytes;
  std::wstring brief(kLongestPath, L'\0');
  brief.resize(GetShortPathNameW(path.c_str(), brief.data(), kLongestPath));
  return ToCodePage(brief);
}

}  // namespace

std::wstring OwnPath() { return WithoutLongPrefix(FinalPath(OwnModulePath())); }

HRESULT RegisterOnWindows(Registry& registry, int32_t root) {
  const std::string path = RegisteredPath();
  return path.empty() ? SELFREG_E_CLASS : RegisterServer(registry, root, path, kPlatform);
}

HRESULT UnregisterOnWindows(Registry& registry, int32_t root) {
  const std::string path = RegisteredPath();
  return path.empty() ? SELFREG_E_CLASS : UnregisterServer(registry, root, path, kPlatform);
}

HRESULT LoadTypeInfo(ITypeInfo** info) {
  ITypeLib* library = nullptr;
  const HRESULT loaded = LoadTypeLibEx(OwnPath().c_str(), REGKIND_NONE, &library);
  if (FAILED(loaded)) return loaded;
  const HRESULT found = library->GetTypeInfoOfGuid(IID__cVeskoEx, info);
  library->Release();
  return found;
}

}  // namespace vesko
