#include "desktop/windows/toolkit/WinForm.h"

#include <algorithm>

#include "desktop/common/ShownText.h"
#include "desktop/windows/toolkit/WinLayout.h"
#include "desktop/windows/toolkit/WinText.h"
#include "ui/Controls.h"

namespace vesko {

namespace {

constexpr double kPointsToTheInch = 72;
constexpr UINT_PTR kSourcesTimer = 1;
constexpr UINT kBetweenSources = 20;  // milliseconds
constexpr int kSourcesAtOnce = 100;

/// The size of the desktop's message font, in points.
double DesktopFontSize(int dots_per_inch) {
  NONCLIENTMETRICSW metrics = {};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  const LONG height = metrics.lfMessageFont.lfHeight;
  return height == 0 ? 9 : std::abs(height) * kPointsToTheInch / dots_per_inch;
}

class WinFormWindow final : public WinForm, private Mirrored {
 public:
  WinFormWindow(Form& form, WinWindows& windows)
      : Mirrored(windows.context.mirror), form_(form), windows_(windows), owner_(windows.Top()) {
    GiveFontSizes();
    CreateWindowOf();
    layout_ = std::make_unique<WinLayout>(form.GetLayout(), window_, windows.context);
    GiveTooltips();
    MarkChanged();
  }

  ~WinFormWindow() override {
    Leave();
    // Controls report the loss of focus while they are destroyed; nobody listens any more.
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    layout_.reset();
    DestroyWindow(window_);
  }

  HWND Window() const override { return window_; }
  bool IsShown() const override { return shown_; }
  void CloseForm() override { form_.Close(); }
  const Form& GetForm() const override { return form_; }

  void FitToContent() override {
    GetMirror().SynchroniseAll();
    const RECT frame = FrameAround();
    const RECT screen = WorkArea();
    const int least_width = layout_->LeastWidth() + static_cast<int>(frame.right - frame.left);
    const int width = std::min(std::max(Device(form_.Width()), least_width),
                               static_cast<int>(screen.right - screen.left));
    const int inner = width - static_cast<int>(frame.right - frame.left);
    const int least_height =
        layout_->LeastHeight(inner) + static_cast<int>(frame.bottom - frame.top);
    const int height = std::min(std::max(Device(form_.Height()), least_height),
                                static_cast<int>(screen.bottom - screen.top));
    least_ = {std::min(least_width, width), std::min(least_height, height)};
    GrowTo(Logical(width), Logical(height));
  }

  void Show() override {
    GetMirror().SynchroniseAll();
    Synchronise();
    shown_ = true;
    windows_.shown.push_back(this);
    if (owner_) EnableWindow(owner_, FALSE);
    ShowWindow(window_, SW_SHOW);
    SetForegroundWindow(window_);
    FocusFirst();
    MarkDefaultButton();
  }

  void Hide() override {
    Leave();
    ShowWindow(window_, SW_HIDE);
    // Wakes the loop that waits for this window, even when nothing else happens.
    PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
  }

  void StateChanged() override { MarkChanged(); }

  bool TranslateKey(const MSG& message) override {
    if (message.message != WM_KEYDOWN) return IsDialogKey(message);
    if (WinControlPeer* peer = PeerOf(message.hwnd); peer && peer->KeyPressed(message.wParam)) {
      return true;
    }
    for (WinControlPeer* peer : layout_->Peers()) {
      if (peer->KeyPressedInWindow(message.wParam)) return true;
    }
    if (message.wParam == VK_ESCAPE) return Escape();
    if (message.wParam == VK_RETURN && Return(message.hwnd)) return true;
    if (message.wParam == VK_TAB) return Tab(message.hwnd);
    return IsDialogKey(message);
  }

 protected:
  void ShowState() override {
    SetTextIfOther(window_, ToWide(OneLine(form_.Caption())));
    showing_ = true;
    SetWindowPos(window_, nullptr, Device(form_.Left()), Device(form_.Top()), Device(form_.Width()),
                 Device(form_.Height()), SWP_NOZORDER | SWP_NOACTIVATE);
    showing_ = false;
    PlaceControls();
    PutFirst(form_.FirstInTabOrder());
  }

