#include <windows.h>

#include <string>

#include "desktop/windows/WindowsDesktop.h"

namespace vesko {

namespace {

constexpr DWORD kLongestKeyName = 256;      // characters, NUL included
constexpr DWORD kLongestValueName = 16384;  // characters, NUL included
constexpr DWORD kPatience = 5000;           // milliseconds
constexpr wchar_t kLockName[] = L"Local\\VeskoEx settings";

HKEY RootKey(int32_t root) {
  // Predefined handles are sign-extended on 64-bit systems.
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(root));
}

HKEY Native(KeyHandle key) { return reinterpret_cast<HKEY>(key); }

bool IsText(DWORD type) { return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz; }

/// Keeps the component's other processes out while it is held; one that dies lets go of it.
class ProcessLock {
 public:
  ProcessLock() : mutex_(CreateMutexW(nullptr, FALSE, kLockName)) {}
  ~ProcessLock() {
    if (mutex_ != nullptr) CloseHandle(mutex_);
  }
  ProcessLock(const ProcessLock&) = delete;
  ProcessLock& operator=(const ProcessLock&) = delete;

  /// False when another process holds it for too long. Where the system has no lock for this
  /// process, which is the case beside one with more rights, it does without.
  bool Take() {
    taken_ = false;
    if (mutex_ == nullptr) return true;
    const DWORD outcome = WaitForSingleObject(mutex_, kPatience);
    taken_ = outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
    return outcome != WAIT_TIMEOUT;
  }

  void Release() {
    if (taken_) ReleaseMutex(mutex_);
    taken_ = false;
  }

 private:
  HANDLE mutex_;
  bool taken_ = false;
};

/// The system's calls are asked by wide names and texts, so that the code page is the caller's
/// choice; with the process's own they store and answer what the narrow calls do.
class WinRegistry final : public Registry {
 public:
  explicit WinRegistry(UINT code_page) : code_page_(code_page) {}

  int32_t OpenKey(int32_t root, std::string_view path, uint32_t access, KeyHandle& key) override {
    if (failure_) return failure_;
    HKEY opened = nullptr;
    const LONG status = RegOpenKeyExW(RootKey(root), Wide(path).c_str(), 0, access, &opened);
    if (status == ERROR_SUCCESS) key = reinterpret_cast<KeyHandle>(opened);
    return status;
  }

  int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) override {
    if (failure_) return failure_;
    HKEY opened = nullptr;
    wchar_t no_class[] = L"";
    const LONG status =
        RegCreateKeyExW(RootKey(root), Wide(path).c_str(), 0, no_class, REG_OPTION_NON_VOLATILE,
                        kKeyAllAccess, nullptr, &opened, nullptr);
    if (status == ERROR_SUCCESS) key = reinterpret_cast<KeyHandle>(opened);
    return status;
  }

  void CloseKey(KeyHandle key) override {
    if (key != kNoKey) RegCloseKey(Native(key));
  }

  int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                     std::string& data) override {
    const std::wstring value_name = Wide(name);
    std::string bytes;
    DWORD size = 0;
    DWORD value_type = 0;
    LONG status =
        RegQueryValueExW(Native(key), value_name.c_str(), nullptr, &value_type, nullptr, &size);
    do {  // the value may grow between two calls
      if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return status;
      bytes.resize(size);
      status = RegQueryValueExW(Native(key), value_name.c_str(), nullptr, &value_type,
                                reinterpret_cast<BYTE*>(bytes.data()), &size);
    } while (status == ERROR_MORE_DATA);
    if (status != ERROR_SUCCESS) return status;
    bytes.resize(size);
    type = value_type;
    data = IsText(value_type) ? NarrowData(bytes) : std::move(bytes);
    return kStatusSuccess;
  }

  int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                   std::string_view data) override {
    std::wstring text;
    if (IsText(type)) {
      text = Wide(data);
      data = {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
    }
    return RegSetValueExW(Native(key), Wide(name).c_str(), 0, type,
                          reinterpret_cast<const BYTE*>(data.data()),
                          static_cast<DWORD>(data.size()));
  }

  int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) override {
    wchar_t buffer[kLongestKeyName];
    const LONG status = RegEnumKeyW(Native(key), index, buffer, kLongestKeyName);
    if (status == ERROR_SUCCESS) name = Narrow(buffer);
    return status;
  }

  int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) override {
    std::wstring buffer(kLongestValueName, L'\0');
    DWORD size = kLongestValueName;
    const LONG status =
        RegEnumValueW(Native(key), index, buffer.data(), &size, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_SUCCESS) name = Narrow({buffer.data(), size});
    return status;
  }

  int32_t DeleteKey(int32_t root, std::string_view path) override {
    if (failure_) return failure_;
    return RegDeleteKeyW(RootKey(root), Wide(path).c_str());
  }

  int32_t DeleteValue(KeyHandle key, std::string_view name) override {
    return RegDeleteValueW(Native(key), Wide(name).c_str());
  }

  std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t, TransactionKind) override {
    return std::make_unique<Transaction>(*this);
  }

  bool StoresWholeTransactions() const override { return false; }

  std::string ExpandEnvironment(std::string_view text) override {
    const std::wstring source = Wide(text);
    std::wstring expanded;
    DWORD size = ExpandEnvironmentStringsW(source.c_str(), nullptr, 0);
    while (size > expanded.size()) {  // a variable may grow between two calls
      expanded.resize(size);
      size = ExpandEnvironmentStringsW(source.c_str(), expanded.data(), size);
    }
    return size == 0 ? std::string(text) : Narrow(expanded.c_str());
  }

 private:
  /// Keeps other processes of the component from the registry; one lock serves all hives.
  class Transaction final : public RegistryTransaction {
   public:
    explicit Transaction(WinRegistry& registry) : registry_(registry) {
      if (registry_.depth_++ == 0 && !registry_.lock_.Take()) registry_.failure_ = kStatusBusy;
    }
    ~Transaction() override {
      if (--registry_.depth_ > 0) return;
      registry_.lock_.Release();
      registry_.failure_ = kStatusSuccess;
    }
    int32_t Commit() override { return registry_.failure_; }

   private:
    WinRegistry& registry_;
  };

  std::wstring Wide(std::string_view bytes) const {
    const int length = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(code_page_, 0, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(code_page_, 0, bytes.data(), length, text.data(), size);
    return text;
  }

  std::string Narrow(std::wstring_view text) const {
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(code_page_, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(code_page_, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
  }

  /// Of an odd number of bytes, which other programs may have stored, the last one is dropped.
  std::string NarrowData(const std::string& bytes) const {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(wchar_t));
    return Narrow(text);
  }

  UINT code_page_;
  ProcessLock lock_;
  int depth_ = 0;                     // of open transactions
  int32_t failure_ = kStatusSuccess;  // of the open transaction
};

}  // namespace

std::unique_ptr<Registry> MakeWinRegistry(int code_page) {
  const auto chosen = static_cast<UINT>(code_page);
  return std::make_unique<WinRegistry>(IsValidCodePage(chosen) ? chosen : GetACP());
}

}  // namespace vesko
