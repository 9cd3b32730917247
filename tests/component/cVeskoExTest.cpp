#include <gtest/gtest.h>

#include "component/cVeskoEx.h"
#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "support/FakeDesktop.h"

namespace vesko {
namespace {

constexpr char16_t kConfigQuestion[] =
    u"You have no POP3 mail account. Config POP3 mail account now ?";
constexpr char16_t kCheckQuestion[] = u"You have no mails. Check POP3 mail server now ?";

class cVeskoExTest : public testing::Test {
 protected:
  using Names = std::vector<std::string>;

  /// What the registry holds before the object is made.
  void StoreAccount() {
    machine.AddAccount(machine.Record(u"one"));
    machine.store.Save(machine.configuration);
  }

  cVeskoEx& Object() {
    if (!object) object = std::make_unique<cVeskoEx>(state);
    return *object;
  }

  /// A driver for windows that are only to be seen, while the object is busy.
  ScriptedToolkit::Driver Leave() {
    return [this](Form& form) {
      EXPECT_TRUE(Object().IsBusy());
      form.Close();
    };
  }

  FakeDesktop machine;
  ComponentState state{machine};
  std::unique_ptr<cVeskoEx> object;
};

TEST_F(cVeskoExTest, CheckTimeIsForAutomaticChecksOnly) {
  Object();
  const int32_t rows[][3] = {{0, 30, 30}, {1, 30, -1}, {-1, 30, -1}, {0, 0, -1}, {0, -5, -5}};
  for (const auto& [manual, interval, expected] : rows) {
    state.data.configuration.ManualChecking = manual;
    state.data.configuration.CheckInterval = interval;
    EXPECT_EQ(Object().CheckTime(), expected) << manual << " " << interval;
  }
}

TEST_F(cVeskoExTest, WithoutAccountsOnlyYesLeadsToTheSettings) {
  for (const char16_t* answer : {u"&No", u""}) {
    machine.toolkit.Answer(answer, kConfigQuestion);
    Object().CheckMail();
    EXPECT_EQ(machine.toolkit.shown, Names{"QuestionBox"});
    machine.toolkit.shown.clear();
  }
  machine.toolkit.Answer(u"&Yes", kConfigQuestion);
  machine.toolkit.On("fConfig", Leave());
  Object().CheckMail();
  EXPECT_EQ(machine.toolkit.shown, (Names{"QuestionBox", "fConfig"}));
  EXPECT_FALSE(Object().IsBusy());
}

TEST_F(cVeskoExTest, NewMailIsHeardAndShown) {
  StoreAccount();
  machine.socket.conversations = {OneMessage(u"a@mail.example")};
  machine.pump.on_turn = [&](int) { EXPECT_TRUE(Object().IsBusy()); };
  machine.toolkit.On("fListMail", [&](Form& form) {
    EXPECT_EQ(machine.sound.played, std::vector<Text>{machine.configuration.SoundFile});
    EXPECT_EQ(form.Caption(), u"1 MAILS (0 NEW MAILS, 0 SPAM MAILS)");
    EXPECT_EQ(Read(form, "txtBody"), u"Hi\r\n");
    form.Close();
  });
  Object().CheckMail();
  EXPECT_EQ(machine.toolkit.shown, (Names{"fCheckMail", "fListMail"}));
  EXPECT_FALSE(Object().IsBusy());

  machine.socket.conversations = {OneMessage(u"a@mail.example")};
  machine.sound.played.clear();
  Object().CheckMail();  // the message is known and read
  const ScriptedToolkit::Message expected{u"You have no mail not read.", u"",
                                          MessageIcon::kInformation};
  EXPECT_EQ(machine.toolkit.messages, std::vector{expected});
  EXPECT_TRUE(machine.sound.played.empty());
}

TEST_F(cVeskoExTest, ViewMailShowsWhatIsThereOrOffersACheck) {
  StoreAccount();
  for (const char16_t* answer : {u"&No", u""}) {
    machine.toolkit.Answer(answer, kCheckQuestion);
    Object().ViewMail();
    EXPECT_TRUE(machine.socket.connected.empty());
  }

  machine.toolkit.Answer(u"&Yes", kCheckQuestion);
  machine.toolkit.On("fListMail", Leave());
  machine.socket.conversations = {OneMessage(u"a@mail.example")};
  Object().ViewMail();

  machine.toolkit.On("fListMail", Leave());
  machine.toolkit.shown.clear();
  Object().ViewMail();
  EXPECT_EQ(machine.toolkit.shown, Names{"fListMail"});
  EXPECT_EQ(machine.socket.connected.size(), 1u) << "no traffic for what was fetched";
  EXPECT_FALSE(Object().IsBusy());
}

TEST_F(cVeskoExTest, SettingsThatCouldNotBeReadAreToldOnceAndStay) {
  StoreAccount();
  const ScriptedToolkit::Message expected{
      u"The settings could not be read: another program is using them.\r\n"
      u"Default settings are used, and changes to them will not be kept.",
      u"", MessageIcon::kExclamation};
  machine.registry.Fail(RegistryCall::kQueryValue, kStatusBusy);
  Object();
  machine.registry.HealAll();
  EXPECT_TRUE(machine.toolkit.messages.empty());
  machine.toolkit.On("fConfig", [&](Form& form) {
    EXPECT_EQ(machine.toolkit.messages, std::vector{expected});
    Press(form, "cmdPOP3(0)");
    Press(form, "cmdOK");
  });
  Object().Configure();
  ASSERT_EQ(machine.toolkit.messages.size(), 2u);
  EXPECT_EQ(machine.toolkit.messages[1].text,
            u"The settings could not be read: another program is using them.\r\n"
            u"They stay as they were stored, and your changes will not be kept.");

  object.reset();
  EXPECT_EQ(machine.store.Load(machine.configuration), kStatusSuccess);
  EXPECT_EQ(machine.AccountNames(), u"one");
}

TEST_F(cVeskoExTest, ASuccessfulLoadEndsTheTrouble) {
  StoreAccount();
  machine.registry.Fail(RegistryCall::kOpenKey, kStatusRegistryCorrupt);
  Object();
  machine.registry.HealAll();
  for (const char* button : {"cmdCancel", "cmdOK"}) {
    machine.toolkit.On("fConfig", [=](Form& form) { Press(form, button); });
    Object().Configure();
    EXPECT_EQ(machine.toolkit.messages.size(), 1u);
    EXPECT_EQ(state.data.configuration.Accounts.Count(), 1);
  }
}

TEST_F(cVeskoExTest, ASaveThatFailsIsToldWhereAPersonAskedForIt) {
  const std::pair<int32_t, const char16_t*> rows[] = {
      {kStatusAccessDenied, u"access to them is denied."},
      {kStatusBusy, u"another program is using them."},
      {kStatusDiskFull, u"the disk is full."},
      {kStatusWriteFault, u"the disk reports an error."},
      {kStatusRegistryCorrupt, u"they are damaged."},
      {1450, u"the system reports error 1450."},
  };
  for (const auto& [status, reason] : rows) {
    Object();
    machine.toolkit.messages.clear();
    machine.toolkit.On("fConfig", [&, status = status](Form& form) {
      machine.registry.Fail(RegistryCall::kSetValue, status);
      Press(form, "cmdOK");
      EXPECT_FALSE(form.IsLoaded());
    });
    Object().Configure();
    const Text text = Text(u"The settings could not be saved: ") + reason +
                      u"\r\nYour changes are used until the program ends, but may be lost then.";
    const ScriptedToolkit::Message expected{text, u"", MessageIcon::kExclamation};
    EXPECT_EQ(machine.toolkit.messages, std::vector{expected});
    object.reset();  // fails as well, in silence
    EXPECT_EQ(machine.toolkit.messages.size(), 1u);
    machine.registry.HealAll();
  }
}

TEST_F(cVeskoExTest, ItsEndEmptiesSavesAndUnloads) {
  StoreAccount();
  state.ConfigWindow().SelectPage(kOptionPage);
  machine.toolkit.On("fConfig", [&](Form& form) {
    EXPECT_EQ(Find<TabControl>(form, "SSTab1").Tab(), kAccountsPage);
    EXPECT_TRUE(Object().IsBusy());
    const auto message = std::make_shared<cMessage>(*machine.locale);
    message->SetIndex(1);
    state.data.mails.BeginSession({});
    state.data.mails.Add(message);
    state.data.configuration.DownLines = 7;
    object.reset();
    EXPECT_FALSE(form.IsLoaded());
  });
  Object().Configure();
  EXPECT_EQ(state.data.mails.Count(), 0u);
  machine.store.Load(machine.configuration);
  EXPECT_EQ(machine.configuration.DownLines, 7);
}

}  // namespace
}  // namespace vesko
