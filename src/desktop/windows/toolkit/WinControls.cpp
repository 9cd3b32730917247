// Labels, buttons, boxes, bars and plain lists.

#include <algorithm>

#include "desktop/windows/toolkit/WinControlPeer.h"
#include "desktop/windows/toolkit/WinText.h"

namespace vesko {

namespace {

constexpr size_t kLongestShown = 256 * 1024;  // code units of a text box; the state stays whole

class LabelPeer final : public WinControlPeer {
 public:
  LabelPeer(Label& label, HWND parent, WinContext& context)
      : WinControlPeer(label, context), label_(label) {
    DWORD style = SS_LEFT;
    if (label.Literal())
      style = label.Wraps() ? SS_NOPREFIX | SS_EDITCONTROL
                            : SS_LEFTNOWORDWRAP | SS_NOPREFIX | SS_ENDELLIPSIS;
    Create(parent, WC_STATICW, style);
  }

  bool TakesFocus() const override { return false; }
  bool GrowsSideways() const override { return label_.Literal() || label_.Wraps(); }
  int LeastWidth() const override {
    if (label_.Wraps()) return context_.Scaled(kWrapWidth);
    return label_.Literal() ? context_.Scaled(40) : TextSize(label_.Caption()).cx;
  }
  int HeightFor(int width) const override {
    if (!label_.Wraps()) return LineHeight();
    return std::max<int>(LineHeight(),
                         Measure(NativeFont(), Caption(), width, label_.Literal()).cy);
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
    return label_.Wraps() ? Lines(label_.Caption(), kLongestCaption) : OneLine(label_.Caption());
  }

  Label& label_;
};

class ButtonPeer final : public WinControlPeer {
 public:
  ButtonPeer(CommandButton& button, HWND parent, WinContext& context)
      : WinControlPeer(button, context), button_(button) {
    Create(parent, WC_BUTTONW, BS_PUSHBUTTON | BS_NOTIFY | WS_TABSTOP);
  }

  int LeastWidth() const override {
    return std::max<int>(context_.Scaled(75), TextSize(button_.Caption()).cx + context_.Scaled(22));
  }
  int HeightFor(int) const override { return LineHeight() + context_.Scaled(10); }

  bool Command(WORD code) override {
    if (code != BN_CLICKED) return false;
    button_.Click();
    return true;
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SetTextIfOther(Window(), OneLine(button_.Caption()));
  }

 private:
  CommandButton& button_;
};

class CheckBoxPeer final : public WinControlPeer {
 public:
  CheckBoxPeer(CheckBox& box, HWND parent, WinContext& context)
      : WinControlPeer(box, context), box_(box) {
    Create(parent, WC_BUTTONW, BS_CHECKBOX | WS_TABSTOP);
  }

  int LeastWidth() const override { return TextSize(box_.Caption()).cx + context_.Scaled(22); }
  int HeightFor(int) const override { return LineHeight() + context_.Scaled(4); }

  bool Command(WORD code) override {
    if (code != BN_CLICKED) return false;
    box_.Click();
    return true;
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SetTextIfOther(Window(), OneLine(box_.Caption()));
    SendMessageW(Window(), BM_SETCHECK, box_.Value() == 0 ? BST_UNCHECKED : BST_CHECKED, 0);
  }

 private:
  CheckBox& box_;
};

class TextBoxPeer final : public WinControlPeer {
 public:
  TextBoxPeer(TextBox& box, HWND parent, WinContext& context)
      : WinControlPeer(box, context), box_(box) {
    DWORD style = WS_TABSTOP;
    style |= box.MultiLine() ? ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL : ES_AUTOHSCROLL;
    if (box.ReadOnly()) style |= ES_READONLY;
    if (box.Password()) style |= ES_PASSWORD;
    Create(parent, WC_EDITW, style, WS_EX_CLIENTEDGE);
    SendMessageW(Window(), EM_SETLIMITTEXT, 0, 0);
    if (box.Password()) SendMessageW(Window(), EM_SETPASSWORDCHAR, L'*', 0);
  }

  bool GrowsSideways() const override { return true; }
  bool GrowsDown() const override { return box_.MultiLine(); }
  int LeastWidth() const override { return context_.Scaled(120); }
  int HeightFor(int) const override {
    const int around = 2 * GetSystemMetrics(SM_CYEDGE) + context_.Scaled(4);
    return LineHeight() * (box_.MultiLine() ? 4 : 1) + around;
  }

  bool Command(WORD code) override {
    if (code == EN_CHANGE && !showing_) {
      MarkChanged();  // the box may take less than the text
      box_.Type(WindowText(Window()));
    }
    return code == EN_CHANGE;
  }

