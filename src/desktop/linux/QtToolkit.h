#pragma once

#include <memory>

#include "ui/Toolkit.h"

namespace vesko {

/// Native windows by Qt widgets. Needs the process's QApplication.
std::unique_ptr<Toolkit> MakeQtToolkit();

}  // namespace vesko
