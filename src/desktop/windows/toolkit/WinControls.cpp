#include "desktop/windows/toolkit/WinControls.h"

#include <algorithm>
#include <stdexcept>

#include "desktop/common/ShownText.h"
#include "desktop/windows/toolkit/WinTabs.h"
#include "desktop/windows/toolkit/WinText.h"

namespace vesko {

namespace {

constexpr size_t kLongestShown = 256 * 1024;  // code units of a text box; the state stays whole

class LabelPeer final : public WinPeerOf<Label> {
 public:
  LabelPeer(Label& label, HWND parent, WinContext& context) : WinPeerOf(label, context) {
    DWORD style = SS_LEFT;
    if (label.Literal())
      style = label.Wraps() ? SS_NOPREFIX | SS_EDITCONTROL
                            : SS_LEFTNOWORDWRAP | SS_NOPREFIX | SS_ENDELLIPSIS;
    Create(parent, WC_STATICW, style);
  }

  bool TakesFocus() const override { return false; }
  bool GrowsSideways() const override { return control_.Literal() || control_.Wraps(); }
  int LeastWidth() const override {
    if (control_.Wraps()) return context_.Scaled(kWrapWidth);
    return control_.Literal() ? context_.Scaled(40) : TextSize(control_.Caption()).cx;
  }
  int HeightFor(int width) const override {
    if (!control_.Wraps()) return LineHeight();
    return std::max<int>(LineHeight(),
                         Measure(NativeFont(), Caption(), width, control_.Literal()).cy);
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SetTextIfOther(Window(), Caption());
  }

 private:
  static constexpr int kWrapWidth = 300;
  static constexpr size_t kLongestCaption = 4000;

  std::wstring Caption() const {
    return ToWide(control_.Wraps() ? Lines(control_.Caption(), kLongestCaption, kCrLf)
                                   : OneLine(control_.Caption()));
  }
};

class ButtonPeer final : public WinPeerOf<CommandButton> {
 public:
  ButtonPeer(CommandButton& button, HWND parent, WinContext& context) : WinPeerOf(button, context) {
    Create(parent, WC_BUTTONW, BS_PUSHBUTTON | BS_NOTIFY | WS_TABSTOP);
  }

  int LeastWidth() const override {
    return std::max<int>(context_.Scaled(75),
                         TextSize(control_.Caption()).cx + context_.Scaled(22));
  }
  int HeightFor(int) const override { return LineHeight() + context_.Scaled(10); }

  bool Command(WORD code) override {
    if (code != BN_CLICKED) return false;
    control_.Click();
    return true;
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SetTextIfOther(Window(), ToWide(OneLine(control_.Caption())));
  }

 private:
};

class CheckBoxPeer final : public WinPeerOf<CheckBox> {
 public:
  CheckBoxPeer(CheckBox& box, HWND parent, WinContext& context) : WinPeerOf(box, context) {
    Create(parent, WC_BUTTONW, BS_CHECKBOX | WS_TABSTOP);
  }

  int LeastWidth() const override { return TextSize(control_.Caption()).cx + context_.Scaled(22); }
  int HeightFor(int) const override { return LineHeight() + context_.Scaled(4); }

  bool Command(WORD code) override {
    if (code != BN_CLICKED) return false;
    control_.Click();
    return true;
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SetTextIfOther(Window(), ToWide(OneLine(control_.Caption())));
    SendMessageW(Window(), BM_SETCHECK, control_.Value() == 0 ? BST_UNCHECKED : BST_CHECKED, 0);
  }

 private:
};

class TextBoxPeer final : public WinPeerOf<TextBox> {
 public:
  TextBoxPeer(TextBox& box, HWND parent, WinContext& context) : WinPeerOf(box, context) {
    DWORD style = WS_TABSTOP;
    style |= box.MultiLine() ? ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL : ES_AUTOHSCROLL;
    if (box.ReadOnly()) style |= ES_READONLY;
    if (box.Password()) style |= ES_PASSWORD;
    Create(parent, WC_EDITW, style, WS_EX_CLIENTEDGE);
    SendMessageW(Window(), EM_SETLIMITTEXT, 0, 0);
    if (box.Password()) SendMessageW(Window(), EM_SETPASSWORDCHAR, L'*', 0);
  }

  bool GrowsSideways() const override { return true; }
  bool GrowsDown() const override { return control_.MultiLine(); }
  int LeastWidth() const override { return context_.Scaled(120); }
  int HeightFor(int) const override {
    const int around = 2 * GetSystemMetrics(SM_CYEDGE) + context_.Scaled(4);
    return LineHeight() * (control_.MultiLine() ? 4 : 1) + around;
  }

  bool Command(WORD code) override {
    if (code == EN_CHANGE && !showing_) {
      MarkChanged();  // the box may take less than the text
      control_.Type(WindowText(Window()));
    }
    return code == EN_CHANGE;
  }

  bool KeyPressed(WPARAM key) override { return control_.PressKey(static_cast<int>(key)); }

  void TakeFocus() override {
    WinControlPeer::TakeFocus();
    SendMessageW(Window(), EM_SETSEL, 0, -1);
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    showing_ = true;
    ShowText();
    showing_ = false;
  }

 private:
  void ShowText() {
    if (control_.MultiLine()) {
      // Compared with the state, not the native text, which may be shortened: the only box of
      // several lines is read only.
      if (shown_ == control_.GetText()) return;
      shown_ = control_.GetText();
      SetWindowTextW(Window(), ToWide(Lines(shown_, kLongestShown, kCrLf)).c_str());
      return;
    }
    ShowLine(ToWide(control_.GetText()));
  }

