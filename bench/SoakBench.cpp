// A day of checks in fast motion: the component with its windows and hives, on a clock that waits
// for nobody, against a server that misbehaves by a seed and a user who does not look long. Prints
// what was lost, leaked and grew, and fails where that is anything.
//
//   vesko_bench_soak [<hours> [<seed>]]

#include <malloc.h>
#include <unistd.h>

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

#include "MoodyServer.h"
#include "Table.h"
#include "component/ComponentState.h"
#include "component/cVeskoEx.h"
#include "config/mmEncrypt.h"
#include "desktop/linux/LinuxDesktop.h"
#include "support/FakeShell.h"
#include "support/FakeSound.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

constexpr double kSecondsBetweenChecks = 60;
constexpr double kSecondsAnHour = 3600;
const std::vector<std::string> kUsers = {"kim", "lee"};

/// Lets windows and the server have their turn.
class BothPumps : public Pump {
 public:
  BothPumps(ServedSocket& server, Pump& windows) : server_(server), windows_(windows) {}

  void RunPending(std::chrono::milliseconds longest_wait) override {
    windows_.RunPending(std::chrono::milliseconds(0));
    server_.RunPending(longest_wait);
  }

 private:
  ServedSocket& server_;
  Pump& windows_;
};

/// The Linux desktop, except for network, time and what would be heard.
class SoakDesktop : public Desktop {
 public:
  explicit SoakDesktop(MoodyServer& server) {
    socket.on_line = [&server](const std::string& line) { return server.OnLine(line); };
    socket.piece = [&server](std::string_view left) { return server.Piece(left); };
  }

  const Services& GetServices() const override { return services_; }
  Toolkit& GetToolkit() override { return *toolkit_; }

  /// What the stand-ins note would count as growth.
  void ForgetNotes() {
    std::vector<std::string>().swap(socket.sent);
    std::vector<Text>().swap(sound_.played);
  }

  FakeClock clock;
  std::unique_ptr<Locale> locale = MakeIcuLocale(kCodePageUtf8, "en_GB");
  ServedSocket socket{clock, *locale};

 private:
  TempFolder folder_;
  std::unique_ptr<Registry> registry_ = MakeSqliteRegistry(folder_ / "user", folder_ / "machine");
  std::unique_ptr<Toolkit> toolkit_ = MakeQtToolkit();
  BothPumps pump_{socket, toolkit_->GetPump()};
  FakeShell shell_;
  NotingSound sound_;
  Services services_{*locale, *registry_, shell_, sound_, clock, pump_, socket};
};

/// Presses something in every window, now and then while a check runs.
class HastyUser {
 public:
  explicit HastyUser(uint32_t seed) : random_(seed) {
    QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
    timer_.start(1);
  }

  bool Sometimes(unsigned one_in) { return random_() % one_in == 0; }

 private:
  void Look() {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr || window == dealt_with_) return;
    if (window->objectName() == "fCheckMail" && !Sometimes(60)) return;
    dealt_with_ = window;
    // Not from here: a press that opens the next window returns when that one is closed.
    QTimer::singleShot(0, window, [this, window] {
      dealt_with_ = nullptr;
      Deal(*window);
    });
  }

  void Deal(QWidget& window) {
    const QString name = window.objectName();
    if (name == "fCheckMail") return Press(window, Sometimes(2) ? "cmdNext" : "cmdCancel");
    if (name == "fListMail") return Press(window, Sometimes(2) ? "cmdMail(1)" : "cmdMail(3)");
    if (name != "QuestionBox") return static_cast<void>(window.close());
    const auto buttons = window.findChildren<QPushButton*>();
    buttons[static_cast<qsizetype>(random_()) % buttons.size()]->click();
  }

  static void Press(QWidget& window, const char* button) {
    if (auto* found = window.findChild<QPushButton*>(button)) found->click();
  }

  std::mt19937 random_;
  QTimer timer_;
  QPointer<QWidget> dealt_with_;
};

