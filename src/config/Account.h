#pragma once

#include <cstdint>

#include "base/Text.h"

namespace vesko {

/// One POP3 account as the settings hold it. Everything is text: what a person typed or a registry
/// holds is kept as it is until it is used. Members left out of an initializer are empty.
struct Account {
  /// Shown in lists.
  Text name{};

  /// The host, by name or address, and whom it knows there.
  Text server{};
  Text user{};

  /// Scrambled, see mmEncrypt.h.
  Text password{};

  /// Decimal.
  Text port{};

  /// Decimal: 0 off, any other number on.
  Text save_password{};

  /// The seventh field of a record, which the registry does not keep.
  Text unstored{};

  /// Splits a record at CR LF. Missing fields are empty and surplus ones are ignored; never fails.
  static Account FromRecord(TextView record);

  /// The seven fields joined with CR LF, which is how `Configuration::Accounts` holds them.
  Text ToRecord() const;

  /// The port as a number; 110 where it is none.
  int32_t PortNumber() const;

  /// Whether the password may be stored. A flag that is no number counts as off.
  bool SavesPassword() const;
};

}  // namespace vesko
