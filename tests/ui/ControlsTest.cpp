#include <gtest/gtest.h>

#include <tuple>

#include "base/RunTimeError.h"
#include "support/AnyForm.h"
#include "support/ScriptedToolkit.h"
#include "support/TestLocale.h"
#include "ui/Controls.h"

namespace vesko {
namespace {

class ControlsTest : public testing::Test {
 protected:
  ScriptedToolkit toolkit;
  AnyForm form{toolkit};
};

TEST_F(ControlsTest, DisabledControlsIgnoreTheUser) {
  int events = 0;
  CommandButton button(form, "cmd"), hidden(form, "cmdHidden");
  CheckBox check(form, "chk");
  TextBox box(form, "txt"), fixed(form, "txtFixed");
  ListBox list(form, "lst");
  button.on_click = hidden.on_click = check.on_click = box.on_change = fixed.on_change =
      list.on_click = [&] { ++events; };
  list.AddItem(u"a");
  for (Control* control : std::initializer_list<Control*>{&button, &check, &box, &list}) {
    control->SetEnabled(false);
  }
  hidden.SetVisible(false);
  fixed.SetReadOnly(true);
  for (CommandButton* pressed : {&button, &hidden}) pressed->Click();
  for (TextBox* typed : {&box, &fixed}) typed->Type(u"x");
  check.Click();
  list.Click(0);
  EXPECT_EQ(events, 0);
  EXPECT_EQ(box.GetText() + fixed.GetText(), u"");
}

TEST_F(ControlsTest, ABoxOfOneLineTakesOneLine) {
  const struct {
    TextView before, edited, after;
  } rows[] = {{u"", u"pw\r\nDELE 1", u"pw"},
              {u"", u"pw\n", u"pw"},
              {u"", u"\r\npw", u""},
              {u"", u"a\u2029b", u"a"},
              {u"", u"a\u0085b", u"a"},
              {u"", {u"\ta\0b\u007F\u009F c", 8}, u"ab c"},
              {u"[]", u"[new\r\nline]", u"[new]"},  // pasted in the middle
              {u"old", u"new\r\n", u"new"},         // over a selection
              {u"same", u"same\nmore", u"same"},
              {u"\u00E9\u3042", u"\u00E9\u3042\u2027", u"\u00E9\u3042\u2027"}};
  for (const auto& [before, edited, after] : rows) {
    TextBox box(form, "txt");
    box.SetText(Text(before));
    box.Type(edited);
    EXPECT_EQ(box.GetText(), after);
    if (!before.empty()) continue;
    TextBox set(form, "txt"), lines(form, "txt");
    set.SetText(Text(edited));
    EXPECT_EQ(set.GetText(), after);
    lines.SetMultiLine(true);
    lines.Type(edited);
    EXPECT_EQ(lines.GetText(), edited);
  }
}

TEST_F(ControlsTest, AProgressBarKeepsItsRange) {
  ProgressBar bar(form, "prg");
  for (const int value : {101, -1}) EXPECT_THROW(bar.SetValue(value), RunTimeError);
  EXPECT_THROW(bar.SetMaximum(0), RunTimeError);
  bar.SetValue(100);
  bar.SetMaximum(7);
  EXPECT_EQ(bar.Value(), 7);
}

TEST_F(ControlsTest, TheSelectionOfAListFollowsItsLine) {
  const int rows[][3] = {{1, 0, 0}, {1, 1, -1}, {1, 2, 1}, {-1, 0, -1}};
  for (const auto& [selected, removed, expected] : rows) {
    ListBox list(form, "lst");
    for (const char16_t* item : {u"a", u"b", u"c"}) list.AddItem(item);
    list.SetListIndex(selected);
    list.RemoveItem(removed);
    EXPECT_EQ(list.ListIndex(), expected) << selected << " " << removed;
  }
  ListBox empty(form, "lst");
  EXPECT_THROW(empty.SetListIndex(0), RunTimeError);
  EXPECT_THROW(empty.RemoveItem(0), RunTimeError);
}

class ListViewTest : public ControlsTest {
 protected:
  ListViewTest() {
    list.AddColumn(u"One");
    list.AddColumn(u"Two");
    list.cell = [this](int item, int column) {
      return items[static_cast<size_t>(item)][static_cast<size_t>(column)];
    };
  }

  void Fill(std::vector<std::vector<Text>> rows) {
    items = std::move(rows);
    list.SetCount(static_cast<int>(items.size()));
  }

  Text FirstCells() const {
    Text cells;
    for (int row = 0; row < list.Count(); ++row) cells += list.CellAt(row, 0);
    return cells;
  }

  std::unique_ptr<Locale> locale = MakeTestLocale();
  std::vector<std::vector<Text>> items;
  ListView list{form, "LV1"};
};

TEST_F(ListViewTest, SortsStablyAndKeepsSelectionWithItsItems) {
  Fill({{u"c", u"same"}, {u"B", u"same"}, {u"a", u"other"}});
  list.SetSelected(1, true);
  list.SetCurrentRow(1);
  const std::tuple<int, bool, const char16_t*> rows[] = {
      {0, false, u"aBc"},
      {0, true, u"cBa"},
      {1, true, u"cBa"},  // equal rows stay as they stand
      {1, false, u"acB"},
      {6, true, u"acB"}};  // there is no such column
  for (const auto& [column, descending, expected] : rows) {
    list.Sort(column, descending, *locale);
    EXPECT_EQ(FirstCells(), expected) << column << descending;
  }
  EXPECT_TRUE(list.Selected(2) && !list.Selected(0));
  EXPECT_EQ(list.CurrentRow(), 2);
  EXPECT_EQ(list.ItemAt(2), 1);
  list.SetUnsorted();
  EXPECT_FALSE(list.Sorted() || list.SortDescending());
  EXPECT_EQ(list.SortKey(), 0);
  list.SetCount(3);
  EXPECT_EQ(FirstCells(), u"cBa") << "new rows stand as their items do";
}

TEST_F(ListViewTest, TakesASelectionAsFarAsThereAreRows) {
  list.SetCount(4);
  const uint64_t generation = list.SelectionGeneration();
  list.TakeSelection({{0, 1}, {3, 9}}, 7);
  EXPECT_TRUE(list.Selected(0) && list.Selected(1) && !list.Selected(2) && list.Selected(3));
  EXPECT_EQ(list.CurrentRow(), -1) << "such a row does not exist";
  EXPECT_EQ(list.SelectionGeneration(), generation) << "the native side knows it already";
  list.SetCount(0);
  EXPECT_NE(list.SelectionGeneration(), generation);
  EXPECT_THROW(list.Selected(0), RunTimeError);
  EXPECT_THROW(list.ClickRow(0), RunTimeError);
}

}  // namespace
}  // namespace vesko
