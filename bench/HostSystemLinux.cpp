#include <dlfcn.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <QApplication>
#include <QEvent>
#include <QTreeView>
#include <QWidget>
#include <utility>

#include "HostSystem.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/registration/LinuxFolders.h"
#include "support/PrivateMachine.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

class ListCloser : public QObject {
 public:
  std::function<void()> opened;

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Show) Shown(qobject_cast<QWidget*>(watched));
    return false;
  }

 private:
  void Shown(QWidget* widget) const {
    if (!widget || !widget->isWindow() || !widget->findChild<QTreeView*>()) return;
    opened();
    QMetaObject::invokeMethod(widget, &QWidget::close, Qt::QueuedConnection);
  }
};

class LinuxHostSystem final : public HostSystem {
 public:
  LinuxHostSystem() {
    EnterPrivateMachine();
    setenv("XDG_CONFIG_HOME", settings_.Path().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    application_ = std::make_unique<QApplication>(count_, arguments_);
  }

  std::unique_ptr<Registry> NewRegistry() override {
    return MakeSqliteRegistry(DefaultFolders().user_hive, DefaultFolders().machine_hive);
  }
  std::unique_ptr<Locale> NewLocale() override { return MakeIcuLocale(HostCodePage(), {}); }
  std::unique_ptr<Shell> NewShell() override { return MakeLinuxShell(); }

  void* Load(const std::string& library, const char* symbol) override {
    void* loaded = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    return loaded ? dlsym(loaded, symbol) : nullptr;
  }

  void CloseLists(std::function<void()> opened) override {
    closer_.opened = std::move(opened);
    application_->installEventFilter(&closer_);
  }

  double ProcessorSeconds() override {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  }

 private:
  TempFolder settings_;
  char name_[16] = "vesko-bench";
  char* arguments_[2] = {name_, nullptr};
  int count_ = 1;
  std::unique_ptr<QApplication> application_;
  ListCloser closer_;
};

}  // namespace

std::unique_ptr<HostSystem> MakeHostSystem() { return std::make_unique<LinuxHostSystem>(); }

}  // namespace vesko
