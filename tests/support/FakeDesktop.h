#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "component/Desktop.h"
#include "support/FakeMachine.h"

namespace vesko {

/// A FakeMachine as the component sees it.
class FakeDesktop : public FakeMachine, public Desktop {
 public:
  ~FakeDesktop() override {
    if (on_end) on_end();
  }

  const Services& GetServices() const override { return services; }
  Toolkit& GetToolkit() override { return toolkit; }

  std::function<void()> on_end;
};

}  // namespace vesko
