#pragma once

#include <QIcon>

#include "maillist/MailState.h"

namespace vesko {

/// Sides of the drawn images, in pixels.
inline constexpr int kIconSizes[] = {16, 24, 32, 48};

/// The icon of a message state, in all sizes. Loaded once; valid until the program ends.
const QIcon& StateIcon(MailState state);

}  // namespace vesko
