#pragma once

#include <cstddef>
#include <string_view>

namespace vesko {

/// How a message is shown: spam or not, read or not. Each state has an image.
enum class MailState { kMail, kMailRead, kSpam, kSpamRead };

/// Names of the states, by their numbers, which are those of their images as well.
inline constexpr std::string_view kMailStateNames[] = {"Mail", "MailRead", "Spam", "SpamRead"};

constexpr std::string_view NameOf(MailState state) {
  return kMailStateNames[static_cast<size_t>(state)];
}

}  // namespace vesko
