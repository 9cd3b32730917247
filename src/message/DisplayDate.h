#pragma once

#include "base/Text.h"
#include "platform/Locale.h"

namespace vesko {

/// The value of a "date" field (RFC 822, "Mon, 1 Jan 01 10:22:01 +0900") in the user's short date,
/// a space, and the short time; the zone is dropped, not converted. Text that the locale cannot
/// parse as a date is returned twice, with its year and hour completed. Raises run-time error 9 for
/// fewer than three words, 13 for a two-character year or an afternoon hour that is not a number.
Text FormatSendDate(const Locale& locale, TextView date);

}  // namespace vesko
