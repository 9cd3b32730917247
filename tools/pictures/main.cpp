// Takes pictures of the windows that the demonstration does not show: every page of the settings,
// the account window, the boxes and the tray host's window. Usage: vesko-pictures FOLDER [POINTS]

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTabWidget>
#include <QTimer>
#include <cstdlib>
#include <functional>

#include "HostWindow.h"
#include "component/ComponentState.h"
#include "component/cVeskoEx.h"
#include "demo/ThrowAwayFolder.h"
#include "desktop/linux/LinuxDesktop.h"
#include "dialogs/fPop3Site.h"
#include "ui/InputBox.h"
#include "ui/QuestionBox.h"

namespace vesko {
namespace {

/// Photographs a modal window once it has been painted, and closes it.
class Photographer {
 public:
  explicit Photographer(QString folder) : folder_(std::move(folder)) {}

  /// Shows a modal window; `names` are the files of its pages, or the one of a window without
  /// pages.
  void Take(const QStringList& names, const std::function<void()>& show) {
    QTimer::singleShot(kUntilPainted, [this, names] { Photograph(names, 0); });
    show();
  }

  void Save(QWidget& window, const QString& name) const {
    window.grab().save(folder_ + u'/' + name + ".png");
  }

 private:
  static constexpr std::chrono::milliseconds kUntilPainted{300};

  void Photograph(const QStringList& names, int page) {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr) return;
    Save(*window, names[page]);
    if (page + 1 == names.size()) return static_cast<void>(window->close());
    window->findChild<QTabWidget*>()->setCurrentIndex(page + 1);
    QTimer::singleShot(kUntilPainted, [this, names, page] { Photograph(names, page + 1); });
  }

  QString folder_;
};

void AddAccount(Configuration& configuration, const Text& name, const Text& server) {
  Variant record = name + u"\r\n" + server + u"\r\nkim\r\n\r\n110\r\n0\r\n";
  configuration.Accounts.Add(record);
}

void TakeHostWindow(const Photographer& photographer) {
  QMenu menu;
  for (const char* caption : {"Check mail &now", "&View mail", "&Configure", "&Quit"}) {
    menu.addAction(caption);
  }
  vesko_host::HostWindow window(menu, [] {});
  window.ShowStatus(QIcon(":/icons/vesko-host-new.png"), "You have new mail.");
  window.show();
  QCoreApplication::processEvents();
  photographer.Save(window, "host-window");
}

void TakeAll(Photographer& photographer, Desktop& desktop) {
  ComponentState state(desktop);
  cVeskoEx component(state);
  AddAccount(state.data.configuration, u"Home", u"pop3.home.example");
  AddAccount(state.data.configuration, u"Office", u"mail.office.example");
  state.data.configuration.SoundFile = u"/usr/lib/veskoex/Email1.wav";  // where a package has it
  state.Store().Save(state.data.configuration);
  Toolkit& toolkit = desktop.GetToolkit();

  photographer.Take({"settings-accounts", "settings-spam", "settings-options"},
                    [&] { component.Configure(); });
  photographer.Take({"account-window"}, [&] {
    fPop3Site window(toolkit, state.data.font_name);
    window.Server = u"pop3.home.example";
    window.User = u"kim";
    window.Password = u"secret";
    window.ShowModal();
  });
  photographer.Take({"question-box"}, [&] {
    QuestionBox(toolkit,
                u"Checking mail is failed on 'pop3.home.example'.\r\nLast command was 'PASS "
                u"******'.\r\nTry again ? \r\n",
                u"Quarnel", {u"&Yes", u"&No", u"", u"", u""});
  });
  photographer.Take({"input-box"}, [&] {
    InputBox(toolkit, u"Type new spam mail subject keyword\r\nsuch as \"ILOVEYOU\" or \"MELISSA\":",
             u"New Spam Mail");
  });
  TakeHostWindow(photographer);
}

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QApplication application(argc, argv);
  const QString folder = application.arguments().value(1, ".");
  const int points = application.arguments().value(2).toInt();
  QFont font = QApplication::font();
  if (points > 0) font.setPointSize(points);
  QApplication::setFont(font);
  QDir().mkpath(folder);

  vesko::demo::ThrowAwayFolder hives;
  vesko::LinuxDesktopOptions options;
  options.user_hive_folder = hives.Path() + "/user";
  options.machine_hive_folder = hives.Path() + "/machine";
  const auto desktop = vesko::MakeLinuxDesktop(options);
  vesko::Photographer photographer(folder);
  vesko::TakeAll(photographer, *desktop);
}
