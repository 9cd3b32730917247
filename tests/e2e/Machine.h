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
  Text server = u"127.0.0.1";
};

/// A user's machine with the real Linux desktop; its hives are in a folder of their own.
class Machine {
 public:
  /// One life of the component, from its creation to its end.
  class Session {
   public:
    explicit Session(const TempFolder& folder);

   private:
    std::unique_ptr<Desktop> desktop_;

   public:
    ComponentState state{*desktop_};
    cVeskoEx component{state};
  };

  Session NewSession() const { return Session(folder_); }

  /// Stores these accounts and the wait time, and the defaults for all else.
  void SetUp(const std::vector<TestAccount>& accounts, int32_t wait_time = 20);

  /// Whether the bytes stand in any file of the hives.
  bool HivesHold(const std::string& bytes) const;

 private:
  TempFolder folder_;
};

}  // namespace vesko
