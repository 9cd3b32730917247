// One allocation after the other fails, in all that a client can make the component do.

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "VeskoEx/VeskoEx.h"
#include "component/AutomationServer.h"
#include "config/mRegistry.h"
#include "config/mmEncrypt.h"
#include "support/FailingAllocation.h"
#include "support/FakeShell.h"
#include "support/FakeSound.h"
#include "support/MemoryRegistry.h"
#include "support/ServedSocket.h"
#include "support/TestLocale.h"
#include "ui/Form.h"

namespace vesko {
namespace {

/// Windows that are closed as soon as they are shown.
class ShyToolkit : public Toolkit {
 public:
  explicit ShyToolkit(Pump& pump) : pump_(pump) {}

  Pump& GetPump() override { return pump_; }
  std::unique_ptr<FormPeer> Realise(Form&) override { return std::make_unique<Peer>(); }
  void RunModal(Form& form) override {
    ++shown;
    form.Close();
  }
  void ShowMessage(const Text&, const Text&, MessageIcon) override {}
  Text OpenFile(const Text&, const Text&, const Text&) override { return {}; }
  void ShowPopup(Form&, PopupMenu&) override {}
  Rect Screen() const override { return {0, 0, 1920, 1080}; }
  void Invalidate(Form&, Control&) override {}

  int shown = 0;

 private:
  struct Peer : FormPeer {
    void FitToContent() override {}
    void Show() override {}
    void Hide() override {}
    void StateChanged() override {}
  };

  Pump& pump_;
};

std::string Answer(const std::string& line) {
  if (line.starts_with("STAT")) return "+OK 1 99\r\n";
  if (!line.starts_with("TOP")) return "+OK\r\n";
  return "+OK\r\nFrom: =?utf-8?B?YW5u?= <ann@mail.example>\r\nSubject: ILOVEYOU\r\n"
         "Message-ID: <1@mail.example>\r\nDate: Mon, 5 Oct 2026 09:12:44 +0900\r\n"
         "Content-Type: text/plain;\r\n\r\nContent-Type: text/plain;\r\n"
         "Content-Transfer-Encoding: base64\r\n\r\nSGVsbG8=\r\n\r\n.\r\n";
}

/// What outlives the component: time and settings.
struct Machine {
  Machine() {
    FakeShell shell;
    mRegistry store(registry, *locale, shell);
    Configuration settings;
    store.Load(settings);
    settings.AddAccount({u"Home", u"pop.example", u"ann", Encrypt(u"pw", *locale), u"110", u"1"});
    store.Save(settings);
  }

  FakeClock clock;
  std::unique_ptr<Locale> locale = MakeTestLocale();
  MemoryRegistry registry;
  int windows_shown = 0;
};

class SmallDesktop : public Desktop {
 public:
  explicit SmallDesktop(Machine& machine)
      : machine_(machine), socket_(machine.clock, *machine.locale), registry_(machine.registry) {
    socket_.on_line = [](const std::string& line) { return ServerTurn{Answer(line)}; };
  }
  ~SmallDesktop() override { machine_.windows_shown = toolkit_.shown; }

  const Services& GetServices() const override { return services_; }
  Toolkit& GetToolkit() override { return toolkit_; }

 private:
  Machine& machine_;
  ServedSocket socket_;
  MemoryRegistry& registry_;
  FakeShell shell_;
  NotingSound sound_;
  ShyToolkit toolkit_{socket_};
  Services services_{*machine_.locale, registry_, shell_, sound_, machine_.clock, socket_, socket_};
};

using Outcomes = std::array<HRESULT, 5>;

/// A client that goes on whatever it is answered.
Outcomes CreateAndCallAll(AutomationServer& server) {
  Outcomes outcomes = {E_FAIL, E_FAIL, E_FAIL, E_FAIL, E_FAIL};
  void* made = nullptr;
  outcomes[0] = server.GetClassObject(CLSID_cVeskoEx, IID_IClassFactory, &made);
  if (made == nullptr) return outcomes;
  auto* factory = static_cast<IClassFactory*>(made);
  made = nullptr;
  outcomes[1] = factory->CreateInstance(nullptr, IID__cVeskoEx, &made);
  factory->Release();
  if (made == nullptr) return outcomes;
  auto* object = static_cast<_cVeskoEx*>(made);
  outcomes[2] = object->CheckMail();
  outcomes[3] = object->ViewMail();
  outcomes[4] = object->Configure();
  EXPECT_EQ(object->Release(), 0u);
  return outcomes;
}

TEST(OutOfMemory, LeavesTheClientAliveAndTheComponentUsable) {
  Machine machine;
  AutomationServer server([&] { return std::make_unique<SmallDesktop>(machine); });
  const Outcomes good = {S_OK, S_OK, S_OK, S_OK, S_OK};
  ASSERT_EQ(CreateAndCallAll(server), good);
  ASSERT_EQ(machine.windows_shown, 3) << "the list after the check and by itself, the settings";

  for (auto kind : {FailingAllocation::kOnce, FailingAllocation::kLasting}) {
    size_t n = 0;
    for (bool happened = true; happened && !testing::Test::HasFailure();) {
      SCOPED_TRACE(++n);
      {
        const FailingAllocation failing(n, kind);
        CreateAndCallAll(server);
        happened = FailingAllocation::Happened();
      }
      EXPECT_TRUE(server.CanUnload());
      if (n % 16 == 0) {
        EXPECT_EQ(CreateAndCallAll(server), good);
      }
    }
    EXPECT_GT(n, 500u) << "places";
    EXPECT_EQ(CreateAndCallAll(server), good);
    EXPECT_EQ(machine.windows_shown, 3);
  }
}

}  // namespace
}  // namespace vesko
