#include <windows.h>

#include "desktop/windows/WindowsDesktop.h"
// After windows.h, whose types they use.
#include <commctrl.h>
#include <commdlg.h>

#include <algorithm>

#include "desktop/common/ShownText.h"
#include "desktop/windows/shell/OwnModule.h"
#include "desktop/windows/toolkit/WinForm.h"
#include "desktop/windows/toolkit/WinTabs.h"
#include "desktop/windows/toolkit/WinText.h"
#include "ui/Controls.h"

namespace vesko {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kUntilSomethingHappens = std::chrono::hours(1);
constexpr size_t kLongestMessage = 4000;  // code units
constexpr DWORD kLongestPath = 32768;     // characters, NUL included
constexpr int kManifest = 2;              // resource of a library that names the common controls

int ScreenDotsPerInch() {
  HDC screen = GetDC(nullptr);
  const int dots = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dots;
}

/// Gives windows the look of the current common controls, whatever the host's manifest says.
class VisualStyles {
 public:
  explicit VisualStyles(HINSTANCE module) {
    ACTCTXW context = {};
    context.cbSize = sizeof context;
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.hModule = module;
    context.lpResourceName = MAKEINTRESOURCEW(kManifest);
    context_ = CreateActCtxW(&context);
  }
  ~VisualStyles() {
    if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
  }
  VisualStyles(const VisualStyles&) = delete;
  VisualStyles& operator=(const VisualStyles&) = delete;

  class Use {
   public:
    explicit Use(const VisualStyles& styles)
        : active_(styles.context_ != INVALID_HANDLE_VALUE &&
                  ActivateActCtx(styles.context_, &cookie_)) {}
    ~Use() {
      if (active_) DeactivateActCtx(0, cookie_);
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

   private:
    ULONG_PTR cookie_ = 0;
    bool active_;
  };

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
};

class WinPump final : public Pump {
 public:
  explicit WinPump(WinWindows& windows) : windows_(windows), sources_(windows.sources) {}

  void RunPending(milliseconds longest_wait) override {
    windows_.context.mirror.SynchroniseIfDue();
    if (longest_wait <= milliseconds::zero()) {
      sources_.Deliver();
      DeliverMessages();
      return;
    }
    if (MessagesDue() && DeliverMessages()) return;
    const milliseconds alone = std::min(longest_wait, kSourcesAlone);
    if (sources_.Deliver() || sources_.DeliverWithin(static_cast<DWORD>(alone.count()))) return;
    if (!Sleep(longest_wait - alone)) DeliverMessages();
  }

  /// Whether the host was told to quit while a loop of ours ran, and with which exit code.
  bool TakeQuit(int& code) {
    if (!quit_) return false;
    code = quit_code_;
    quit_ = false;
    return true;
  }

 private:
  using Clock = Mirror::Clock;

  // At most so many messages at a time, so that a flood of them does not keep the caller waiting.
  static constexpr int kAtOnce = 64;
  // How long messages wait while the sources are busy, too short to be felt. Looking for messages
  // with each reply of a server would cost more than the reply.
  static constexpr milliseconds kBetweenMessages{10};
  // How long only the sources are waited for; most replies have come by then.
  static constexpr milliseconds kSourcesAlone{5};

  bool MessagesDue() const { return Clock::now() >= messages_due_; }

  bool DeliverMessages() {
    MSG message;
    int delivered = 0;
    while (delivered < kAtOnce && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      Dispatch(message);
      ++delivered;
    }
    messages_due_ = Clock::now() + kBetweenMessages;
    return delivered > 0;
  }

  void Dispatch(const MSG& message) {
    if (message.message == WM_QUIT) return Quit(static_cast<int>(message.wParam));
    for (WinForm* form : windows_.shown) {
      const bool inside = form->Window() == message.hwnd || IsChild(form->Window(), message.hwnd);
      if (!inside) continue;
      if (form->TranslateKey(message)) return;
      break;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }

  /// The host quits: closes our windows; the host's own loop is told again after the last of them.
  void Quit(int code) {
    quit_ = true;
    quit_code_ = code;
    const std::vector<WinForm*> shown = windows_.shown;
    for (auto form = shown.rbegin(); form != shown.rend(); ++form) {
      const bool still_there =
          std::find(windows_.shown.begin(), windows_.shown.end(), *form) != windows_.shown.end();
      if (still_there) (*form)->CloseForm();
    }
  }

  /// True when a source ended the sleep and delivered something.
  bool Sleep(milliseconds longest_wait) {
    Mirror& mirror = windows_.context.mirror;
    milliseconds wait = std::min(longest_wait, kUntilSomethingHappens);
    if (mirror.HasChanges()) {
      const auto due = std::chrono::ceil<milliseconds>(mirror.Due() - Clock::now());
      wait = std::clamp(due, milliseconds::zero(), wait);
    }
    const bool delivered = sources_.DeliverUnlessMessage(static_cast<DWORD>(wait.count()));
    mirror.SynchroniseIfDue();
    return delivered;
  }

  WinWindows& windows_;
  EventSources& sources_;
  Clock::time_point messages_due_{};
  bool quit_ = false;
  int quit_code_ = 0;
};

/// Converts "description|pattern|…" for the file dialog: a NUL after each part, one more at the
/// end.
std::wstring FilterList(const Text& filter) {
  std::wstring list = ToWide(filter);
  std::replace(list.begin(), list.end(), L'|', L'\0');
  list.append(2, L'\0');
  return list;
}

class WinToolkit final : public Toolkit {
 public:
  explicit WinToolkit(EventSources& sources)
      : styles_(OwnModule()), windows_{sources}, pump_(windows_) {
    windows_.context.instance = OwnModule();
    windows_.context.dots_per_inch = ScreenDotsPerInch();
    const VisualStyles::Use use(styles_);
    INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
  }

