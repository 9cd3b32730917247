#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "VeskoEx/Automation.h"

/// Everything that a program on Linux needs to use an automation component: it finds the class by
/// its ProgID, loads the library that serves it, creates an object and calls it by name. Header
/// only, C++17, no library but the C++ one:
///
///   vesko::host::Object mail = vesko::host::Create("VeskoEx.cVeskoEx");
///   if (!mail.Get(u"IsBusy").ToBool()) mail.Call(u"CheckMail");
///
/// Failures are thrown as Error, which carries the HRESULT; running out of memory is
/// std::bad_alloc. Objects belong to the thread that creates them, which must be the one that shows
/// the program's windows: calls on another fail with RPC_E_WRONG_THREAD. The functions that find
/// classes may be called anywhere.
///
/// The component shows its windows by Qt. A program that is no Qt program need not care: the first
/// object makes the process's QApplication, which stays until the process ends. A Qt program makes
/// its own QApplication before it creates an object, and turns quitOnLastWindowClosed off, or
/// closing the component's last window ends the program. While one of its windows is open the
/// component handles the events of the others too, so a timer may fire within a call: ask IsBusy
/// there first.
///
/// Release every object before the program ends, for the last one saves the settings. A library
/// stays loaded once an object was created from it.
///
/// A registered class is announced by a small text file, since it must be readable for everybody
/// while the registry hives, which hold passwords, are not:
///
///   CLSID={63A46929-8458-4AA5-8CB6-4BD1B0873CC2}
///   InprocServer32=/usr/lib/veskoex/libVeskoEx.so
///
/// Its name is the ProgID in lower case. The user's own folder is asked before the machine's. Lines
/// with other names are skipped. The file decides which code is run, so one that somebody else
/// could have written is ignored.
namespace vesko::host {

/// An operation failed. what() has words for a person, with the HRESULT in parentheses behind them.
class Error : public std::runtime_error {
 public:
  Error(HRESULT code, const std::string& words) : std::runtime_error(Describe(code, words)) {
    code_ = code;
  }

  /// What the operation failed with; negative.
  HRESULT Code() const { return code_; }

 private:
  static std::string Describe(HRESULT code, const std::string& words) {
    char number[16];
    std::snprintf(number, sizeof number, " (0x%08X)", static_cast<unsigned>(code));
    return words + number;
  }

  HRESULT code_;
};

/// HRESULT of the creation of an object that has to show windows where none can be shown: neither a
/// Wayland nor an X server answers, or the host's Qt application cannot have widgets.
inline constexpr HRESULT kNoDisplay = static_cast<HRESULT>(0x800705B3);

/// An automation value. It owns its text or its reference to an object, and can be moved, not
/// copied. Made from a bool, an int32_t, a double or UTF-16 text, which is copied; empty by
/// default.
class Value {
 public:
  Value() { VariantInit(&variant_); }
  Value(bool value) : Value() {
    variant_.vt = VT_BOOL;
    variant_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  Value(int32_t value) : Value() {
    variant_.vt = VT_I4;
    variant_.lVal = value;
  }
  Value(double value) : Value() {
    variant_.vt = VT_R8;
    variant_.dblVal = value;
  }
  Value(std::u16string_view value) : Value() {
    variant_.bstrVal = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()));
    if (variant_.bstrVal == nullptr) throw std::bad_alloc();
    variant_.vt = VT_BSTR;
  }
  Value(const std::u16string& value) : Value(std::u16string_view(value)) {}
  Value(const char16_t* value) : Value(std::u16string_view(value)) {}
  /// Moving leaves an empty value behind, or swaps the two.
  Value(Value&& other) noexcept : variant_(other.variant_) { VariantInit(&other.variant_); }
  Value& operator=(Value&& other) noexcept {
    std::swap(variant_, other.variant_);
    return *this;
  }
  ~Value() { VariantClear(&variant_); }

  /// Whether there is no value, as after a method without a result.
  bool IsEmpty() const { return variant_.vt == VT_EMPTY; }

