// What holds for every window alike.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "dialogs/fListMail.h"
#include "dialogs/fPop3Site.h"
#include "support/FakeMachine.h"

namespace vesko {
namespace {

struct Windows {
  FakeMachine machine;
  ScriptedToolkit toolkit;  // its pump may be asked any number of times
  fConfig config{toolkit, machine.services, machine.data, machine.store, [](const Text&) {}};
  fCheckMail check{toolkit, machine.services, machine.data};
  fListMail list{toolkit, machine.services, machine.data, config, check};
  fPop3Site site{toolkit, machine.data.font_name};

  Windows() { machine.data.font_name = u"Gulim"; }

  std::vector<Form*> All() { return {&config, &check, &list, &site}; }
};

bool HasCaption(const Control& control) {
  return dynamic_cast<const CommandButton*>(&control) || dynamic_cast<const CheckBox*>(&control) ||
         dynamic_cast<const Label*>(&control) || dynamic_cast<const Frame*>(&control) ||
         dynamic_cast<const TabControl*>(&control);
}

TEST(WindowsTest, EveryControlIsLaidOutOnceAndHasAName) {
  Windows windows;
  for (Form* form : windows.All()) {
    std::vector<Control*> laid_out = LaidOut(form->GetLayout());
    std::vector<Control*> added = form->Controls();
    std::set<std::string> names;
    for (Control* control : added) {
      EXPECT_TRUE(names.insert(control->Name()).second) << control->Name();
      EXPECT_TRUE(HasCaption(*control) || !control->AccessibleName().empty()) << control->Name();
    }
    std::sort(laid_out.begin(), laid_out.end());
    std::sort(added.begin(), added.end());
    EXPECT_EQ(laid_out, added) << form->Name();
    EXPECT_NE(form->CancelButton(), nullptr) << form->Name();
  }
}

TEST(WindowsTest, OpenInTheMiddleWithTheHostsFont) {
  Windows windows;
  for (Form* form : windows.All()) {
    if (form != &windows.check) {  // which closes itself
      windows.toolkit.On(form->Name(), [](Form& shown) { shown.Close(); });
    }
    form->ShowModal();
    EXPECT_EQ(form->Left(), (1920 - form->Width()) / 2) << form->Name();
    EXPECT_EQ(form->Top(), (1080 - form->Height()) / 2) << form->Name();
    for (Control* control : form->Controls()) {
      if (control->GetFont().size > 0) {
        EXPECT_EQ(control->GetFont().name, u"Gulim");
      }
    }
  }
}

}  // namespace
}  // namespace vesko
