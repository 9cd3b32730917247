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

using Calls = std::vector<std::string>;

TEST(FormTest, LivesFromLoadToUnload) {
  ScriptedToolkit toolkit;
  LifeForm form(toolkit);
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

TEST(FormTest, UnloadingWhileLoadingOrActivatingEndsTheShowing) {
  ScriptedToolkit toolkit;
  LifeForm form(toolkit);
  form.on_load = [&] { form.Unload(); };
  form.ShowModal();
  EXPECT_TRUE(toolkit.shown.empty());
  form.on_load = {};
  form.on_activate = [&] { form.Unload(); };
  form.ShowModal();
  EXPECT_EQ(toolkit.shown, Calls{"Life"});
  EXPECT_EQ(toolkit.calls.back(), "destroy Life");
}

TEST(FormTest, AnErrorWhileLoadingLeavesTheWindowUsable) {
  ScriptedToolkit toolkit;
  LifeForm form(toolkit);
  form.on_load = [] { throw RunTimeError(kTypeMismatch); };
  EXPECT_THROW(form.ShowModal(), RunTimeError);
  EXPECT_FALSE(form.IsLoaded());
  form.on_load = {};
  toolkit.On("Life", [](Form& shown) { shown.Close(); });
  form.ShowModal();
  EXPECT_EQ(toolkit.shown, Calls{"Life"});
}

TEST(CentreFormTest, PlacesInTheMiddleOfScreenOrOwner) {
  ScriptedToolkit toolkit;
  LifeForm form(toolkit), owner(toolkit);
  form.Resize(400, 300);
  toolkit.screen = {100, 50, 1000, 700};
  CentreForm(form, toolkit);
  EXPECT_EQ(form.Left(), 400);
  EXPECT_EQ(form.Top(), 250);
  owner.TakeBounds({10, 20, 200, 100});
  CentreForm(form, toolkit, &owner);
  EXPECT_EQ(form.Left(), -90);
  EXPECT_EQ(form.Top(), -80);
  EXPECT_EQ(form.Width(), 400);
}

TEST(ApplyFontTest, GivesTheFaceToControlsThatHaveAFont) {
  const std::pair<Text, double> rows[] = {{u"Gulim", 9}, {u"Gulim", 0}, {u"", 9}};
  for (const auto& [font, size] : rows) {
    ScriptedToolkit toolkit;
    LifeForm form(toolkit);
    form.button.SetFont({u"Tahoma", size});
    ApplyFont(form, toolkit, font);
    const bool applied = !font.empty() && size > 0;
    EXPECT_EQ(form.button.GetFont().name, applied ? u"Gulim" : u"Tahoma");
    EXPECT_EQ(form.button.GetFont().size, size);
    EXPECT_EQ(toolkit.calls, applied ? Calls{"invalidate cmdOne"} : Calls{});
  }
}

}  // namespace
}  // namespace vesko
