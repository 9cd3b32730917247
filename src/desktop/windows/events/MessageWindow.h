#pragma once

#include <windows.h>

#include <functional>
#include <utility>

namespace vesko {

/// A window that nobody sees: what is posted to it comes by the message pump of the thread that
/// made it. Must not be destroyed from within its handler.
class MessageWindow {
 public:
  using Handler = std::function<void(UINT message, WPARAM wparam, LPARAM lparam)>;

  /// The handler gets the messages from WM_APP on.
  explicit MessageWindow(Handler handler);
  ~MessageWindow() { DestroyWindow(window_); }
  MessageWindow(const MessageWindow&) = delete;
  MessageWindow& operator=(const MessageWindow&) = delete;

  HWND Get() const { return window_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

  Handler handler_;
  HWND window_;
};

}  // namespace vesko
