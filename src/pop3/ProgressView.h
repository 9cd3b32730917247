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

/// What a check shows and asks, implemented by the progress window. Texts may hold words of the
/// server's: they are not to be trusted, and to be shown as plain text. None holds a password.
/// Boxes and questions return when the user has closed them; events run meanwhile, so the window
/// may be gone by then.
class ProgressView {
 public:
  virtual ~ProgressView() = default;

  /// The window's caption and its three labels; each call replaces the text.
  virtual void ShowCaption(const Text& caption) = 0;
  virtual void ShowProgress(const Text& text) = 0;  // lblProgress
  virtual void ShowTime(const Text& text) = 0;      // lblTime, repainted at once
  virtual void ShowCommand(const Text& text) = 0;   // lblCmd

  /// The progress bar; values outside its range are ignored.
  virtual void SetProgressMaximum(int32_t maximum) = 0;
  virtual void SetProgressValue(int32_t value) = 0;

  /// Next is disabled for the last account.
  virtual void EnableNext(bool enabled) = 0;

  /// A box with an exclamation icon; returns when it is closed.
  virtual void ShowError(const Text& text, const Text& title) = 0;

  /// The retry question with the buttons "&Yes" and "&No". Returns the index of the button that was
  /// pressed, from 0, or a negative number when the box was closed.
  virtual int AskRetry(const Text& question, const Text& title) = 0;

  /// Lets the user complete the credentials. Returns false when the user cancels; they are
  /// unchanged then.
  virtual bool AskCredentials(Credentials& credentials) = 0;

  /// Closes the window, which ends its modal showing. It is not called twice in a run.
  virtual void UnloadWindow() = 0;
};

}  // namespace vesko