  /// The value as the type that the caller expects, without a conversion: throws Error with
  /// DISP_E_TYPEMISMATCH where it is of another.
  bool ToBool() const {
    Expect(variant_.vt == VT_BOOL);
    return variant_.boolVal != VARIANT_FALSE;
  }
  int32_t ToInt() const {
    Expect(variant_.vt == VT_I4 || variant_.vt == VT_INT || variant_.vt == VT_I2);
    return variant_.vt == VT_I2 ? variant_.iVal : variant_.lVal;
  }
  std::u16string ToText() const {
    Expect(variant_.vt == VT_BSTR);
    if (variant_.bstrVal == nullptr) return {};
    return {variant_.bstrVal, SysStringLen(variant_.bstrVal)};
  }

  /// The value itself, for calls that this header does not wrap. What it owns stays this object's,
  /// also when the caller has changed it.
  VARIANT& Raw() { return variant_; }

 private:
  static void Expect(bool type_fits) {
    if (!type_fits) throw Error(DISP_E_TYPEMISMATCH, "the component returned another type");
  }

  VARIANT variant_;
};

/// A counted reference to an object that is called by name. It can be moved, not copied; a
/// moved-from reference may only be destroyed or assigned to. The last reference ends the object.
class Object {
 public:
  /// Takes over the caller's reference.
  explicit Object(IDispatch* dispatch) : dispatch_(dispatch) {}
  Object(Object&& other) noexcept : dispatch_(std::exchange(other.dispatch_, nullptr)) {}
  Object& operator=(Object&& other) noexcept {
    std::swap(dispatch_, other.dispatch_);
    return *this;
  }
  ~Object() {
    if (dispatch_ != nullptr) dispatch_->Release();
  }

  /// The object itself, without a reference for the caller: valid while this one lives.
  IDispatch* Raw() const { return dispatch_; }

  /// Reads a property. Throws Error: DISP_E_UNKNOWNNAME where there is no such member,
  /// DISP_E_MEMBERNOTFOUND where it is a method, DISP_E_EXCEPTION where the component fails.
  Value Get(std::u16string_view name) { return Invoke(name, DISPATCH_PROPERTYGET, nullptr, 0); }

  /// Calls a method and returns its result, which is empty where it has none. The arguments are
  /// bool, int, double or UTF-16 text. Throws Error: DISP_E_UNKNOWNNAME where there is no such
  /// member, DISP_E_MEMBERNOTFOUND where it is a property, DISP_E_BADPARAMCOUNT for a wrong number
  /// of arguments, DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW for one that does not fit,
  /// DISP_E_EXCEPTION where the component fails. A method that shows windows returns when they are
  /// closed.
  template <typename... Arguments>
  Value Call(std::u16string_view name, Arguments&&... arguments) {
    std::vector<Value> values;
    values.reserve(sizeof...(arguments));
    (values.emplace_back(std::forward<Arguments>(arguments)), ...);
    std::vector<VARIANT> reversed;
    for (auto value = values.rbegin(); value != values.rend(); ++value) {
      reversed.push_back(value->Raw());
    }
    return Invoke(name, DISPATCH_METHOD, reversed.data(), static_cast<UINT>(reversed.size()));
  }

 private:
  /// Finds the member and calls it. Arguments stand in reverse order, as automation has them.
  Value Invoke(std::u16string_view name, WORD flags, VARIANT* reversed_arguments, UINT count) {
    std::u16string member(name);
    LPOLESTR names[] = {member.data()};
    DISPID id = DISPID_UNKNOWN;
    Check(dispatch_->GetIDsOfNames(IID_NULL, names, 1, 0, &id), name, nullptr);
    DISPPARAMS parameters = {reversed_arguments, nullptr, count, 0};
    Value result;
    EXCEPINFO exception = {};
    const HRESULT outcome =
        dispatch_->Invoke(id, IID_NULL, 0, flags, &parameters, &result.Raw(), &exception, nullptr);
    Check(outcome, name, &exception);
    return result;
  }

  /// Throws Error where the outcome is a failure, with the component's own description if it gave
  /// one, and frees what the exception holds.
  static void Check(HRESULT outcome, std::u16string_view name, EXCEPINFO* exception) {
    if (SUCCEEDED(outcome)) return;
    std::string words = "the call of " + Narrow(name) + " failed";
    if (exception != nullptr) {
      if (exception->bstrDescription != nullptr) {
        words +=
            ": " + Narrow({exception->bstrDescription, SysStringLen(exception->bstrDescription)});
      }
      SysFreeString(exception->bstrSource);
      SysFreeString(exception->bstrDescription);
      SysFreeString(exception->bstrHelpFile);
    }
    throw Error(outcome, words);
  }