struct Held {
  double heap = static_cast<double>(mallinfo2().uordblks);  // bytes
  double windows = static_cast<double>(QApplication::topLevelWidgets().size());
  double descriptors =
      static_cast<double>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
};

class Soak {
 public:
  Soak(double hours, uint32_t seed)
      : hours_(hours), server_(seed, kUsers, "secret"), desktop_(server_), user_(seed) {
    for (const std::string& user : kUsers) {
      const Text name = FromAscii(user);
      settings().AddAccount(
          {name, u"pop.example", name, Encrypt(u"secret", *desktop_.locale), u"110", u"1"});
    }
  }

  /// Whether nothing was lost, leaked or grew.
  bool Run() {
    RunUntil(hours_ / 4);  // fonts and styles are loaded, all messages are known
    const Held before;
    RunUntil(hours_);
    const Held after;
    return Report(before, after);
  }

 private:
  Configuration& settings() { return state_.data.configuration; }

  void RunUntil(double hours) {
    while (desktop_.clock.now < start_ + hours * kSecondsAnHour) {
      server_.LiveOn();
      component_->CheckMail();
      if (user_.Sometimes(3)) component_->ViewMail();
      ++checks_;
      desktop_.ForgetNotes();
      desktop_.clock.now += kSecondsBetweenChecks;
      CountMissed();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
  }

  void CountMissed() {
    std::set<Text> known;
    state_.data.mails.ForEach([&](const cMessage& message) {
      known.insert(Text(Trim(Text(message.MessageID))));
      return true;
    });
    for (const std::string& user : kUsers) {
      for (const std::string& id : server_.FullyFetched(user))
        missed_ += !known.contains(FromAscii(id));
    }
  }

  double LostAccounts() {
    component_.reset();
    Configuration stored;
    state_.Store().Load(stored);
    double lost = 0;
    for (int32_t n = 1; n <= static_cast<int32_t>(kUsers.size()); ++n) {
      lost += stored.AccountAt(n).ToRecord() != settings().AccountAt(n).ToRecord();
    }
    return lost;
  }

  bool Report(const Held& before, const Held& after) {
    Table work("A day's checks in fast motion", "", {"count"});
    work.Add("hours", {hours_});
    work.Add("checks", {checks_});
    work.Add("connections", {static_cast<double>(server_.connections)});
    work.Add("of them disturbed", {static_cast<double>(server_.disturbed)});
    work.Add("messages fetched", {static_cast<double>(server_.fetched)});
    work.Add("messages deleted as spam", {static_cast<double>(server_.deleted)});

    // The heap is never quite the same: a hash table or a cache of glyphs takes its next size.
    constexpr double kBlur = 256 * 1024;
    const double grown = after.heap - before.heap;
    const std::pair<const char*, double> harm[] = {
        {"lost: mail that is no spam", static_cast<double>(server_.lost)},
        {"lost: messages missing in the list", missed_},
        {"lost: accounts", LostAccounts()},
        {"leaked: descriptors", after.descriptors - before.descriptors},
        {"leaked: windows", after.windows - before.windows},
        {"grew: heap in KiB", grown < kBlur ? 0 : grown / 1024},
    };
    bool harmless = server_.fetched > 0 && server_.deleted > 0;
    for (const auto& [name, count] : harm) {
      work.Add(name, {count});
      harmless = harmless && count <= 0;
    }
    return harmless;
  }

  double hours_;
  MoodyServer server_;
  SoakDesktop desktop_;
  double start_ = desktop_.clock.now;
  HastyUser user_;
  ComponentState state_{desktop_};
  std::unique_ptr<cVeskoEx> component_ = std::make_unique<cVeskoEx>(state_);
  double checks_ = 0;
  double missed_ = 0;
};

}  // namespace
}  // namespace vesko

int main(int count, char** arguments) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QApplication application(count, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  const double hours = count > 1 ? std::atof(arguments[1]) : 24;
  const auto seed = static_cast<uint32_t>(count > 2 ? std::atoi(arguments[2]) : 1);
  return vesko::Soak(hours, seed).Run() ? 0 : 1;
}
