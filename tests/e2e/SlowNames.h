#pragma once

#include <string>

namespace vesko {

/// While one lives, looking up this host name takes until it ends. No name server is asked.
class SlowName {
 public:
  explicit SlowName(const std::string& host);
  ~SlowName();
  SlowName(const SlowName&) = delete;
  SlowName& operator=(const SlowName&) = delete;
};

}  // namespace vesko