  ~WinToolkit() override {
    for (const wchar_t* name : {kFormClass, kPageClass}) {
      UnregisterClassW(name, windows_.context.instance);
    }
  }

  Pump& GetPump() override { return pump_; }

  std::unique_ptr<FormPeer> Realise(Form& form) override {
    const VisualStyles::Use use(styles_);
    return MakeWinForm(form, windows_);
  }

  void RunModal(Form& form) override {
    while (IsShown(form)) pump_.RunPending(kUntilSomethingHappens);
    int code = 0;
    if (windows_.shown.empty() && pump_.TakeQuit(code)) PostQuitMessage(code);
  }

  void ShowMessage(const Text& text, const Text& title, MessageIcon icon) override {
    windows_.context.mirror.SynchroniseAll();
    const VisualStyles::Use use(styles_);
    const std::wstring caption =
        ToWide(OneLine(title.empty() ? kApplicationTitle : TextView(title)));
    MessageBoxW(
        windows_.Top(), ToWide(Lines(text, kLongestMessage, kCrLf)).c_str(), caption.c_str(),
        MB_OK | (icon == MessageIcon::kInformation ? MB_ICONINFORMATION : MB_ICONEXCLAMATION));
  }

  Text OpenFile(const Text& title, const Text& filter, const Text& default_extension) override {
    const VisualStyles::Use use(styles_);
    const std::wstring filters = FilterList(filter);
    const std::wstring caption = ToWide(title);
    const std::wstring extension = ToWide(default_extension);
    Text path(kLongestPath, u'\0');
    OPENFILENAMEW open = {};
    open.lStructSize = sizeof open;
    open.hwndOwner = windows_.Top();
    open.lpstrFilter = filters.c_str();
    open.lpstrFile = reinterpret_cast<wchar_t*>(path.data());
    open.nMaxFile = kLongestPath;
    open.lpstrTitle = caption.c_str();
    open.lpstrDefExt = extension.c_str();
    open.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_EXPLORER;
    if (!GetOpenFileNameW(&open)) return {};
    path.resize(path.find(u'\0'));
    return path;
  }

  void ShowPopup(Form& form, PopupMenu& menu) override {
    windows_.context.mirror.SynchroniseAll();
    const HMENU native = CreatePopupMenu();
    UINT command = 0;
    for (const PopupMenu::Item& item : menu.items) Append(native, item, ++command);
    POINT place;
    GetCursorPos(&place);
    place = windows_.context.popup_place.value_or(place);
    const BOOL chosen = TrackPopupMenu(native, TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0,
                                       WindowOf(form), nullptr);
    DestroyMenu(native);
    if (chosen > 0 && menu.on_click) menu.on_click(chosen - 1);
  }

  Rect Screen() const override {
    RECT area = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return {Logical(area.left), Logical(area.top), Logical(area.right - area.left),
            Logical(area.bottom - area.top)};
  }

  void Invalidate(Form&, Control& control) override {
    if (!control.Peer()) return;
    InvalidateRect(static_cast<WinControlPeer*>(control.Peer())->Window(), nullptr, FALSE);
  }

 private:
  int Logical(LONG device) const { return MulDiv(device, 96, windows_.context.dots_per_inch); }

  const WinForm* Find(const Form& form) const {
    for (const WinForm* shown : windows_.shown) {
      if (&shown->GetForm() == &form) return shown;
    }
    return nullptr;
  }

  bool IsShown(const Form& form) const { return Find(form) != nullptr; }

  HWND WindowOf(const Form& form) const {
    const WinForm* shown = Find(form);
    return shown ? shown->Window() : windows_.Top();
  }

  static void Append(HMENU native, const PopupMenu::Item& item, UINT command) {
    if (item.caption == u"-") {
      AppendMenuW(native, MF_SEPARATOR, 0, nullptr);
      return;
    }
    const std::wstring text = ToWide(OneLine(item.caption) + u'\t' + OneLine(item.shortcut));
    AppendMenuW(native, MF_STRING | (item.enabled ? 0u : static_cast<UINT>(MF_GRAYED)), command,
                text.c_str());
  }

  VisualStyles styles_;
  WinWindows windows_;
  WinPump pump_;
};

}  // namespace

std::unique_ptr<Toolkit> MakeWinToolkit(EventSources& sources) {
  return std::make_unique<WinToolkit>(sources);
}

}  // namespace vesko
