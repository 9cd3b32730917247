#include "component/Registration.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "VeskoEx/VeskoEx.h"
#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr char kClasses[] = "SOFTWARE\\Classes";
constexpr char kTypeLibraryName[] = "Vesko ActiveX Dll 1.0";
// The class of the system's own marshaller for interfaces that a type library describes.
constexpr char kDescribedInterfaces[] = "{00020424-0000-0000-C000-000000000046}";

std::string Folder(const std::string& library) {
  const size_t separator = library.find_last_of("/\\");
  return separator == std::string::npos ? std::string() : library.substr(0, separator);
}

/// One hive's part of a registration. Members throw a RunTimeError at the first failure.
class ClassKeys {
 public:
  ClassKeys(Registry& registry, int32_t root, const std::string& platform)
      : registry_(registry), root_(root), platform_(platform) {}

  void Write(const std::string& library) {
    Set(ProgIdKey(), "", kProgId);
    Set(ProgIdKey() + "\\CLSID", "", GuidText(CLSID_cVeskoEx));
    Set(ClassKey(), "", kProgId);
    Set(ClassKey() + "\\InprocServer32", "", library);
    Set(ClassKey() + "\\InprocServer32", "ThreadingModel", "Apartment");
    Set(ClassKey() + "\\ProgID", "", kProgId);
    Set(ClassKey() + "\\Programmable", "", "");
    Set(ClassKey() + "\\TypeLib", "", GuidText(LIBID_VeskoEx));
    Set(ClassKey() + "\\VERSION", "", "1.0");
    Set(TypeLibraryKey() + "\\1.0", "", kTypeLibraryName);
    Set(TypeLibraryKey() + "\\1.0\\FLAGS", "", "0");
    Set(TypeLibraryKey() + "\\1.0\\HELPDIR", "", Folder(library));
    if (!platform_.empty()) WriteDescription(library);
  }

  void Remove() {
    RemoveTree(ClassKey());
    RemoveTree(InterfaceKey());
    if (!platform_.empty()) RemoveTree(DescriptionKey() + "\\" + platform_);
    if (!HasSubKeys(DescriptionKey())) {
      RemoveTree(ProgIdKey());
      RemoveTree(TypeLibraryKey());
    }
    for (const std::string& above : {Under("CLSID"), Under("Interface"), Under("TypeLib"),
                                     std::string(kClasses), std::string("SOFTWARE")}) {
      if (IsEmptyKey(above)) registry_.DeleteKey(root_, above);
    }
  }

  /// Path of the library that serves the class; empty text when none does.
  std::string Library() {
    const KeyHandle key = Open(ClassKey() + "\\InprocServer32", kKeyQueryValue);
    if (key == kNoKey) return {};
    uint32_t type = 0;
    std::string data;
    registry_.QueryValue(key, "", type, data);
    registry_.CloseKey(key);
    return data.substr(0, data.find('\0'));
  }

 private:
  static std::string Under(const std::string& name) { return std::string(kClasses) + "\\" + name; }
  static std::string ProgIdKey() { return Under(kProgId); }
  static std::string ClassKey() { return Under("CLSID\\" + GuidText(CLSID_cVeskoEx)); }
  static std::string InterfaceKey() { return Under("Interface\\" + GuidText(IID__cVeskoEx)); }
  static std::string TypeLibraryKey() { return Under("TypeLib\\" + GuidText(LIBID_VeskoEx)); }
  /// Holds a key for each platform's file. A 64-bit system keeps class and interface keys apart for
  /// 32-bit and 64-bit hosts, but has only one of these for both.
  static std::string DescriptionKey() { return TypeLibraryKey() + "\\1.0\\0"; }

  static void Require(int32_t status) {
    if (status != kStatusSuccess) throw RunTimeError(SELFREG_E_CLASS);
  }

  /// kNoKey where the key does not exist.
  KeyHandle Open(const std::string& path, uint32_t access) {
    KeyHandle key = kNoKey;
    const int32_t status = registry_.OpenKey(root_, path, access, key);
    if (status == kStatusFileNotFound) return kNoKey;
    Require(status);
    return key;
  }

  void Set(const std::string& path, const std::string& name, const std::string& text) {
    KeyHandle key = kNoKey;
    Require(registry_.CreateKey(root_, path, key));
    const int32_t status =
        registry_.SetValue(key, name, kRegSz, std::string_view(text.c_str(), text.size() + 1));
    registry_.CloseKey(key);
    Require(status);
  }

  void WriteDescription(const std::string& library) {
    Set(DescriptionKey() + "\\" + platform_, "", library);
    Set(InterfaceKey(), "", "_cVeskoEx");
    Set(InterfaceKey() + "\\ProxyStubClsid32", "", kDescribedInterfaces);
    Set(InterfaceKey() + "\\TypeLib", "", GuidText(LIBID_VeskoEx));
    Set(InterfaceKey() + "\\TypeLib", "Version", "1.0");
  }

  void RemoveTree(const std::string& path) {
    const KeyHandle key = Open(path, kKeyEnumerateSubKeys);
    if (key == kNoKey) return;
    std::vector<std::string> names;
    for (std::string name;
         registry_.EnumKey(key, static_cast<uint32_t>(names.size()), name) == kStatusSuccess;) {
      names.push_back(name);
    }
    registry_.CloseKey(key);
    for (const std::string& name : names) RemoveTree(path + "\\" + name);
    Require(registry_.DeleteKey(root_, path));
  }

  bool HasSubKeys(const std::string& path) {
    const KeyHandle key = Open(path, kKeyEnumerateSubKeys);
    if (key == kNoKey) return false;
    std::string name;
    const bool has = registry_.EnumKey(key, 0, name) == kStatusSuccess;
    registry_.CloseKey(key);
    return has;
  }

  bool IsEmptyKey(const std::string& path) {
    const KeyHandle key = Open(path, kKeyQueryValue | kKeyEnumerateSubKeys);
    if (key == kNoKey) return false;
    std::string name;
    const bool empty = registry_.EnumKey(key, 0, name) == kStatusNoMoreItems &&
                       registry_.EnumValue(key, 0, name) == kStatusNoMoreItems;
    registry_.CloseKey(key);
    return empty;
  }

  Registry& registry_;
  int32_t root_;
  std::string platform_;  // empty: the library describes nothing
};

}  // namespace

std::string GuidText(REFGUID id) {
  char text[39];
  const auto& d = id.Data4;
  std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                static_cast<unsigned>(id.Data1), id.Data2, id.Data3, d[0], d[1], d[2], d[3], d[4],
                d[5], d[6], d[7]);
  return text;
}

HRESULT RegisterServer(Registry& registry, int32_t root, const std::string& library,
                       const std::string& platform) {
  const auto transaction = registry.BeginTransaction(root, TransactionKind::kWrite);
  ClassKeys keys(registry, root, platform);
  const bool written = IgnoreErrors([&] { keys.Write(library); });
  if (written && transaction->Commit() == kStatusSuccess) return S_OK;
  IgnoreErrors([&] { keys.Remove(); });
  return SELFREG_E_CLASS;
}

HRESULT UnregisterServer(Registry& registry, int32_t root, const std::string& library,
                         const std::string& platform) {
  const auto transaction = registry.BeginTransaction(root, TransactionKind::kWrite);
  ClassKeys keys(registry, root, platform);
  const bool done = IgnoreErrors([&] {
    const std::string registered = keys.Library();
    if (registered.empty() || registered == library) keys.Remove();
  });
  return done && transaction->Commit() == kStatusSuccess ? S_OK : SELFREG_E_CLASS;
}

}  // namespace vesko
