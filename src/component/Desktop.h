#pragma once

#include "platform/Services.h"
#include "ui/Toolkit.h"

namespace vesko {

/// A machine with a person in front of it: everything that the component asks for. What it hands
/// out lives as long as the desktop.
class Desktop {
 public:
  virtual ~Desktop() = default;

  /// Everything that needs no window.
  virtual const Services& GetServices() const = 0;

  /// What shows windows and boxes.
  virtual Toolkit& GetToolkit() = 0;
};

}  // namespace vesko
