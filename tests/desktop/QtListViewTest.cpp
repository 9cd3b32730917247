#include <QHeaderView>
#include <QScrollBar>
#include <QTreeView>
#include <string>

#include "desktop/QtWindows.h"
#include "desktop/linux/LinuxDesktop.h"

namespace vesko {
namespace {

constexpr int kManyRows = 32767;

class QtListViewTest : public QtWindowTest {
 protected:
  QtListViewTest() {
    form.SetResizable(true);
    form.Resize(600, 400);
    list.AddColumn(u"From", 150);
    list.AddColumn(u"Subject", 200);
    list.cell = [](int item, int column) { return column == 0 ? Decimal(item) : Text(u"subject"); };
    list.state = [](int item) { return static_cast<MailState>(item % 4); };
    list.on_item_click = [this](int row) { log += "click " + std::to_string(row) + " "; };
    list.on_mouse_down = [this](int buttons, int row) {
      log += "mouse " + std::to_string(buttons) + " " + std::to_string(row) + " ";
    };
    list.on_column_click = [this](int column) { log += "column " + std::to_string(column) + " "; };
  }

  QTreeView* View() { return Native<QTreeView>(list); }
  QPoint Place(int row) { return View()->visualRect(View()->model()->index(row, 0)).center(); }
  void Press(int row, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    Settle();
    QTest::mouseClick(View()->viewport(), button, modifiers, Place(row));
  }
  std::string TakeLog() { return std::exchange(log, {}); }

  /// The selected rows as the control and as the view see them; both must agree.
  std::string Selected() {
    Settle();
    std::string rows;
    for (int row = 0; row < list.Count(); ++row) {
      const bool shown = View()->selectionModel()->isRowSelected(row, {});
      EXPECT_EQ(shown, list.Selected(row)) << row;
      if (shown) rows += std::to_string(row) + " ";
    }
    EXPECT_EQ(View()->currentIndex().row(), list.CurrentRow());
    return rows;
  }

