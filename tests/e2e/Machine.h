#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "component/ComponentState.h"
#include "component/cVeskoEx.h"
#include "desktop/linux/LinuxDesktop.h"
#include "support/TempFolder.h"

namespace vesko {

struct TestAccount {
  Text user;
  Text password;
  int32_t port = 0;
};

/// A user's machine with the real Linux desktop; its hives are in a folder of their own.
class Machine {
 public:
  /// One life of the component, from its creation to its end.
  struct Session {
    std::unique_ptr<Desktop> desktop;
    ComponentState state{*desktop};
    cVeskoEx component{state};
  };

  Session NewSession() const;

  /// Stores these accounts of 127.0.0.1, and the defaults for all else.
  void SetUp(const std::vector<TestAccount>& accounts);

  /// Whether the bytes stand in any file of the hives.
  bool HivesHold(const std::string& bytes) const;

 private:
  TempFolder folder_;
};

}  // namespace vesko
