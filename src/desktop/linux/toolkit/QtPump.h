#pragma once

#include <memory>

#include "desktop/common/Mirror.h"
#include "platform/Pump.h"

namespace vesko {

/// A pump over the thread's Qt event loop that shows the mirror's changes in time, whoever runs the
/// loop: the pump, the host, or a native box. Needs a QApplication on this thread; the mirror must
/// outlive it.
std::unique_ptr<Pump> MakeQtPump(Mirror& mirror);

}  // namespace vesko
