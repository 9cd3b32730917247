// How long the list of messages takes to open, to sort and to select, the settings to open and to
// save, and what showing the progress of a check costs.
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "desktop/linux/LinuxDesktop.h"
#include "dialogs/fListMail.h"
#include "support/FakeClock.h"
#include "support/FakeShell.h"
#include "support/MemoryRegistry.h"

namespace vesko {
namespace {

constexpr int kFew = 10;
constexpr int kMany = 32767;
constexpr int kRounds = 5;

double Milliseconds(const std::function<void()>& step) {
  const auto begin = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
      .count();
}

void PaintAll() {
  QApplication::processEvents();
  QApplication::activeModalWidget()->repaint();
}

class NoSocket : public Socket {
 public:
  SocketState State() const override { return SocketState::kClosed; }
  void SetLocalPort(int32_t) override {}
  void Connect(const Text&, int32_t) override {}
  void SendData(TextView) override {}
  Text GetData() override { return {}; }
  uint64_t BytesReceived() const override { return 0; }
  void Close() override {}
};

/// A machine with everything that the list window asks for.
struct Machine {
  std::unique_ptr<Locale> locale = MakeIcuLocale(kCodePageUtf8, "en_GB");
  std::unique_ptr<Toolkit> toolkit = MakeQtToolkit();
  NoSocket socket;
  FakeShell shell;
  FakeClock clock;
  MemoryRegistry registry;
  struct NoSound : Sound {
    int OutputDevices() override { return 0; }
    void Play(const Text&) override {}
  } sound;
  Services services{*locale, registry, shell, sound, clock, toolkit->GetPump(), socket};
  mRegistry store{registry, *locale, shell};
};

void Fill(colMails& mails, int count, const Locale& locale) {
  mails.BeginSession({u"pop3.company.example", kPop3Port, u"user"});
  for (int64_t i = 0; i < count; ++i) {
    const auto message = std::make_shared<cMessage>(locale);
    message->From = u"Sender " + Decimal(i * 7919 % 1000) + u" <someone@company.example>";
    message->Subject = u"Minutes of meeting " + Decimal(i * 104729 % kMany);
    message->SendDate = u"12/03/2024 14:05";
    message->Server = u"pop3.company.example";
    message->MessageTo = u"Team <team@company.example>";
    message->MessageID = Decimal(i);
    message->MessageBody = u"Hello,\r\n\r\nhere they are.\r\n";
    message->SetIndex(static_cast<int32_t>(i + 1));
    mails.Add(message);
  }
}

/// Opens the window, runs a step in it and closes it. Returns the milliseconds until it was
/// painted.
double Open(Machine& machine, int rows, const std::function<void(QTreeView&)>& step) {
  SharedData data;
  Fill(data.mails, rows, *machine.locale);
  Toolkit& toolkit = *machine.toolkit;
  fConfig config(toolkit, machine.services, data, machine.store, [](const Text&) {});
  fCheckMail check(toolkit, machine.services, data);
  fListMail list(toolkit, machine.services, data, config, check);
  double opened = 0;
  const auto begin = std::chrono::steady_clock::now();
  QTimer::singleShot(0, qApp, [&] {
    PaintAll();
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begin;
    opened = taken.count();
    step(*QApplication::activeModalWidget()->findChild<QTreeView*>());
    list.Unload();
  });
  list.ShowModal();
  return opened;
}

void MeasureList(Machine& machine) {
  Open(machine, kFew, [](QTreeView&) {});  // fonts and styles are loaded by the first window
  double few = 1e9, many = 1e9, sorting = 1e9, selecting = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    few = std::min(few, Open(machine, kFew, [](QTreeView&) {}));
    many = std::min(many, Open(machine, kMany, [&](QTreeView& view) {
                      sorting = std::min(sorting, Milliseconds([&] {
                                           Q_EMIT view.header()->sectionClicked(1);
                                           PaintAll();
                                         }));
                      selecting = std::min(selecting, Milliseconds([&] {
                                             QKeyEvent key(QEvent::KeyPress, Qt::Key_A,
                                                           Qt::ControlModifier);
                                             QApplication::sendEvent(&view, &key);
                                             PaintAll();
                                           }));
                    }));
  }
  std::printf("open, %d rows            %8.1f ms\n", kFew, few);
  std::printf("open, %d rows         %8.1f ms\n", kMany, many);
  std::printf("difference               %8.1f ms\n", many - few);
  std::printf("sort by subject          %8.1f ms\n", sorting);
  std::printf("select all               %8.1f ms\n", selecting);
}

/// The settings window with 200 accounts and 2,000 keywords over real hives: until it stands on the
/// screen, and from the press of OK until all is saved and the window gone.
void MeasureSettings(Machine& machine) {
  const QTemporaryDir folder;
  const auto registry = MakeSqliteRegistry(folder.filePath("user").toStdString(),
                                           folder.filePath("machine").toStdString());
  mRegistry store(*registry, *machine.locale, machine.shell);
  SharedData data;
  Configuration& configuration = data.configuration;
  for (int64_t i = 0; i < 200; ++i) {
    configuration.AddAccount({u"Account " + Decimal(i), u"pop3.example", u"kim", {}, u"110", u"0"});
  }
  for (int64_t i = 0; i < 1000; ++i) {
    configuration.SpamSenders.push_back(Text(u"@").append(Decimal(i)).append(u".example"));
    configuration.SpamSubjects.push_back(u"word" + Decimal(i));
  }
  fConfig window(*machine.toolkit, machine.services, data, store, [](const Text&) {});
  double opened = 0;
  std::chrono::steady_clock::time_point pressed;
  const auto begin = std::chrono::steady_clock::now();
  QTimer::singleShot(0, qApp, [&] {
    PaintAll();
    pressed = std::chrono::steady_clock::now();
    opened = std::chrono::duration<double, std::milli>(pressed - begin).count();
    QApplication::activeModalWidget()->findChild<QPushButton*>("cmdOK")->click();
  });
  window.ShowModal();
  const std::chrono::duration<double, std::milli> saved =
      std::chrono::steady_clock::now() - pressed;
  std::printf("open the settings        %8.1f ms\n", opened);
  std::printf("save the settings        %8.1f ms\n", saved.count());
}

class ProgressForm : public Form {
 public:
  explicit ProgressForm(Toolkit& toolkit) : Form("ProgressForm", toolkit) {
    label_.SetLiteral(true);
    bar_.SetMaximum(kMany);
    SetLayout(Column({Item(label_), Item(bar_)}));
  }
  ~ProgressForm() override { TakeDown(); }

 private:
  void OnActivate() override {
    Pump& pump = GetToolkit().GetPump();
    const double setting = Milliseconds([&] {
      for (int i = 0; i < kMany; ++i) bar_.SetValue(i);
    });
    const double pumping = Milliseconds([&] {
      for (int i = 0; i < kMany; ++i) pump.RunPending(std::chrono::milliseconds(0));
    });
    std::printf("set the progress         %8.1f ns\n", setting * 1e6 / kMany);
    std::printf("run pending events       %8.1f ns\n", pumping * 1e6 / kMany);
    Unload();
  }

  Label label_{*this, "lbl"};
  ProgressBar bar_{*this, "prg"};
};

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QApplication application(argc, argv);
  vesko::Machine machine;
  vesko::MeasureList(machine);
  vesko::MeasureSettings(machine);
  vesko::ProgressForm(*machine.toolkit).ShowModal();
}
