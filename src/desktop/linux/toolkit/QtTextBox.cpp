#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProxyStyle>
#include <QSignalBlocker>
#include <functional>
#include <utility>

#include "desktop/common/ShownText.h"
#include "desktop/linux/toolkit/QtControls.h"
#include "desktop/linux/toolkit/QtKeys.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

// Laying out more than this takes longer than a person waits, and nobody reads that far.
constexpr size_t kLongestShown = size_t{256} * 1024;

/// Masks every character of a password by "*", including the one typed last.
class MaskStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    if (hint == SH_LineEdit_PasswordCharacter) return u'*';
    if (hint == SH_LineEdit_PasswordMaskDelay) return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
  }
};

/// Offers each key to the control before the widget sees it. Lives as long as the widget, which may
/// be longer than the peer.
class KeyHook : public QObject {
 public:
  using Handler = std::function<bool(const QKeyEvent& event)>;

  KeyHook(QWidget* widget, Handler handler) : QObject(widget), handler_(std::move(handler)) {
    widget->installEventFilter(this);
  }

  void Detach() { handler_ = nullptr; }

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::KeyPress || !handler_) return false;
    const Handler handler = handler_;  // which may detach this
    return handler(*static_cast<QKeyEvent*>(event));
  }

 private:
  Handler handler_;
};

/// What boxes of one line and of several have in common.
template <typename Edit>
class TextBoxPeer : public QtPeerOf<TextBox, Edit> {
 public:
  TextBoxPeer(TextBox& control, const PeerContext& context)
      : QtPeerOf<TextBox, Edit>(control, context),
        hook_(new KeyHook(this->Native(),
                          [this](const QKeyEvent& event) { return KeyPressed(event); })) {}
  ~TextBoxPeer() override { hook_->Detach(); }

  bool WantsLabel() const override { return true; }

  void TakeFocus() override {
    QtControlPeer::TakeFocus();
    this->Native()->selectAll();
  }

 private:
  bool KeyPressed(const QKeyEvent& event) {
    this->SynchroniseIfChanged();  // or the key would edit an outdated text
    const int key = KeyCode(event);
    if (key == 0) return false;
    bool used = false;
    RunHandler(this->Context(), [&] { used = this->control_.PressKey(key); });
    return used;
  }

  KeyHook* hook_;
};

class LinePeer : public TextBoxPeer<QLineEdit> {
 public:
  LinePeer(TextBox& control, const PeerContext& context) : TextBoxPeer(control, context) {
    // Not textEdited, which does not report what assistive programs change.
    QObject::connect(Native(), &QLineEdit::textChanged, Lifetime(), [this](const QString& text) {
      MarkChanged();  // the control may take less than the text
      const QPointer<QObject> alive = Lifetime();
      RunHandler(Context(), [&] { control_.Type(ToText(text)); });
      if (alive) SynchroniseIfChanged();  // before more is pasted behind what was not taken
    });
  }

 protected:
  void ShowOwnState() override {
    ShowPassword();
    Native()->setReadOnly(control_.ReadOnly());
    ShowText(ToQString(control_.GetText()));
  }

 private:
  /// Keeps the cursor's distance from the end of the text: after a paste that was cut, it follows
  /// the part that was kept.
  void ShowText(const QString& text) {
    if (Native()->text() == text) return;
    const auto behind = Native()->text().size() - Native()->cursorPosition();
    const QSignalBlocker silent(Native());
    Native()->setText(text);
    Native()->setCursorPosition(static_cast<int>(text.size() - behind));
  }

  void ShowPassword() {
    if (control_.Password() == (Native()->echoMode() == QLineEdit::Password)) return;
    if (control_.Password()) {
      auto* const mask = new MaskStyle;
      mask->setParent(Native());
      Native()->setStyle(mask);
    }
    Native()->setEchoMode(control_.Password() ? QLineEdit::Password : QLineEdit::Normal);
  }
};

class ParagraphsPeer : public TextBoxPeer<QPlainTextEdit> {
 public:
  ParagraphsPeer(TextBox& control, const PeerContext& context) : TextBoxPeer(control, context) {
    Native()->setTabChangesFocus(true);
    QObject::connect(Native(), &QPlainTextEdit::textChanged, Lifetime(), [this] { TextChanged(); });
  }

 protected:
  void ShowOwnState() override {
    ShowText();
    // A text that is not shown as it is cannot be edited without loss.
    Native()->setReadOnly(control_.ReadOnly() || !shown_whole_);
  }

 private:
  void ShowText() {
    const TextView text = control_.GetText();
    const TextView head = text.substr(0, kLongestShown + 1);
    if (head == shown_) return;
    shown_ = head;
    const QSignalBlocker silent(Native());
    Native()->setPlainText(ToQString(Lines(text, kLongestShown, u"\n", &shown_whole_)));
  }

  void TextChanged() {
    const Text text = ReplaceAll(ToText(Native()->toPlainText()), u"\n", kCrLf);
    shown_ = text;
    MarkChanged();
    RunHandler(Context(), [&] { control_.Type(text); });
  }

  Text shown_;
  bool shown_whole_ = true;
};

}  // namespace

PeerPtr MakeTextBoxPeer(TextBox& control, const PeerContext& context) {
  if (control.MultiLine()) return std::make_unique<ParagraphsPeer>(control, context);
  return std::make_unique<LinePeer>(control, context);
}

}  // namespace vesko
