#include <QCursor>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>

#include "desktop/common/ShownText.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/toolkit/QtControlPeer.h"
#include "desktop/linux/toolkit/QtForm.h"
#include "desktop/linux/toolkit/QtPump.h"
#include "desktop/linux/toolkit/QtText.h"
#include "ui/Controls.h"

namespace vesko {
namespace {

constexpr std::chrono::hours kUntilSomethingHappens{1};
constexpr size_t kLongestMessage = 4000;

// Converts "description|pattern|description|pattern" for the file dialog. Files need no extension
// here, so "*.*", which stands for every file elsewhere, becomes "*".
QStringList NameFilters(const Text& filter) {
  QStringList filters;
  const std::vector<Text> pieces = Split(filter, u"|");
  for (size_t i = 0; i + 1 < pieces.size(); i += 2) {
    QString description = ToQString(OneLine(pieces[i]));
    description = description.left(description.lastIndexOf(u'(')).trimmed();
    QString patterns = ToQString(OneLine(pieces[i + 1])).replace(u';', u' ');
    if (patterns == u"*.*") patterns = QStringLiteral("*");
    filters.append(description + " (" + patterns + ")");
  }
  return filters;
}

/// Picks an existing file. A typed name without an extension stands for the one with the default
/// extension where only that exists.
class OpenDialog : public QFileDialog {
 public:
  OpenDialog(QWidget* parent, const QString& extension) : QFileDialog(parent) {
    setFileMode(ExistingFile);
    extension_ = extension;
  }

 protected:
  void accept() override {
    const QString typed = selectedFiles().value(0);
    const QString extended = typed + u'.' + extension_;
    if (!QFileInfo::exists(typed) && QFileInfo::exists(extended)) selectFile(extended);
    QFileDialog::accept();
  }

 private:
  QString extension_;
};

class QtToolkit : public Toolkit {
 public:
  Pump& GetPump() override { return *pump_; }

  std::unique_ptr<FormPeer> Realise(Form& form) override { return MakeQtForm(form, windows_); }

  void RunModal(Form& form) override {
    // The form may be destroyed while its window is shown, so only the flag is looked at.
    const std::shared_ptr<bool> open = OpenFlagOf(form);
    while (open && *open) pump_->RunPending(kUntilSomethingHappens);
  }

  void ShowMessage(const Text& text, const Text& title, MessageIcon icon) override {
    windows_.mirror.SynchroniseAll();
    QMessageBox box(windows_.Top());
    box.setWindowModality(Qt::WindowModal);
    box.setTextFormat(Qt::PlainText);
    box.setIcon(icon == MessageIcon::kInformation ? QMessageBox::Information
                                                  : QMessageBox::Warning);
    box.setWindowTitle(ToQString(OneLine(title.empty() ? kApplicationTitle : TextView(title))));
    box.setText(WithBreaks(ToQString(Lines(text, kLongestMessage, u"\n"))));
    box.exec();
  }

  Text OpenFile(const Text& title, const Text& filter, const Text& default_extension) override {
    OpenDialog dialog(windows_.Top(), ToQString(OneLine(default_extension)));
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setWindowTitle(ToQString(OneLine(title)));
    dialog.setNameFilters(NameFilters(filter));
    if (dialog.exec() != QDialog::Accepted) return {};
    return ToText(dialog.selectedFiles().value(0));
  }

  void ShowPopup(Form&, PopupMenu& menu) override {
    windows_.mirror.SynchroniseAll();
    QMenu native(windows_.Top());
    for (const PopupMenu::Item& item : menu.items) AddItem(native, item);
    const QAction* const chosen = native.exec(windows_.popup_place->value_or(QCursor::pos()));
    const auto index = native.actions().indexOf(chosen);
    if (index >= 0 && menu.on_click) menu.on_click(static_cast<int>(index));
  }

  Rect Screen() const override {
    const QRect screen = AvailableScreen(windows_);
    return {screen.x(), screen.y(), screen.width(), screen.height()};
  }

  void Invalidate(Form&, Control& control) override {
    auto* const peer = dynamic_cast<QtControlPeer*>(control.Peer());
    if (peer) peer->GetWidget()->update();
  }

 private:
  std::shared_ptr<bool> OpenFlagOf(const Form& form) const {
    for (const Windows::Shown& shown : windows_.shown) {
      if (shown.form == &form) return shown.open;
    }
    return nullptr;
  }

  static void AddItem(QMenu& native, const PopupMenu::Item& item) {
    if (item.caption == u"-") {
      native.addSeparator();
      return;
    }
    QAction* const action =
        native.addAction(ToQString(OneLine(item.caption) + u'\t' + OneLine(item.shortcut)));
    action->setEnabled(item.enabled);
  }

  Windows windows_;
  std::unique_ptr<Pump> pump_ = MakeQtPump(windows_.mirror);
};

}  // namespace

std::unique_ptr<Toolkit> MakeQtToolkit() { return std::make_unique<QtToolkit>(); }

}  // namespace vesko
