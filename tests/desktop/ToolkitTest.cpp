// The component's windows on a native toolkit: the same cases on every system.

#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "desktop/ToolkitFixture.h"
#include "desktop/common/Mirror.h"
#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "dialogs/fListMail.h"
#include "dialogs/fPop3Site.h"
#include "support/FakeMachine.h"

namespace vesko {
namespace {

class ToolkitTest : public testing::Test {
 protected:
  ToolkitTest() {
    machine.AddAccount(machine.Record(u"one"));
    machine.store.Save(machine.configuration);
    machine.AddMail(u"a@mail.example");
  }

  /// Lets what has changed be shown, which happens a few dozen times a second.
  void Settle() {
    using Clock = std::chrono::steady_clock;
    for (const auto end = Clock::now() + 2 * Mirror::kInterval; Clock::now() < end;) {
      toolkit->GetPump().RunPending(std::chrono::milliseconds(1));
    }
  }

  /// Shows the window, looks at it when everything is in its place, and closes it.
  void Look(Form& form, const std::function<void()>& step) {
    const auto look = [&] {
      Settle();
      step();
      form.Close();
    };
    if (&form == &check) return LookAtACheck(look);
    OnceShown(form, look);
    form.ShowModal();
  }

  /// Runs the step after the window is shown; events are delivered while it loads, too.
  void OnceShown(Form& form, std::function<void()> step) {
    Soon([this, &form, step = std::move(step)] {
      WindowIsShown(*form.Controls()[0]) ? step() : OnceShown(form, step);
    });
  }

  /// Looks half-way through a session, because the window closes itself at the end.
  void LookAtACheck(const std::function<void()>& look) {
    machine.socket.conversations = {Server(u"+OK\r\n") + Client(u"USER ann")};
    bool looked = false;
    machine.pump.on_turn = [&](int) {
      if (machine.socket.sent.empty() || std::exchange(looked, true)) return;
      look();
    };
    machine.socket.sent.clear();
    check.Prepare();
    check.ShowModal();
    machine.pump.on_turn = {};
  }

