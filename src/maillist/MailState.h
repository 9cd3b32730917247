#pragma once

#include <cstddef>
#include <string_view>

namespace vesko {

/// How the list shows a message: as spam or not, as read or not. Each state has an image, and the
/// number of the state is the index of its image.
enum class MailState { kMail, kMailRead, kSpam, kSpamRead };

/// The names of the states, which are the names of their images as well.
inline constexpr std::string_view kMailStateNames[] = {"Mail", "MailRead", "Spam", "SpamRead"};

/// The name of one state.
constexpr std::string_view NameOf(MailState state) {
  return kMailStateNames[static_cast<size_t>(state)];
}

}  // namespace vesko
