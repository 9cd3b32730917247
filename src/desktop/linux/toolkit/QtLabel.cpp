#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "desktop/common/ShownText.h"
#include "desktop/linux/toolkit/QtControls.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

// Wrapped text is comfortable to read at about this many characters a line.
constexpr int kComfortableLine = 52;
// Enough of a shortened line to know what it is about. It does not depend on the text, or the
// window would change with it.
constexpr int kShortestLine = 36;
constexpr size_t kLongestParagraph = 10000;

/// A label that either shortens its one line to the room that there is, or wraps over several.
class TextLabel : public QLabel {
 public:
  TextLabel() { setTextFormat(Qt::PlainText); }

  void SetShortened(bool shortened) {
    if (shortened_ == shortened) return;
    shortened_ = shortened;
    setSizePolicy(shortened ? QSizePolicy::Expanding : QSizePolicy::Preferred, QSizePolicy::Fixed);
  }

  void SetWraps(bool wraps) {
    if (wordWrap() == wraps) return;
    setWordWrap(wraps);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    if (wraps) setSizePolicy(policy);
  }

  QSize sizeHint() const override {
    if (wordWrap()) return WrappedSize();
    return shortened_ ? QSize(Chars(kShortestLine), LineHeight()) : QLabel::sizeHint();
  }
  QSize minimumSizeHint() const override {
    // The real height depends on the width that the label is given.
    if (wordWrap()) return {WrappedSize().width(), LineHeight()};
    return shortened_ ? sizeHint() : QLabel::minimumSizeHint();
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    if (!shortened_) return QLabel::paintEvent(event);
    QPainter painter(this);
    const QRect room = contentsRect();
    const QString line = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
    style()->drawItemText(&painter, room, static_cast<int>(alignment()), palette(), isEnabled(),
                          line, foregroundRole());
  }

 private:
  int Chars(int count) const { return fontMetrics().averageCharWidth() * count; }
  int LineHeight() const { return fontMetrics().lineSpacing(); }

  QSize WrappedSize() const {
    const int widest = std::min(Chars(kComfortableLine), screen()->availableSize().width() * 4 / 5);
    const int width = std::min(fontMetrics().size(0, text()).width() + 1, widest);
    return {width, std::max(heightForWidth(width), LineHeight())};
  }

  bool shortened_ = false;
};

class LabelPeer : public QtPeerOf<Label, TextLabel> {
 public:
  using QtPeerOf::QtPeerOf;

  void LeadTo(QtControlPeer& target) override {
    if (control_.Literal()) return;
    Native()->setBuddy(target.GetWidget());
    if (target.WantsLabel()) {
      target.SetLabel(WithoutMnemonic(ToQString(OneLine(control_.Caption()))));
    }
  }

 protected:
  void ShowOwnState() override {
    Native()->SetWraps(control_.Wraps());
    Native()->SetShortened(control_.Literal() && !control_.Wraps());
    Native()->setText(Shown());
  }

 private:
  QString Shown() const {
    const QString text = control_.Wraps() ? WithBreaks(ToQString(Paragraph()))
                                          : ToQString(OneLine(control_.Caption()));
    // A label without a buddy shows an "&" as it is.
    return control_.Literal() || Native()->buddy() ? text : WithoutMnemonic(text);
  }

  Text Paragraph() const { return Lines(control_.Caption(), kLongestParagraph, u"\n"); }
};

}  // namespace

PeerPtr MakeLabelPeer(Label& control, const PeerContext& context) {
  return std::make_unique<LabelPeer>(control, context);
}

}  // namespace vesko
