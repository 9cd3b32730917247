#include <gtest/gtest.h>

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

using TextBoxTest = ControlsTest;
using ProgressBarTest = ControlsTest;
using ListBoxTest = ControlsTest;

TEST_F(ControlsTest, DisabledControlsIgnoreTheUser) {
  int events = 0;
  CommandButton button(form, "cmd");
  CheckBox check(form, "chk");
  TextBox box(form, "txt");
  ListBox list(form, "lst");
  button.on_click = check.on_click = box.on_change = list.on_click = [&] { ++events; };
  list.AddItem(u"a");
  for (Control* control : std::initializer_list<Control*>{&button, &check, &box, &list}) {
    control->SetEnabled(false);
  }
  button.Click();
  check.Click();
  box.Type(u"x");
  list.Click(0);
  EXPECT_EQ(events, 0);
  button.SetEnabled(true);
  button.SetVisible(false);
  button.Click();
  box.SetEnabled(true);
  box.SetReadOnly(true);
  box.Type(u"x");
  EXPECT_EQ(events, 0);
  EXPECT_EQ(box.GetText(), u"");
}

TEST_F(TextBoxTest, ABoxOfOneLineTakesOneLine) {
  struct Row {
    TextView before, edited, after;
  };
  const Row rows[] = {
      {u"", u"pw\r\nDELE 1", u"pw"},
      {u"", u"pw\n", u"pw"},
      {u"", u"\r\npw", u""},
      {u"", u"a\u2028b", u"a"},
      {u"", u"a\u2029b", u"a"},
      {u"", u"a\u000Bb", u"a"},
      {u"", u"a\u0085b", u"a"},
      {u"", {u"\ta\0b\u007F\u009F c", 8}, u"ab c"},
      {u"[]", u"[new\r\nline]", u"[new]"},  // pasted in the middle
      {u"old", u"new\r\n", u"new"},         // over a selection
      {u"same", u"same\nmore", u"same"},
      {u"\u00E9\u3042", u"\u00E9\u3042\u2027", u"\u00E9\u3042\u2027"},
  };
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

TEST_F(ProgressBarTest, KeepsItsRange) {
  ProgressBar bar(form, "prg");
  EXPECT_THROW(bar.SetValue(101), RunTimeError);
  EXPECT_THROW(bar.SetValue(-1), RunTimeError);
  EXPECT_THROW(bar.SetMaximum(0), RunTimeError);
  bar.SetValue(100);
  bar.SetMaximum(7);
  EXPECT_EQ(bar.Value(), 7);
}

TEST_F(ListBoxTest, SelectionFollowsItsLine) {
  const int rows[][3] = {{1, 0, 0}, {1, 1, -1}, {1, 2, 1}, {-1, 0, -1}};
  for (const auto& [selected, removed, expected] : rows) {
    ListBox list(form, "lst");
    for (const char16_t* item : {u"a", u"b", u"c"}) list.AddItem(item);
    list.SetListIndex(selected);
    list.RemoveItem(removed);
    EXPECT_EQ(list.ListIndex(), expected) << selected << " " << removed;
    EXPECT_EQ(list.Count(), 2);
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
  list.Sort(0, false, *locale);
  EXPECT_EQ(FirstCells(), u"aBc");
  list.Sort(0, true, *locale);
  EXPECT_EQ(FirstCells(), u"cBa");
  list.Sort(1, true, *locale);
  EXPECT_EQ(FirstCells(), u"cBa") << "equal rows stay as they stand";
  list.Sort(1, false, *locale);
  EXPECT_EQ(FirstCells(), u"acB");
  list.Sort(6, true, *locale);
  EXPECT_EQ(FirstCells(), u"acB") << "there is no such column";
  EXPECT_TRUE(list.Selected(2) && !list.Selected(0));
  EXPECT_EQ(list.CurrentRow(), 2);
  EXPECT_EQ(list.ItemAt(2), 1);
  list.SetUnsorted();
  EXPECT_FALSE(list.Sorted() || list.SortDescending());
  EXPECT_EQ(list.SortKey(), 0);
  list.SetCount(3);
  EXPECT_EQ(FirstCells(), u"cBa") << "new rows stand as their items do";
}

TEST_F(ListViewTest, SelectsAsTheUserDoes) {
  list.SetCount(4);
  int clicked = -1;
  list.on_item_click = [&](int row) { clicked = row; };
  list.SelectAll();
  list.ClickRow(1);
  list.InvertSelection();
  EXPECT_TRUE(list.Selected(0) && !list.Selected(1) && list.Selected(2) && list.Selected(3));
  EXPECT_EQ(clicked, 1);
  EXPECT_EQ(list.CurrentRow(), 1);

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