 private:
  int Device(int logical) const { return windows_.context.Scaled(logical); }
  int Logical(int device) const { return MulDiv(device, 96, windows_.context.dots_per_inch); }

  void GiveFontSizes() {
    const double size = DesktopFontSize(windows_.context.dots_per_inch);
    for (Control* control : form_.Controls()) {
      if (control->GetFont().size <= 0) control->SetFont({control->GetFont().name, size});
    }
  }

  DWORD Style() const {
    return WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN |
           (form_.Resizable() ? WS_THICKFRAME | WS_MAXIMIZEBOX : 0u);
  }
  static constexpr DWORD kExtendedStyle = WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME;

  void CreateWindowOf() {
    const HINSTANCE instance = windows_.context.instance;
    RegisterWindowClass(kFormClass, instance, Procedure);
    window_ = CreateWindowExW(kExtendedStyle, kFormClass, L"", Style(), 0, 0, 100, 100, owner_,
                              nullptr, instance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }

  /// The tooltips' own window belongs to this one and is destroyed with it.
  void GiveTooltips() {
    const HWND tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                      WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, window_,
                                      nullptr, windows_.context.instance, nullptr);
    for (WinControlPeer* peer : layout_->Peers()) {
      std::wstring text = ToWide(OneLine(peer->GetControl().Tooltip()));
      if (text.empty()) continue;
      TTTOOLINFOW tool = {};
      tool.cbSize = TTTOOLINFOW_V1_SIZE;
      tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
      tool.hwnd = window_;
      tool.uId = reinterpret_cast<UINT_PTR>(peer->Window());
      tool.lpszText = text.data();
      SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
  }

  RECT FrameAround() const {
    RECT frame = {0, 0, 0, 0};
    AdjustWindowRectEx(&frame, Style(), FALSE, kExtendedStyle);
    return frame;
  }

  static RECT WorkArea() {
    RECT area = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
  }

  void GrowTo(int width, int height) {
    if (width == form_.Width() && height == form_.Height()) return;
    form_.Move(form_.Left() - (width - form_.Width()) / 2,
               form_.Top() - (height - form_.Height()) / 2);
    form_.Resize(width, height);
  }

  void PlaceControls() {
    RECT area;
    GetClientRect(window_, &area);
    layout_->Place({area.right, area.bottom});
  }

  /// The tab order is the order of the children, so the first control moves to their top.
  void PutFirst(const Control* first) {
    if (!first || first == first_) return;
    first_ = first;
    for (WinControlPeer* peer : layout_->Peers()) {
      if (&peer->GetControl() != first) continue;
      SetWindowPos(peer->Window(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
  }

  void FocusFirst() {
    if (const HWND focus = GetFocus(); focus && IsChild(window_, focus)) return;
    const HWND first = GetNextDlgTabItem(window_, nullptr, FALSE);
    if (first) SetFocus(first);
  }

  void Leave() {
    if (!shown_) return;
    shown_ = false;
    std::erase(windows_.shown, this);
    if (!owner_) return;
    EnableWindow(owner_, TRUE);
    SetActiveWindow(owner_);
  }

  bool IsDialogKey(const MSG& message) const {
    MSG copy = message;
    return IsDialogMessageW(window_, &copy) != FALSE;
  }

  bool Escape() {
    if (form_.CancelButton()) {
      form_.CancelButton()->Click();
    } else {
      form_.Close();
    }
    return true;
  }

  /// Replaces the system's handling of Tab, which would leave the key to a box of several lines (it
  /// handles Tab in real dialogs only) and unmark the default button.
  bool Tab(HWND focus) {
    const HWND next =
        GetNextDlgTabItem(window_, focus == window_ ? nullptr : focus, GetKeyState(VK_SHIFT) < 0);
    SendMessageW(window_, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    if (WinControlPeer* peer = PeerOf(next)) peer->TakeFocus();
    return true;
  }

  static bool IsPushButton(HWND window) {
    return SendMessageW(window, WM_GETDLGCODE, 0, 0) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON);
  }

  /// Draws the button that Enter presses as the default button.
  void MarkDefaultButton() {
    const HWND focus = GetFocus();
    const bool on_button = IsPushButton(focus);
    for (WinControlPeer* peer : layout_->Peers()) {
      const HWND button = peer->Window();
      if (!IsPushButton(button)) continue;
      const bool first = on_button ? button == focus : &peer->GetControl() == form_.DefaultButton();
      SendMessageW(button, BM_SETSTYLE, BS_NOTIFY | (first ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON),
                   TRUE);
    }
  }

  /// Enter presses the button with the focus, or else the default button.
  bool Return(HWND focus) {
    if (IsPushButton(focus)) {
      SendMessageW(focus, BM_CLICK, 0, 0);
      return true;
    }
    if (!form_.DefaultButton()) return true;
    form_.DefaultButton()->Click();
    return true;
  }

  WinControlPeer* PeerOf(HWND window) const {
    for (WinControlPeer* peer : layout_->Peers()) {
      if (peer->Window() == window) return peer;
    }
    return nullptr;
  }

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* self = reinterpret_cast<WinFormWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self) return DefWindowProcW(window, message, wparam, lparam);
    return self->Handle(message, wparam, lparam);
  }

  LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
      case WM_CLOSE:
        form_.Close();
        return 0;
      case WM_COMMAND:
        TellCommand(reinterpret_cast<HWND>(lparam), HIWORD(wparam));
        return 0;
      case WM_NOTIFY:
        return TellNotification(*reinterpret_cast<NMHDR*>(lparam));
      case WM_SIZE:
      case WM_MOVE:
        TakeBounds();
        break;
      case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {least_.cx, least_.cy};
        return 0;
      case WM_ENTERSIZEMOVE:
      case WM_ENTERMENULOOP:
        SetTimer(window_, kSourcesTimer, kBetweenSources, nullptr);
        break;
      case WM_EXITSIZEMOVE:
      case WM_EXITMENULOOP:
        KillTimer(window_, kSourcesTimer);
        break;
      case WM_TIMER:
        DeliverSources();
        return 0;
      case WM_ACTIVATE:
        KeepFocus(LOWORD(wparam) != WA_INACTIVE);
        return 0;
      default:
        break;
    }
    return DefWindowProcW(window_, message, wparam, lparam);
  }

