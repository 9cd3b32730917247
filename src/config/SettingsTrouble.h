#pragma once

#include <cstdint>

#include "base/Text.h"

namespace vesko {

/// What to tell a person whose settings could not be read. `status` is what mRegistry::Load
/// returned, and not kStatusSuccess.
Text TroubleOfLoad(int32_t status);

/// What to tell a person whose settings could not be saved. `status` is what mRegistry::Save
/// returned, and not kStatusSuccess; `load_status` is that of the last Load.
Text TroubleOfSave(int32_t status, int32_t load_status);

}  // namespace vesko