  /// 7-bit text; every other code unit becomes "?".
  static std::string Narrow(std::u16string_view text) {
    std::string narrow;
    for (char16_t c : text) narrow += c < 128 ? static_cast<char>(c) : '?';
    return narrow;
  }

  IDispatch* dispatch_;  // one reference is ours; null when moved from
};

/// Where a class is served: its identity and the full path of the library.
struct ClassEntry {
  CLSID clsid = {};
  std::string library;
};

/// Folder of the user's configuration files: XDG_CONFIG_HOME where that is a full path, else
/// .config in the home folder. Empty text where the user has no home.
inline std::string UserConfigFolder() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  if (configured != nullptr && configured[0] == '/') return configured;
  const char* home = std::getenv("HOME");
  if (home == nullptr || home[0] != '/') {
    const passwd* user = getpwuid(getuid());
    home = user != nullptr ? user->pw_dir : nullptr;
  }
  return home != nullptr && home[0] == '/' ? std::string(home) + "/.config" : std::string();
}

/// Folders with the files that announce classes, for the user and for the machine. The user's is
/// empty text where there is no folder for configuration.
inline std::string UserClassFolder() {
  const std::string folder = UserConfigFolder();
  return folder.empty() ? folder : folder + "/VeskoEx/classes";
}
inline std::string MachineClassFolder() { return "/etc/xdg/VeskoEx/classes"; }

/// Full path of the file in `folder` that announces a class, whether it exists or not. The ProgID's
/// letters count in either case. Empty text where the folder is empty, or for what cannot be a
/// ProgID because it would name a file elsewhere.
inline std::string ClassFile(const std::string& folder, std::string_view prog_id) {
  if (folder.empty() || prog_id.empty()) return {};
  std::string path = folder + "/";
  for (char c : prog_id) {
    if (c == '/' || c == '\0') return {};
    path += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return path;
}

/// Reads "{63A46929-8458-4AA5-8CB6-4BD1B0873CC2}", with letters in either case. Nothing for a text
/// of another shape or with anything before or behind it.
inline std::optional<GUID> ParseGuid(const std::string& text) {
  GUID id = {};
  uint8_t* d = id.Data4;
  int length = 0;
  const int fields = std::sscanf(
      text.c_str(), "{%8x-%4hx-%4hx-%2hhx%2hhx-%2hhx%2hhx%2hhx%2hhx%2hhx%2hhx}%n", &id.Data1,
      &id.Data2, &id.Data3, d, d + 1, d + 2, d + 3, d + 4, d + 5, d + 6, d + 7, &length);
  if (fields != 11 || length != 38 || text.size() != 38) return std::nullopt;
  return id;
}

/// Why a class file is not to be believed, in words for a person; empty text when it is. Whoever
/// can change the file decides which code a host runs, so the file and its folder must belong to
/// root or to this process's user, and neither they nor a folder above may be writable for others.
/// A folder where everybody writes but removes only what is their own, as /tmp, is accepted above
/// the file's. `path` is free of links; see ReadClassFile.
inline std::string WhyUntrusted(const std::string& path) {
  std::string place = path;
  for (int depth = 0; !place.empty(); ++depth) {
    struct stat status;
    if (lstat(place.c_str(), &status) != 0) return place + " cannot be read";
    const bool shared = depth > 1 && (status.st_mode & S_ISVTX) != 0;
    const bool own_group = depth > 0 && (status.st_gid == getegid() || status.st_gid == 0);
    const mode_t writers = own_group ? S_IWOTH : S_IWGRP | S_IWOTH;
    if (!shared && (status.st_mode & writers) != 0) return "others can write to " + place;
    if (depth < 2 && status.st_uid != 0 && status.st_uid != geteuid()) {
      return place + " belongs to somebody else";
    }
    place.erase(place.rfind('/'));
  }
  return {};
}

/// Path without links, relative steps and the like; empty text where there is no such file.
inline std::string RealPath(const std::string& path) {
  char* real = realpath(path.c_str(), nullptr);
  std::string result = real != nullptr ? real : "";
  std::free(real);
  return result;
}

/// The content of a small regular file; empty text for any other.
inline std::string ReadSmallFile(const std::string& path) {
  constexpr off_t kLargest = 65536;
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (file < 0) return {};
  struct stat status;
  std::string content;
  if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= kLargest) {
    content.resize(static_cast<size_t>(status.st_size));
    const ssize_t size = read(file, content.data(), content.size());
    content.resize(size > 0 ? static_cast<size_t>(size) : 0);
  }
  close(file);
  return content;
}