  bool KeyPressed(WPARAM key) override { return box_.PressKey(static_cast<int>(key)); }

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
    if (box_.MultiLine()) {
      // Long texts do not change by typing here: the body pane is read only.
      if (shown_ == box_.GetText()) return;
      shown_ = box_.GetText();
      SetWindowTextW(Window(), Lines(shown_, kLongestShown).c_str());
      return;
    }
    ShowLine(ToWide(box_.GetText()));
  }

  /// The cursor stays before the same text: after a paste, behind what is left of it.
  void ShowLine(const std::wstring& text) {
    DWORD cursor = 0;
    SendMessageW(Window(), EM_GETSEL, 0, reinterpret_cast<LPARAM>(&cursor));
    const int behind = GetWindowTextLengthW(Window()) - static_cast<int>(cursor);
    if (!SetTextIfOther(Window(), text)) return;
    const int place = std::max(static_cast<int>(text.size()) - behind, 0);
    SendMessageW(Window(), EM_SETSEL, static_cast<WPARAM>(place), place);
  }

  TextBox& box_;
  Text shown_;
  bool showing_ = false;
};

class ProgressBarPeer final : public WinControlPeer {
 public:
  ProgressBarPeer(ProgressBar& bar, HWND parent, WinContext& context)
      : WinControlPeer(bar, context), bar_(bar) {
    Create(parent, PROGRESS_CLASSW, PBS_SMOOTH);
  }

  bool TakesFocus() const override { return false; }
  bool GrowsSideways() const override { return true; }
  int LeastWidth() const override { return context_.Scaled(150); }
  int HeightFor(int) const override { return context_.Scaled(18); }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SendMessageW(Window(), PBM_SETRANGE32, 0, bar_.Maximum());
    SendMessageW(Window(), PBM_SETPOS, static_cast<WPARAM>(bar_.Value()), 0);
  }

 private:
  ProgressBar& bar_;
};

class ListBoxPeer final : public WinControlPeer {
 public:
  ListBoxPeer(ListBox& list, HWND parent, WinContext& context)
      : WinControlPeer(list, context), list_(list) {
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
    list_.Click(static_cast<int>(SendMessageW(Window(), LB_GETCURSEL, 0, 0)));
    return true;
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    if (!SameItems()) Refill();
    const auto shown = static_cast<int>(SendMessageW(Window(), LB_GETCURSEL, 0, 0));
    if (shown != list_.ListIndex()) {
      SendMessageW(Window(), LB_SETCURSEL, static_cast<WPARAM>(list_.ListIndex()), 0);
    }
  }

 private:
  bool SameItems() const {
    if (static_cast<int>(shown_.size()) != list_.Count()) return false;
    for (int i = 0; i < list_.Count(); ++i) {
      if (shown_[static_cast<size_t>(i)] != list_.Item(i)) return false;
    }
    return true;
  }

  void Refill() {
    shown_.clear();
    SendMessageW(Window(), WM_SETREDRAW, FALSE, 0);
    SendMessageW(Window(), LB_RESETCONTENT, 0, 0);
    for (int i = 0; i < list_.Count(); ++i) {
      shown_.push_back(list_.Item(i));
      SendMessageW(Window(), LB_ADDSTRING, 0,
                   reinterpret_cast<LPARAM>(OneLine(list_.Item(i)).c_str()));
    }
    SendMessageW(Window(), WM_SETREDRAW, TRUE, 0);
    InvalidateRect(Window(), nullptr, TRUE);
  }

  ListBox& list_;
  std::vector<Text> shown_;
};

}  // namespace

WinPeerPtr MakeWinPeer(Label& control, HWND parent, WinContext& context) {
  return std::make_unique<LabelPeer>(control, parent, context);
}
WinPeerPtr MakeWinPeer(CommandButton& control, HWND parent, WinContext& context) {
  return std::make_unique<ButtonPeer>(control, parent, context);
}
WinPeerPtr MakeWinPeer(CheckBox& control, HWND parent, WinContext& context) {
  return std::make_unique<CheckBoxPeer>(control, parent, context);
}
WinPeerPtr MakeWinPeer(TextBox& control, HWND parent, WinContext& context) {
  return std::make_unique<TextBoxPeer>(control, parent, context);
}
WinPeerPtr MakeWinPeer(ProgressBar& control, HWND parent, WinContext& context) {
  return std::make_unique<ProgressBarPeer>(control, parent, context);
}
WinPeerPtr MakeWinPeer(ListBox& control, HWND parent, WinContext& context) {
  return std::make_unique<ListBoxPeer>(control, parent, context);
}

}  // namespace vesko
