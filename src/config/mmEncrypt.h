#pragma once

#include "base/Text.h"
#include "platform/Locale.h"

namespace vesko {

/// Scrambles a password for the registry, so that it never stands there as typed. It is no
/// encryption: who has this program has the key. Raises run-time error 6 (overflow) where a 16-bit
/// length is passed.
Text Encrypt(TextView plain, const Locale& locale);

/// The password that Encrypt scrambled.
Text Decrypt(TextView scrambled, const Locale& locale);

/// Each character combined with one of the key's by exclusive or; twice gives the text back.
Text XorWithKey(TextView text, TextView key, const Locale& locale);

}  // namespace vesko