  /// Keeps the cursor's distance from the end of the text: after a paste that was cut, it follows
  /// the part that was kept.
  void ShowLine(const std::wstring& text) {
    DWORD cursor = 0;
    SendMessageW(Window(), EM_GETSEL, 0, reinterpret_cast<LPARAM>(&cursor));
    const int behind = GetWindowTextLengthW(Window()) - static_cast<int>(cursor);
    if (!SetTextIfOther(Window(), text)) return;
    const int place = std::max(static_cast<int>(text.size()) - behind, 0);
    SendMessageW(Window(), EM_SETSEL, static_cast<WPARAM>(place), place);
  }

  Text shown_;
  bool showing_ = false;
};

class ProgressBarPeer final : public WinPeerOf<ProgressBar> {
 public:
  ProgressBarPeer(ProgressBar& bar, HWND parent, WinContext& context) : WinPeerOf(bar, context) {
    Create(parent, PROGRESS_CLASSW, PBS_SMOOTH);
  }

  bool TakesFocus() const override { return false; }
  bool GrowsSideways() const override { return true; }
  int LeastWidth() const override { return context_.Scaled(150); }
  int HeightFor(int) const override { return context_.Scaled(18); }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SendMessageW(Window(), PBM_SETRANGE32, 0, control_.Maximum());
    SendMessageW(Window(), PBM_SETPOS, static_cast<WPARAM>(control_.Value()), 0);
  }

 private:
};

class ListBoxPeer final : public WinPeerOf<ListBox> {
 public:
  ListBoxPeer(ListBox& list, HWND parent, WinContext& context) : WinPeerOf(list, context) {
    Create(parent, WC_LISTBOXW, LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP,
           WS_EX_CLIENTEDGE);
    SetWindowTextW(Window(), ToWide(list.AccessibleName()).c_str());
  }

  bool GrowsSideways() const override { return true; }
  bool GrowsDown() const override { return true; }
  int LeastWidth() const override { return context_.Scaled(120); }
  int HeightFor(int) const override { return LineHeight() * 5 + context_.Scaled(6); }

  bool Command(WORD code) override {
    if (code != LBN_SELCHANGE) return false;
    control_.Click(static_cast<int>(SendMessageW(Window(), LB_GETCURSEL, 0, 0)));
    return true;
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    if (!SameItems()) Refill();
    const auto shown = static_cast<int>(SendMessageW(Window(), LB_GETCURSEL, 0, 0));
    if (shown != control_.ListIndex()) {
      SendMessageW(Window(), LB_SETCURSEL, static_cast<WPARAM>(control_.ListIndex()), 0);
    }
  }

 private:
  bool SameItems() const {
    if (static_cast<int>(shown_.size()) != control_.Count()) return false;
    for (int i = 0; i < control_.Count(); ++i) {
      if (shown_[static_cast<size_t>(i)] != control_.Item(i)) return false;
    }
    return true;
  }

  void Refill() {
    shown_.clear();
    SendMessageW(Window(), WM_SETREDRAW, FALSE, 0);
    SendMessageW(Window(), LB_RESETCONTENT, 0, 0);
    for (int i = 0; i < control_.Count(); ++i) {
      shown_.push_back(control_.Item(i));
      SendMessageW(Window(), LB_ADDSTRING, 0,
                   reinterpret_cast<LPARAM>(ToWide(OneLine(control_.Item(i))).c_str()));
    }
    SendMessageW(Window(), WM_SETREDRAW, TRUE, 0);
    InvalidateRect(Window(), nullptr, TRUE);
  }

  std::vector<Text> shown_;
};

class FramePeer final : public WinPeerOf<Frame> {
 public:
  FramePeer(Frame& frame, HWND parent, WinContext& context)
      : WinPeerOf(frame, context), parent_(parent) {
    Create(parent, WC_BUTTONW, BS_GROUPBOX, WS_EX_TRANSPARENT);
  }

  std::vector<HWND> Containers() const override { return {parent_}; }

  bool TakesFocus() const override { return false; }
  bool GrowsSideways() const override { return true; }
  int LeastWidth() const override { return TextSize(control_.Caption()).cx + context_.Scaled(24); }
  int HeightFor(int) const override { return LineHeight(); }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SetTextIfOther(Window(), ToWide(OneLine(control_.Caption())));
  }

 private:
  HWND parent_;
};

template <typename Peer>
WinPeerPtr Make(typename Peer::Kind& control, HWND parent, WinContext& context) {
  return std::make_unique<Peer>(control, parent, context);
}

/// Null where the control is of another kind.
template <typename Kind, WinPeerPtr (*kMake)(Kind&, HWND, WinContext&)>
WinPeerPtr MakeFor(Control& control, HWND parent, WinContext& context) {
  auto* const kind = dynamic_cast<Kind*>(&control);
  return kind ? kMake(*kind, parent, context) : nullptr;
}

constexpr WinPeerPtr (*kMakers[])(Control&, HWND, WinContext&) = {
    MakeFor<Label, Make<LabelPeer>>,
    MakeFor<CommandButton, Make<ButtonPeer>>,
    MakeFor<CheckBox, Make<CheckBoxPeer>>,
    MakeFor<TextBox, Make<TextBoxPeer>>,
    MakeFor<ProgressBar, Make<ProgressBarPeer>>,
    MakeFor<ListBox, Make<ListBoxPeer>>,
    MakeFor<ListView, MakeListViewPeer>,
    MakeFor<Frame, Make<FramePeer>>,
    MakeFor<TabControl, Make<WinTabs>>,
};

}  // namespace

WinPeerPtr MakeWinPeer(Control& control, HWND parent, WinContext& context) {
  for (const auto make : kMakers) {
    if (WinPeerPtr peer = make(control, parent, context)) return peer;
  }
  throw std::logic_error("a control of an unknown kind");
}

}  // namespace vesko
