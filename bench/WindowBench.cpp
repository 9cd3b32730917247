// How long the list of messages takes to open, to sort and to select, and what showing the progress
// of a check costs. Run it with QT_QPA_PLATFORM=offscreen where there is no display.
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTimer>
#include <QTreeView>
#include <chrono>
#include <cstdio>
#include <functional>

#include "desktop/linux/IcuLocale.h"
#include "desktop/linux/QtToolkit.h"
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
  Configuration configuration;
  mRegistry store{registry, *locale, shell};
  Text font;
};

void Fill(colMails& mails, int count, const Locale& locale) {
  for (int64_t i = 0; i < count; ++i) {
    const auto message = std::make_shared<cMessage>(locale);
    message->From = u"Sender " + Decimal(i * 7919 % 1000) + u" <someone@company.example>";
    message->Subject = u"Minutes of meeting " + Decimal(i * 104729 % kMany);
    message->SendDate = u"12/03/2024 14:05";
    message->Server = u"pop3.company.example";
    message->MessageTo = u"Team <team@company.example>";
    message->MessageID = Decimal(i);
    message->MessageBody = u"Hello,\r\n\r\nhere they are.\r\n";
    mails.Add(message, u"user");
  }
}

/// Opens the window, runs a step in it, closes it; the time until it stood on the screen.
double Open(Machine& machine, int rows, const std::function<void(QTreeView&)>& step) {
  colMails mails;
  Fill(mails, rows, *machine.locale);
  fConfig config({*machine.toolkit, *machine.locale, machine.configuration, machine.store,
                  [](const Text&) {}, machine.font});
  fCheckMail check({*machine.toolkit, *machine.locale, machine.configuration, mails, machine.socket,
                    machine.clock, machine.font});
  fListMail list({*machine.toolkit, *machine.locale, machine.configuration, mails, machine.shell,
                  config, check, machine.font});
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

class ProgressForm : public Form {
 public:
  explicit ProgressForm(Toolkit& toolkit) : Form("ProgressForm", toolkit) {
    label_.SetLiteral(true);
    bar_.SetMaximum(kMany);
    Add(label_);
    Add(bar_);
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

  Label label_{"lbl"};
  ProgressBar bar_{"prg"};
};

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  vesko::Machine machine;
  vesko::MeasureList(machine);
  vesko::ProgressForm(*machine.toolkit).ShowModal();
}
