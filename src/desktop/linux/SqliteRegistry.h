#pragma once

#include <memory>
#include <string>

#include "platform/Registry.h"

namespace vesko {

/// A registry of one SQLite file (write-ahead log) a hive, in two folders that are created (0700,
/// files 0600) when something is first written. A hive that cannot be opened or written yields
/// status codes; two processes may use one hive at once.
std::unique_ptr<Registry> MakeSqliteRegistry(const std::string& user_folder,
                                             const std::string& machine_folder);

}  // namespace vesko