  FakeMachine machine;
  std::unique_ptr<Toolkit> toolkit = MakeTestToolkit();
  fConfig config{*toolkit, machine.services, machine.data, machine.store, [](const Text&) {}};
  fCheckMail check{*toolkit, machine.services, machine.data};
  fListMail list{*toolkit, machine.services, machine.data, config, check};
  fPop3Site site{*toolkit, machine.data.font_name};
};

TextBox& Box(const Form& form, const std::string& name) { return Find<TextBox>(form, name); }

/// "a | b | c": each is left of the next, in one row. "a / b / c": each is above the next.
testing::AssertionResult Stand(const Form& form, const std::string& order) {
  std::istringstream words(order);
  std::string name, direction;
  words >> name;
  Rect before = LookAt(Find<Control>(form, name)).place;
  while (words >> direction >> name) {
    const Shown shown = LookAt(Find<Control>(form, name));
    const Rect& place = shown.place;
    const bool beside = before.left + before.width <= place.left &&
                        before.top < place.top + place.height &&
                        place.top < before.top + before.height;
    const bool below = before.top + before.height <= place.top;
    if (!shown.visible || place.width <= 0 || place.height <= 0) {
      return testing::AssertionFailure() << name << " is not visible";
    }
    if (direction == "|" ? !beside : !below) {
      return testing::AssertionFailure() << order << ": " << name << " stands elsewhere";
    }
    before = place;
  }
  return testing::AssertionSuccess();
}

TEST_F(ToolkitTest, EveryControlStandsInItsPlace) {
  const struct {
    Form& form;
    int page;
    std::vector<const char*> orders;
  } rows[] = {
      {site,
       -1,
       {"lblPop3Account(0) | txtPop3Account(0)", "lblPop3Account(1) | txtPop3Account(1)",
        "lblPop3Account(2) | txtPop3Account(2)",
        "txtPop3Account(0) / txtPop3Account(1) / txtPop3Account(2) / chkSavePassword / cmdOK",
        "cmdOK | cmdCancel | cmdHelp"}},
      {list,
       -1,
       {"LV1 / txtBody / cmdMail(0)", "cmdMail(0) | cmdMail(1) | cmdMail(2) | cmdMail(3)"}},
      {config,
       kAccountsPage,
       {"lblAccounts / lstPop3Account / cmdPOP3(0) / lblNote / cmdOK", "cmdPOP3(0) | cmdPOP3(1)",
        "lstPop3Account | fraAccount", "lblPop3Account(0) | txtPop3Account(0)",
        "lblPop3Account(4) | txtPop3Account(4)",
        "txtPop3Account(0) / txtPop3Account(1) / txtPop3Account(2) / txtPop3Account(3) / "
        "txtPop3Account(4) / chkSavePassword / lblNote",
        "cmdOK | cmdCancel | cmdHelp"}},
      {config,
       kSpamPage,
       {"lblSpamSender / lstSpamSender / cmdSpamSender(0) / cmdOK",
        "lblSpamSubject / lstSpamSubject / cmdSpamSubject(0)", "lstSpamSender | lstSpamSubject",
        "cmdSpamSender(0) | cmdSpamSender(1) | cmdSpamSender(2) | cmdSpamSubject(0) | "
        "cmdSpamSubject(1) | cmdSpamSubject(2)"}},
      {config,
       kOptionPage,
       {"lblPOP3DownLines | txtPOP3DownLines", "lblPOP3CheckTime | txtPOP3CheckTime",
        "lblPOP3WaitTime | txtPOP3WaitTime",
        "txtPOP3DownLines / txtPOP3CheckTime / txtPOP3WaitTime / chkPop3ManualCheck / "
        "lblPOP3SoundFile / txtPOP3SoundFile / lblDefEmailClient / txtDefEmailClient / cmdOK",
        "txtPOP3SoundFile | cmdPop3Sound(0) | cmdPop3Sound(1)",
        "txtDefEmailClient | cmdDefEmailClient"}},
      {check, -1, {"lblProgress / prgBar1 / lblTime / lblCmd / cmdNext", "cmdNext | cmdCancel"}}};
  for (const auto& [form, page, orders] : rows) {
    if (page >= 0) config.SelectPage(page);
    Look(form, [&, &shown = form, &expected = orders] {
      for (const char* order : expected) EXPECT_TRUE(Stand(shown, order)) << shown.Name();
    });
  }
}

TEST_F(ToolkitTest, ASecondShowingHasWhatChangedInBetween) {
  for (Form* form : std::initializer_list<Form*>{&config, &list, &site, &check}) {
    Look(*form, [] {});
    for (Control* control : form->Controls()) {
      EXPECT_EQ(control->Peer(), nullptr) << control->Name();
      control->SetTooltip(u"tip of " + Text(control->Name().begin(), control->Name().end()));
      control->SetFont({SomeFontFace(), 20});
    }
    machine.data.font_name.clear();
    Look(*form, [&] {
      for (const Control* control : form->Controls()) {
        const Shown shown = LookAt(*control);
        EXPECT_EQ(shown.tooltip, control->Tooltip()) << control->Name();
        EXPECT_EQ(shown.font.name, SomeFontFace()) << control->Name();
        EXPECT_NEAR(shown.font.size, 20, 0.5) << control->Name();
        EXPECT_EQ(shown.enabled, control->Enabled()) << control->Name();
        const auto* const captioned = dynamic_cast<const CaptionedControl*>(control);
        EXPECT_EQ(shown.text, captioned ? captioned->Caption() : shown.text) << control->Name();
      }
      EXPECT_EQ(CaptionOfWindow(*form->Controls()[0]), form->Caption());
    });
    EXPECT_EQ(NativeWindows(), 0) << form->Name();
  }
}

TEST_F(ToolkitTest, TheHostsFontComesInTheDesktopsSize) {
  double size = 0;
  Look(site, [&] { size = LookAt(Box(site, "txtPop3Account(0)")).font.size; });
  EXPECT_GT(size, 5);
  machine.data.font_name = SomeFontFace();
  for (Form* form : std::initializer_list<Form*>{&site, &config, &list}) {
    Look(*form, [&] {
      for (const Control* control : form->Controls()) {
        EXPECT_EQ(LookAt(*control).font.name, SomeFontFace()) << control->Name();
        EXPECT_NEAR(LookAt(*control).font.size, size, 0.5) << control->Name();
      }
    });
  }
}

TEST_F(ToolkitTest, ColumnsHaveTheirWidths) {
  for (int round = 0; round < 2; ++round) {
    Look(list, [&] {
      const ListView& view = Find<ListView>(list, "LV1");
      const std::vector<int> widths = ColumnWidths(view);
      ASSERT_EQ(widths.size(), 7u);
      EXPECT_GE(widths[0], 150);
      for (size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(widths[i] * 150.0 / widths[0], view.Columns()[i].width, 1) << i;
      }
      for (size_t i = 4; i < 7; ++i) EXPECT_NEAR(widths[i] * 150.0 / widths[0], 96, 1) << i;
    });
  }
}

TEST_F(ToolkitTest, ABoxOfOneLineTakesTheFirstLineOfWhatIsPasted) {
  TextBox& box = Box(site, "txtPop3Account(1)");
  site.User = u"[]";
  Look(site, [&] {
    for (const char16_t* text : {u"pw\r\nDELE 1", u"d\n", u"\t\u2028x"}) {
      PasteBeforeLast(box, text);
      Settle();
    }
    EXPECT_EQ(box.GetText(), u"[pwd]");
    EXPECT_EQ(LookAt(box).text, u"[pwd]");
  });
}

TEST_F(ToolkitTest, AWindowStaysWhereTheUserPutIt) {
  Look(list, [&] {
    const Control& button = Find<Control>(list, "cmdMail(0)");
    const Rect wanted = {40, 60, 1000, 700};
    MoveWindowOf(button, wanted);
    Settle();
    list.SetCaption(u"new caption");
    Settle();
    for (const Rect& rect : {BoundsOfWindow(button), list.Bounds()}) {
      EXPECT_EQ((std::array{rect.left, rect.top, rect.width, rect.height}),
                (std::array{wanted.left, wanted.top, wanted.width, wanted.height}));
    }
    EXPECT_EQ(CaptionOfWindow(button), u"new caption");
    const Rect last = LookAt(Find<Control>(list, "cmdMail(3)")).place;
    EXPECT_GT(last.left, 800) << "the contents follow";
    EXPECT_GT(last.top, 600);
  });
}

TEST_F(ToolkitTest, AWindowMayGoUnderABox) {
  auto form = std::make_unique<fPop3Site>(*toolkit, machine.data.font_name);
  OnceShown(*form, [&] {
    Soon([&] {
      form.reset();
      CloseBox();
    });
    toolkit->ShowMessage(u"text", u"title", MessageIcon::kInformation);
  });
  form->ShowModal();
  EXPECT_EQ(form, nullptr);
  EXPECT_EQ(NativeWindows(), 0);
}

}  // namespace
}  // namespace vesko
