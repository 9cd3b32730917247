#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "support/ScriptedToolkit.h"
#include "ui/Form.h"
#include "ui/mVeskoMain.h"
#include "ui/mmWinDefs.h"

namespace vesko {
namespace {

/// A window that notes its life and does in each step what the test wants.
class LifeForm : public Form {
 public:
  explicit LifeForm(ScriptedToolkit& toolkit) : Form("Life", toolkit), calls_(toolkit.calls) {
    SetLayout(Item(button));
  }
  ~LifeForm() override { TakeDown(); }

  std::function<void()> on_load, on_activate;
  CommandButton button{*this, "cmdOne"};

 private:
  void OnLoad() override { Note("load", on_load); }
  void OnActivate() override { Note("activate", on_activate); }
  void OnUnload() override { Note("unload", {}); }
  void Note(const std::string& step, const std::function<void()>& action) {
    calls_.push_back(step);
    if (action) action();
  }

  std::vector<std::string>& calls_;
};

class FormTest : public testing::Test {
 protected:
  ScriptedToolkit toolkit;
  LifeForm form{toolkit};
};

using Calls = std::vector<std::string>;

TEST_F(FormTest, LivesFromLoadToUnload) {
  toolkit.On("Life", [](Form& shown) {
    EXPECT_TRUE(shown.IsLoaded());
    shown.ShowModal();  // is shown already
    shown.Unload();
    shown.Unload();
    EXPECT_FALSE(shown.IsLoaded());
    shown.ShowModal();  // not taken down yet
  });
  form.ShowModal();
  EXPECT_EQ(toolkit.calls, (Calls{"fit Life", "load", "fit Life", "show Life", "activate", "unload",
                                  "hide Life", "destroy Life"}));
  EXPECT_EQ(form.button.Peer(), nullptr);
}

TEST_F(FormTest, UnloadingWhileLoadingOrActivatingEndsTheShowing) {
  form.on_load = [&] { form.Unload(); };
  form.ShowModal();
  EXPECT_TRUE(toolkit.shown.empty());
  form.on_load = {};
  form.on_activate = [&] { form.Unload(); };
  form.ShowModal();
  EXPECT_EQ(toolkit.shown, Calls{"Life"});
  EXPECT_EQ(toolkit.calls.back(), "destroy Life");
}

TEST_F(FormTest, AnErrorWhileLoadingLeavesTheWindowUsable) {
  form.on_load = [] { throw RunTimeError(kTypeMismatch); };
  EXPECT_THROW(form.ShowModal(), RunTimeError);
  EXPECT_FALSE(form.IsLoaded());
  form.on_load = {};
  toolkit.On("Life", [](Form& shown) { shown.Close(); });
  form.ShowModal();
  EXPECT_EQ(toolkit.shown, Calls{"Life"});
}

TEST_F(FormTest, IsCentredInTheMiddleOfScreenOrOwner) {
  LifeForm owner(toolkit);
  form.Resize(400, 300);
  toolkit.screen = {100, 50, 1000, 700};
  CentreForm(form, toolkit);
  EXPECT_EQ(std::pair(form.Left(), form.Top()), std::pair(400, 250));
  owner.TakeBounds({10, 20, 200, 100});
  CentreForm(form, toolkit, &owner);
  EXPECT_EQ(std::pair(form.Left(), form.Top()), std::pair(-90, -80));
}

}  // namespace
}  // namespace vesko
