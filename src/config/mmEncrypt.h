#pragma once

#include "base/Text.h"
#include "platform/Locale.h"

namespace vesko {

/// Scrambles a password for the registry, so that it never stands there as typed. It is no
/// encryption: who has this program has the key. Throws run-time error 6 (overflow) where a 16-bit
/// length is passed, which is beyond some 8,000 characters.
Text Encrypt(TextView plain, const Locale& locale);

/// The password that Encrypt scrambled: every one of 7-bit characters, others as far as the code
/// page's decoding allows. Other text gives other text, or run-time error 5 or 6.
Text Decrypt(TextView scrambled, const Locale& locale);

/// Each character of a code below 256 combined with one of the key's by exclusive or, never to a
/// NUL; twice gives the text back. Throws run-time error 6 beyond 32,767 characters. Precondition:
/// the key is 7-bit text and not empty.
Text XorWithKey(TextView text, TextView key);

}  // namespace vesko
