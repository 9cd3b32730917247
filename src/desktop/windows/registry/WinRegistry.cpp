#include <windows.h>

#include <string>

#include "desktop/windows/WindowsDesktop.h"

namespace vesko {

namespace {

constexpr DWORD kLongestKeyName = 256;      // bytes, NUL included
constexpr DWORD kLongestValueName = 16384;  // bytes, NUL included

HKEY RootKey(int32_t root) {
  // Predefined handles are sign-extended on 64-bit systems.
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(root));
}

HKEY Native(KeyHandle key) { return reinterpret_cast<HKEY>(key); }

class WinRegistry final : public Registry {
 public:
  int32_t OpenKey(int32_t root, std::string_view path, uint32_t access, KeyHandle& key) override {
    HKEY opened = nullptr;
    const LONG status = RegOpenKeyExA(RootKey(root), std::string(path).c_str(), 0, access, &opened);
    if (status == ERROR_SUCCESS) key = reinterpret_cast<KeyHandle>(opened);
    return status;
  }

  int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) override {
    HKEY opened = nullptr;
    char no_class[] = "";
    const LONG status =
        RegCreateKeyExA(RootKey(root), std::string(path).c_str(), 0, no_class,
                        REG_OPTION_NON_VOLATILE, kKeyAllAccess, nullptr, &opened, nullptr);
    if (status == ERROR_SUCCESS) key = reinterpret_cast<KeyHandle>(opened);
    return status;
  }

  void CloseKey(KeyHandle key) override {
    if (key != kNoKey) RegCloseKey(Native(key));
  }

  int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                     std::string& data) override {
    const std::string value_name(name);
    std::string bytes;
    DWORD size = 0;
    DWORD value_type = 0;
    LONG status =
        RegQueryValueExA(Native(key), value_name.c_str(), nullptr, &value_type, nullptr, &size);
    // The value may grow between the two questions, and the ANSI call may name too small a size.
    do {
      if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return status;
      bytes.resize(size);
      status = RegQueryValueExA(Native(key), value_name.c_str(), nullptr, &value_type,
                                reinterpret_cast<BYTE*>(bytes.data()), &size);
    } while (status == ERROR_MORE_DATA);
    if (status != ERROR_SUCCESS) return status;
    bytes.resize(size);
    type = value_type;
    data = std::move(bytes);
    return kStatusSuccess;
  }

  int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                   std::string_view data) override {
    return RegSetValueExA(Native(key), std::string(name).c_str(), 0, type,
                          reinterpret_cast<const BYTE*>(data.data()),
                          static_cast<DWORD>(data.size()));
  }

  int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) override {
    char buffer[kLongestKeyName];
    const LONG status = RegEnumKeyA(Native(key), index, buffer, sizeof buffer);
    if (status == ERROR_SUCCESS) name = buffer;
    return status;
  }

  int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) override {
    std::string buffer(kLongestValueName, '\0');
    DWORD size = kLongestValueName;
    const LONG status =
        RegEnumValueA(Native(key), index, buffer.data(), &size, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_SUCCESS) name.assign(buffer, 0, size);
    return status;
  }

  int32_t DeleteKey(int32_t root, std::string_view path) override {
    return RegDeleteKeyA(RootKey(root), std::string(path).c_str());
  }

  int32_t DeleteValue(KeyHandle key, std::string_view name) override {
    return RegDeleteValueA(Native(key), std::string(name).c_str());
  }

  std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t) override {
    return std::make_unique<RegistryTransaction>();
  }

  std::string ExpandEnvironment(std::string_view text) override {
    const std::string source(text);
    // The first call tells the size, NUL included; some systems leave it one short.
    const DWORD size = ExpandEnvironmentStringsA(source.c_str(), nullptr, 0) + 1;
    std::string expanded(size, '\0');
    if (ExpandEnvironmentStringsA(source.c_str(), expanded.data(), size) == 0) return source;
    expanded.resize(expanded.find('\0'));
    return expanded;
  }
};

}  // namespace

std::unique_ptr<Registry> MakeWinRegistry() { return std::make_unique<WinRegistry>(); }

}  // namespace vesko