  ListView list{form, "lv"};
  std::string log;
};

TEST_F(QtListViewTest, ClicksSelectAndReportOnce) {
  list.SetCount(10);
  WhileShown(form, [&] {
    Press(2);
    EXPECT_EQ(TakeLog(), "click 2 mouse 1 2 ");
    EXPECT_EQ(Selected(), "2 ");
    Press(5, Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "2 3 4 5 ");
    Press(3, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(Selected(), "2 4 5 ");
    TakeLog();
    QTest::keyClick(View(), Qt::Key_Down);
    EXPECT_EQ(TakeLog(), "click 4 ");
    QTest::keyClick(View(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "4 5 ");
    QTest::keyClicks(View(), "7");  // type-ahead by the first column
    EXPECT_EQ(Selected(), "7 ");
    Press(9, Qt::RightButton);
    EXPECT_EQ(Selected(), "9 ");
    TakeLog();
    QTest::mouseClick(View()->viewport(), Qt::LeftButton, {},
                      {5, View()->viewport()->height() - 2});
    EXPECT_EQ(TakeLog(), "mouse 1 -1 ");
  });
}

TEST_F(QtListViewTest, TheMenuKeepsASelectionOfSeveralRows) {
  list.SetCount(10);
  PopupMenu menu;
  menu.items = {{u"Set &SPAM", u"Ctrl+S"}, {u"-", u""}, {u"Set Read", u"Ctrl+R"}};
  std::string chosen;
  menu.on_click = [&](int index) { chosen += std::to_string(index) + " "; };
  std::vector<QPoint> places;
  list.on_mouse_down = [&](int buttons, int) {
    if (!(buttons & kRightButton)) return;
    Soon([&] {
      QWidget* const popup = QApplication::activePopupWidget();
      places.push_back(popup->pos());
      for (const auto key :
           {Qt::Key_Down, Qt::Key_Down, places.size() == 1 ? Qt::Key_Return : Qt::Key_Escape}) {
        QTest::keyClick(popup, key);
      }
    });
    toolkit->ShowPopup(form, menu);
  };
  WhileShown(form, [&] {
    Press(2);
    Press(4, Qt::LeftButton, Qt::ShiftModifier);
    Press(3, Qt::RightButton);
    EXPECT_EQ(Selected(), "2 3 4 ");
    QTest::keyClick(View(), Qt::Key_F10, Qt::ShiftModifier);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(View()->viewport(), &key);
    EXPECT_EQ(chosen, "2 ");
    ASSERT_EQ(places.size(), 3u);
    EXPECT_EQ(places[1], places[2]);
    EXPECT_TRUE(WindowOf(list)->geometry().contains(places[1]));
  });
}

TEST_F(QtListViewTest, KeysThatAreUsedUpDoNothingElse) {
  list.SetCount(5);
  bool use_up = true;
  std::string keys;
  list.on_key_down = [&](int key, int modifiers) {
    keys += std::to_string(key) + "/" + std::to_string(modifiers) + " ";
    return use_up;
  };
  WhileShown(form, [&] {
    Press(1);
    QTest::keyClick(View(), Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(View(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Selected(), "1 ");
    QTest::keyClick(View(), Qt::Key_B);
    use_up = false;
    QTest::keyClick(View(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Selected(), "0 1 2 3 4 ");
  });
  EXPECT_EQ(keys, "65/3 65/2 66/0 65/2 ");
}

TEST_F(QtListViewTest, AHeaderClickSortsInTheControlOnly) {
  const auto locale = MakeIcuLocale(kCodePageUtf8, "en_GB");
  list.SetCount(10);
  list.on_column_click = [&](int column) {
    list.Sort(column - 1, !list.SortDescending(), *locale);
  };
  WhileShown(form, [&] {
    Press(3);
    QHeaderView* const header = View()->header();
    for (const bool descending : {true, false}) {
      QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {20, header->height() / 2});
      Settle();
      EXPECT_TRUE(header->isSortIndicatorShown());
      EXPECT_EQ(header->sortIndicatorOrder() == Qt::DescendingOrder, descending);
      EXPECT_EQ(Selected(), descending ? "6 " : "3 ");
      EXPECT_EQ(View()->model()->index(0, 0).data(), descending ? "9" : "0");
    }
  });
}

TEST_F(QtListViewTest, CellsAreHarmlessAndReadOnlyWhenTheyAreShown) {
  int asked = 0;
  list.cell = [&](int item, int column) {
    ++asked;
    if (item > 0) return Text(100'000, u'x');
    return column == 0 ? Text(u"a\r\nb\tc\u0001 \u202Ex <b>&y</b>") : Text();
  };
  list.SetCount(kManyRows);
  WhileShown(form, [&] {
    View()->grab();
    EXPECT_LT(asked, 100);
    const auto cell = [&](int row, int column, int role = Qt::DisplayRole) {
      return View()->model()->index(row, column).data(role);
    };
    EXPECT_EQ(cell(0, 0).toString(), "a  b c   x <b>&y</b>");
    EXPECT_EQ(cell(0, 1).toString(), "");
    EXPECT_LT(cell(1, 0).toString().size(), 5000);
    const auto image = [&](int row) {
      return cell(row, 0, Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
    };
    for (int state = 0; state < 4; ++state) {
      EXPECT_FALSE(image(state).isNull()) << state;
      EXPECT_NE(image(state), image((state + 1) % 4)) << state;
      EXPECT_EQ(image(state), image(state + 4)) << state;
    }
    EXPECT_FALSE(cell(0, 1, Qt::DecorationRole).isValid());
    list.SetCount(0);  // the view may still ask for what it has not been told to be gone
    EXPECT_FALSE(cell(1, 0).isValid());
  });
}

TEST_F(QtListViewTest, AFullMailboxIsSelectedAndInvertedAtOnce) {
  list.SetCount(kManyRows);
  WhileShown(form, [&] {
    list.SelectAll();
    Settle();
    EXPECT_EQ(View()->selectionModel()->selection().size(), 1);
    Press(1, Qt::LeftButton, Qt::ControlModifier);
    list.InvertSelection();
    EXPECT_EQ(Selected(), "1 ");
    for (int row = 0; row < kManyRows; row += 2) list.SetSelected(row, true);
    list.SetCurrentRow(kManyRows - 1);
    Settle();
    EXPECT_TRUE(View()->selectionModel()->isRowSelected(kManyRows - 1, {}));
    EXPECT_GT(View()->verticalScrollBar()->value(), 0);
  });
}

}  // namespace
}  // namespace vesko
