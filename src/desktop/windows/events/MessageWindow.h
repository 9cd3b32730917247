#pragma once

#include <windows.h>

#include <functional>
#include <utility>

namespace vesko {

/// An invisible window. Messages posted to it are handled by the message pump of the thread that
/// made it. Must not be destroyed from within its handler.
class MessageWindow {
 public:
  /// Called on the thread that made the window; must not throw.
  using Handler = std::function<void(UINT message, WPARAM wparam, LPARAM lparam)>;

  /// The handler gets the messages from WM_APP on; the system deals with the others.
  explicit MessageWindow(Handler handler);
  ~MessageWindow() { DestroyWindow(window_); }
  MessageWindow(const MessageWindow&) = delete;
  MessageWindow& operator=(const MessageWindow&) = delete;

  /// Where to post to; from any thread. Valid until this object is destroyed.
  HWND Get() const { return window_; }

 private:
  /// What the system calls: finds the object that belongs to the window.
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

  Handler handler_;
  HWND window_;
};

}  // namespace vesko
