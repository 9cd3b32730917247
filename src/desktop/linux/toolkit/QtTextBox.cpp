#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProxyStyle>
#include <QSignalBlocker>
#include <utility>

#include "desktop/linux/toolkit/QtControls.h"
#include "desktop/linux/toolkit/QtKeys.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

// Laying out more than this takes longer than a person waits, and nobody reads on.
constexpr size_t kLongestShown = 256 * 1024;

/// Masks every character of a password by "*", the one typed last included.
class MaskStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    if (hint == SH_LineEdit_PasswordCharacter) return u'*';
    if (hint == SH_LineEdit_PasswordMaskDelay) return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
  }
};

/// Offers each key to the control before the widget sees it. Lives as long as the widget.
class KeyHook : public QObject {
 public:
  KeyHook(QWidget* widget, QtControlPeer& peer, TextBox& control, const PeerContext& context)
      : QObject(widget), peer_(&peer), control_(control), context_(context) {
    widget->installEventFilter(this);
  }

  void Detach() { peer_ = nullptr; }

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::KeyPress || !peer_) return false;
    peer_->SynchroniseIfChanged();  // or the key would change an older text
    const int key = KeyCode(*static_cast<QKeyEvent*>(event));
    if (key == 0) return false;
    bool used = false;
    Raise(context_, [&] { used = control_.PressKey(key); });
    return used;
  }

 private:
  QtControlPeer* peer_;
  TextBox& control_;
  PeerContext context_;
};

class LinePeer : public QtControlPeer {
 public:
  LinePeer(TextBox& control, const PeerContext& context)
      : QtControlPeer(control, new QLineEdit, context), control_(control) {
    hook_ = new KeyHook(Edit(), *this, control, context);
    // Programs that help a person to write change the text as well as the keyboard does.
    QObject::connect(Edit(), &QLineEdit::textChanged, Lifetime(), [this](const QString& text) {
      MarkChanged();  // the control may take less than the text
      Raise(Context(), [&] { control_.Type(ToText(text)); });
    });
  }
  ~LinePeer() override { hook_->Detach(); }

  bool WantsLabel() const override { return true; }

  void TakeFocus() override {
    QtControlPeer::TakeFocus();
    Edit()->selectAll();
  }

 protected:
  void ShowOwnState() override {
    ShowPassword();
    Edit()->setReadOnly(control_.ReadOnly());
    ShowText(ToQString(control_.GetText()));
  }

 private:
  QLineEdit* Edit() const { return static_cast<QLineEdit*>(Widget()); }

  /// The cursor stays before the same text: after a paste, behind what is left of it.
  void ShowText(const QString& text) {
    if (Edit()->text() == text) return;
    const auto behind = Edit()->text().size() - Edit()->cursorPosition();
    const QSignalBlocker silent(Edit());
    Edit()->setText(text);
    Edit()->setCursorPosition(static_cast<int>(text.size() - behind));
  }

  void ShowPassword() {
    if (control_.Password() == (Edit()->echoMode() == QLineEdit::Password)) return;
    if (control_.Password()) {
      auto* const mask = new MaskStyle;
      mask->setParent(Edit());
      Edit()->setStyle(mask);
    }
    Edit()->setEchoMode(control_.Password() ? QLineEdit::Password : QLineEdit::Normal);
  }

  TextBox& control_;
  KeyHook* hook_;
};

class ParagraphsPeer : public QtControlPeer {
 public:
  ParagraphsPeer(TextBox& control, const PeerContext& context)
      : QtControlPeer(control, new QPlainTextEdit, context), control_(control) {
    hook_ = new KeyHook(Edit(), *this, control, context);
    Edit()->setTabChangesFocus(true);
    QObject::connect(Edit(), &QPlainTextEdit::textChanged, Lifetime(), [this] { TextChanged(); });
  }
  ~ParagraphsPeer() override { hook_->Detach(); }

  bool WantsLabel() const override { return true; }

  void TakeFocus() override {
    QtControlPeer::TakeFocus();
    Edit()->selectAll();
  }

 protected:
  void ShowOwnState() override {
    ShowText();
    // What is not shown as it is cannot be edited without loss.
    Edit()->setReadOnly(control_.ReadOnly() || !shown_whole_);
  }

 private:
  QPlainTextEdit* Edit() const { return static_cast<QPlainTextEdit*>(Widget()); }

  void ShowText() {
    const TextView text = control_.GetText();
    const TextView head = text.substr(0, kLongestShown + 1);
    if (head == shown_) return;
    shown_ = head;
    const QSignalBlocker silent(Edit());
    Edit()->setPlainText(Lines(text, kLongestShown, &shown_whole_));
  }

  void TextChanged() {
    Text text = ReplaceAll(ToText(Edit()->toPlainText()), u"\n", kCrLf);
    shown_ = text;
    MarkChanged();
    Raise(Context(), [&] { control_.Type(std::move(text)); });
  }

  TextBox& control_;
  Text shown_;
  bool shown_whole_ = true;
  KeyHook* hook_;
};

}  // namespace

PeerPtr MakeQtPeer(TextBox& control, const PeerContext& context) {
  if (control.MultiLine()) return std::make_unique<ParagraphsPeer>(control, context);
  return std::make_unique<LinePeer>(control, context);
}

}  // namespace vesko
