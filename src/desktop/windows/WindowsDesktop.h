#pragma once

#include <memory>

#include "component/Desktop.h"

namespace vesko {

/// The Windows desktop: the system's registry, sockets, common controls, sound and languages. To
/// be made and used on one thread, the one whose messages are pumped.
std::unique_ptr<Desktop> MakeWindowsDesktop();

}  // namespace vesko
