#include "desktop/windows/events/MessageWindow.h"

namespace vesko {

// A window class of our own would have to be unregistered before the library is unloaded. A system
// class with our procedure leaves nothing behind.
MessageWindow::MessageWindow(Handler handler)
    : handler_(std::move(handler)),
      window_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                              nullptr)) {
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
}

LRESULT CALLBACK MessageWindow::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message < WM_APP) return DefWindowProcW(window, message, wparam, lparam);
  const auto* self =
      reinterpret_cast<const MessageWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  self->handler_(message, wparam, lparam);
  return 0;
}

}  // namespace vesko
