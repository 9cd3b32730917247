#pragma once

#include <QIcon>

#include "maillist/MailState.h"

namespace vesko {

/// Sides of the images that are drawn for each state, in pixels, smallest first.
inline constexpr int kIconSizes[] = {16, 24, 32, 48};

/// The icon of a message state, in all sizes. Loaded on first use; valid until the program ends.
/// Needs a QApplication.
const QIcon& StateIcon(MailState state);

}  // namespace vesko
