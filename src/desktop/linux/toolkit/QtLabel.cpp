#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "desktop/linux/toolkit/QtControls.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

// Wrapped text is comfortable to read at about this many characters a line.
constexpr int kComfortableLine = 52;
// Enough of a shortened line to know what it is about. The same for every text, or the window would
// change with it.
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
    // How high it really gets depends on the width that it is given.
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

class LabelPeer : public QtControlPeer {
 public:
  LabelPeer(Label& control, const PeerContext& context)
      : QtControlPeer(control, new TextLabel, context), control_(control) {}

  void LeadTo(QtControlPeer& target) override {
    if (control_.Literal()) return;
    GetLabel()->setBuddy(target.Widget());
    if (target.WantsLabel()) target.SetLabel(WithoutMnemonic(OneLine(control_.Caption())));
  }

 protected:
  void ShowOwnState() override {
    TextLabel* const label = GetLabel();
    label->SetWraps(control_.Wraps());
    label->SetShortened(control_.Literal() && !control_.Wraps());
    label->setText(Shown());
  }

 private:
  TextLabel* GetLabel() const { return static_cast<TextLabel*>(Widget()); }

  QString Shown() const {
    const QString text = control_.Wraps() ? WithBreaks(Lines(control_.Caption(), kLongestParagraph))
                                          : OneLine(control_.Caption());
    // A label without a buddy shows an "&" as it stands.
    return control_.Literal() || GetLabel()->buddy() ? text : WithoutMnemonic(text);
  }

  Label& control_;
};

}  // namespace

PeerPtr MakeQtPeer(Label& control, const PeerContext& context) {
  return std::make_unique<LabelPeer>(control, context);
}

}  // namespace vesko