  void TellCommand(HWND control, WORD code) {
    if (WinControlPeer* peer = PeerOf(control)) peer->Command(code);
    if (code == BN_SETFOCUS || code == BN_KILLFOCUS) MarkDefaultButton();
  }

  LRESULT TellNotification(NMHDR& header) {
    LRESULT result = 0;
    if (WinControlPeer* peer = PeerOf(header.hwndFrom)) peer->Notify(header, result);
    return result;
  }

  /// While the user moves the window or opens its menu, the system runs a message loop of its own;
  /// a check has to go on meanwhile.
  void DeliverSources() {
    EventSources& sources = windows_.sources;
    int left = kSourcesAtOnce;
    while (left-- > 0 && (sources.Deliver() || sources.DeliverWithin(1))) {
    }
    GetMirror().SynchroniseIfDue();
  }

  /// The system does not remember which control of a window had the focus.
  void KeepFocus(bool active) {
    if (!active) {
      focus_ = GetFocus();
    } else if (focus_ && IsChild(window_, focus_) && IsWindowEnabled(focus_)) {
      SetFocus(focus_);
    } else if (shown_) {
      FocusFirst();
    }
  }

  void TakeBounds() {
    if (showing_ || !shown_ || IsIconic(window_)) return;
    RECT bounds;
    GetWindowRect(window_, &bounds);
    form_.TakeBounds({Logical(bounds.left), Logical(bounds.top),
                      Logical(bounds.right - bounds.left), Logical(bounds.bottom - bounds.top)});
    PlaceControls();
  }

  Form& form_;
  WinWindows& windows_;
  HWND owner_;
  HWND window_ = nullptr;
  HWND focus_ = nullptr;
  SIZE least_ = {0, 0};
  const Control* first_ = nullptr;
  std::unique_ptr<WinLayout> layout_;
  bool shown_ = false;
  bool showing_ = false;
};

}  // namespace

HWND WinWindows::Top() const { return shown.empty() ? GetActiveWindow() : shown.back()->Window(); }

std::unique_ptr<WinForm> MakeWinForm(Form& form, WinWindows& windows) {
  return std::make_unique<WinFormWindow>(form, windows);
}

}  // namespace vesko
