#pragma once

#include <cstdint>
#include <optional>

#include "base/Text.h"
#include "platform/Socket.h"

namespace vesko {

/// File attribute of a directory.
inline constexpr uint32_t kAttributeDirectory = 16;

/// A POP3 account that another program on this machine knows. Never a password.
struct ForeignAccount {
  Text name;
  Text server;
  Text user;
  int32_t port = kPop3Port;
};

/// Files, programs and the component's own place.
class Shell {
 public:
  virtual ~Shell() = default;

  /// Attributes of a file or directory; nothing when they cannot be read.
  virtual std::optional<uint32_t> FileAttributes(const Text& path) = 0;

  /// Starts a program file with a normal window, without a shell in between and without waiting.
  /// Throws run-time error 53 (file not found) where it cannot be started.
  virtual void Start(const Text& program) = 0;

  /// Folder of the component's own file, without a separator at its end.
  virtual Text OwnFolder() = 0;

  /// Name of the component's own file without folder and extension.
  virtual Text OwnName() = 0;

  /// The system's own separator of path components.
  virtual char16_t PathSeparator() const = 0;

  /// The program that the desktop registers for mailto links, or empty text. Asked only where the
  /// registry does not say.
  virtual Text DesktopMailClient() = 0;

  /// The k-th POP3 account, counted from 1, of another mail program's profile; nothing behind the
  /// last. Asked only where the registry has no account to import.
  virtual std::optional<ForeignAccount> DesktopMailAccount(int32_t k) = 0;
};

}  // namespace vesko