/// What a class file says. Nothing where there is none, where it is not to be believed (see
/// WhyUntrusted), or where it lacks a class or the full path of a library.
inline std::optional<ClassEntry> ReadClassFile(const std::string& path) {
  const std::string real = RealPath(path);
  if (real.empty() || !WhyUntrusted(real).empty()) return std::nullopt;
  std::istringstream content(ReadSmallFile(real));
  std::optional<GUID> clsid;
  ClassEntry entry;
  for (std::string line; std::getline(content, line);) {
    const size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string name = line.substr(0, equals);
    if (name == "CLSID") clsid = ParseGuid(line.substr(equals + 1));
    if (name == "InprocServer32") entry.library = line.substr(equals + 1);
  }
  if (!clsid || entry.library.empty() || entry.library[0] != '/') return std::nullopt;
  entry.clsid = *clsid;
  return entry;
}

/// Files that may announce a class under a ProgID (compared without case): the user's, then the
/// machine's.
inline std::vector<std::string> ClassFiles(std::string_view prog_id) {
  std::vector<std::string> files;
  for (const std::string& folder : {UserClassFolder(), MachineClassFolder()}) {
    const std::string file = ClassFile(folder, prog_id);
    if (!file.empty()) files.push_back(file);
  }
  return files;
}

/// The class that is registered under a ProgID (compared without case), for the user or else for
/// the machine.
inline std::optional<ClassEntry> FindClass(std::string_view prog_id) {
  for (const std::string& file : ClassFiles(prog_id)) {
    if (auto entry = ReadClassFile(file)) return entry;
  }
  return std::nullopt;
}

/// Creates an object of a class in its library, which stays loaded until the process ends. Throws
/// Error: CO_E_DLLNOTFOUND where the library cannot be loaded, CO_E_ERRORINDLL where it serves no
/// classes, CLASS_E_CLASSNOTAVAILABLE where it does not serve this one, kNoDisplay where it cannot
/// show windows, RPC_E_WRONG_THREAD where another thread has an object, or what the creation of the
/// object itself fails with. Nothing of the object is left then.
inline Object CreateFrom(const ClassEntry& entry) {
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  void* library = dlopen(entry.library.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw Error(CO_E_DLLNOTFOUND, dlerror());
  auto get = reinterpret_cast<GetClassObject>(dlsym(library, "DllGetClassObject"));
  if (get == nullptr) throw Error(CO_E_ERRORINDLL, entry.library + " serves no classes");

  void* factory = nullptr;
  HRESULT outcome = get(entry.clsid, IID_IClassFactory, &factory);
  if (FAILED(outcome)) throw Error(outcome, entry.library + " does not serve the class");
  auto* classes = static_cast<IClassFactory*>(factory);
  void* object = nullptr;
  outcome = classes->CreateInstance(nullptr, IID_IDispatch, &object);
  classes->Release();
  if (outcome == kNoDisplay) throw Error(outcome, "windows cannot be shown here: no display");
  if (FAILED(outcome)) throw Error(outcome, "the object cannot be created");
  return Object(static_cast<IDispatch*>(object));
}

/// Creates an object by its ProgID, compared without case. Throws Error: REGDB_E_CLASSNOTREG where
/// no file announces the class, with the reason for each file that is ignored, else as CreateFrom.
inline Object Create(std::string_view prog_id) {
  const auto entry = FindClass(prog_id);
  if (entry) return CreateFrom(*entry);
  std::string words = std::string(prog_id) + " is not registered";
  for (const std::string& file : ClassFiles(prog_id)) {
    const std::string real = RealPath(file);
    const std::string why = real.empty() ? real : WhyUntrusted(real);
    if (!why.empty()) words += "; " + file + " is ignored, since " + why;
  }
  throw Error(REGDB_E_CLASSNOTREG, words);
}

}  // namespace vesko::host
