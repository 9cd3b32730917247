#pragma once

#include <cstdint>

#include "base/Text.h"

namespace vesko {

/// What the account dialog edits; the password is plain here.
struct Credentials {
  Text server;
  Text user;
  Text password;
  bool save_password = false;
};

/// What a check shows and asks, implemented by the progress window. Texts may hold names from
/// servers and are plain; none ever holds a password.
class ProgressView {
 public:
  virtual ~ProgressView() = default;

  virtual void ShowCaption(const Text& caption) = 0;
  virtual void ShowProgress(const Text& text) = 0;  // lblProgress
  virtual void ShowTime(const Text& text) = 0;      // lblTime, repainted at once
  virtual void ShowCommand(const Text& text) = 0;   // lblCmd

  /// The progress bar; values outside its range are ignored.
  virtual void SetProgressMaximum(int32_t maximum) = 0;
  virtual void SetProgressValue(int32_t value) = 0;

  virtual void EnableNext(bool enabled) = 0;

  /// A box with an exclamation icon; returns when it is closed.
  virtual void ShowError(const Text& text, const Text& title) = 0;

  /// The retry question with "&Yes" and "&No"; zero-based index of the button, kNoButton-like
  /// negative when the box was closed.
  virtual int AskRetry(const Text& question, const Text& title) = 0;

  /// Lets the user complete the data; false when cancelled, and the data stay as they were.
  virtual bool AskCredentials(Credentials& credentials) = 0;

  /// Ends the modal showing.
  virtual void UnloadWindow() = 0;
};

}  // namespace vesko
