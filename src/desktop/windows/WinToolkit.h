#pragma once

#include <memory>

#include "desktop/windows/EventSources.h"
#include "ui/Toolkit.h"

namespace vesko {

/// Native windows from the common controls, on the thread's message pump, which asks the sources as
/// well. They must outlive the toolkit.
std::unique_ptr<Toolkit> MakeWinToolkit(EventSources& sources);

}  // namespace vesko
