#pragma once

#include <QIcon>
#include <string>

namespace vesko {

/// The icon of a message state: "Mail", "MailRead", "Spam", "SpamRead". No icon for other keys.
const QIcon& StateIcon(const std::string& key);

}  // namespace vesko
