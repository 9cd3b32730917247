#pragma once

#include <QIcon>
#include <string>

namespace vesko {

/// Sides of the drawn images, in pixels.
inline constexpr int kIconSizes[] = {16, 24, 32, 48};

/// The icon of a message state: "Mail", "MailRead", "Spam", "SpamRead". No icon for other keys.
const QIcon& StateIcon(const std::string& key);

}  // namespace vesko
