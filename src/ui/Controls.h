#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "maillist/MailState.h"
#include "platform/Locale.h"
#include "ui/Control.h"
#include "ui/Layout.h"

namespace vesko {

/// Key codes as events report them; letters are their upper-case ASCII codes.
inline constexpr int kKeyReturn = 13;

/// Modifier bits of key and mouse events.
inline constexpr int kShift = 1;
inline constexpr int kControl = 2;
inline constexpr int kAlt = 4;

/// Mouse button bits.
inline constexpr int kLeftButton = 1;
inline constexpr int kRightButton = 2;

/// Number of the run-time error for a property value out of range.
inline constexpr int32_t kInvalidPropertyValue = 380;

/// A control with one line of text on it. Line ends and control characters are shown as spaces.
class CaptionedControl : public Control {
 public:
  using Control::Control;

  /// "&" marks the mnemonic, "&&" is an ampersand.
  const Text& Caption() const { return caption_; }
  void SetCaption(Text caption) { Set(caption_, std::move(caption)); }

 private:
  Text caption_;
};

/// One line or paragraph of plain text. A mnemonic ("&Name") leads to the control behind the label,
/// the next one in the layout that takes the focus.
class Label : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;

  /// True for text that is not ours (server replies, names): "&" stands for itself there. A long
  /// text of such a label is shown shortened and never widens the window; where it wraps, it is
  /// shown whole and makes the window higher.
  bool Literal() const { return literal_; }
  void SetLiteral(bool literal) { Set(literal_, literal); }

  /// True where the text wraps over several lines.
  bool Wraps() const { return wraps_; }
  void SetWraps(bool wraps) { Set(wraps_, wraps); }

 private:
  bool literal_ = false;
  bool wraps_ = false;
};

/// A push button. Enter and Escape press it as well where its form says so.
class CommandButton : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;

  std::function<void()> on_click;

  /// The user presses the button; nothing happens while it is disabled or invisible.
  void Click();
};

/// A box with a tick beside its caption.
class CheckBox : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;

  /// 0 unchecked, 1 checked; every other value that is set counts as 1. Setting a value that
  /// differs raises on_click, as a press does.
  int Value() const { return value_; }
  void SetValue(int value);

  /// The value is the new one already.
  std::function<void()> on_click;

  /// The user toggles the box; nothing happens while it is disabled.
  void Click();

 private:
  int value_ = 0;
};

/// A box to type into. One of a single line never holds a line break or another control character,
/// wherever its text comes from: a text ends at its first line break, the other control characters
/// are left out.
class TextBox : public Control {
 public:
  using Control::Control;

  const Text& GetText() const { return text_; }
  /// Raises on_change where the text differs.
  void SetText(Text text);

  /// Every character is shown as "*", and neither the clipboard nor a screen reader gets the text.
  bool Password() const { return password_; }
  void SetPassword(bool password) { Set(password_, password); }

  /// Several lines with scroll bars. Set before the text and before the window is realised.
  bool MultiLine() const { return multi_line_; }
  void SetMultiLine(bool multi_line) { Set(multi_line_, multi_line); }

  /// The user can select and copy the text, but not change it; SetText still does.
  bool ReadOnly() const { return read_only_; }
  void SetReadOnly(bool read_only) { Set(read_only_, read_only); }

  /// The text has changed, whether by the user or by SetText.
  std::function<void()> on_change;
  /// A key was pressed in the box; true when it was used up.
  std::function<bool(int key_code)> on_key_down;

  /// The user edits the text and this is the whole of it now; nothing happens while the box is
  /// disabled or read only. In a box of one line what has come in (a key, a paste) ends at its
  /// first line break, and what stood before and behind it stays.
  void Type(TextView text);
  /// The user presses a key; true when it was used up.
  bool PressKey(int key_code);

 private:
  /// The text of a box of one line after an edit that left `text`.
  Text Edited(TextView text) const;

  Text text_;
  bool password_ = false;
  bool multi_line_ = false;
  bool read_only_ = false;
};

/// A bar that fills from left to right. The desktop shows no number in it.
class ProgressBar : public Control {
 public:
  using Control::Control;

  /// From 0 to Maximum. Setting a value outside, or a maximum below 1, raises run-time error 380
  /// and changes nothing. A smaller maximum takes the value down with it.
  int32_t Value() const { return value_; }
  void SetValue(int32_t value);
  int32_t Maximum() const { return maximum_; }
  void SetMaximum(int32_t maximum);

 private:
  int32_t value_ = 0;
  int32_t maximum_ = 100;
};

/// A list of lines with at most one selected. Lines count from 0; a position that does not exist
/// raises run-time error 380 and changes nothing.
class ListBox : public Control {
 public:
  using Control::Control;

  int Count() const { return static_cast<int>(items_.size()); }
  const Text& Item(int index) const;
  void SetItem(int index, Text item);
  void AddItem(Text item);
  /// The selection stays with its line and goes with it.
  void RemoveItem(int index);
  void Clear();

  /// -1 when none is selected. Setting another line raises on_click, as a press does.
  int ListIndex() const { return index_; }
  void SetListIndex(int index);

  /// Another line is selected, or none. Removing lines and clearing the list do not raise it.
  std::function<void()> on_click;

  /// The user selects a line; nothing happens while the list is disabled.
  void Click(int index);

 private:
  std::vector<Text> items_;
  int index_ = -1;
};

/// A list in report view: columns, rows with an image, several rows selected. The list holds no
/// texts: it asks its owner for the cells and the state of a row when that row is drawn, so the
/// number of rows costs next to nothing. The owner's items count from 0; unless the list is sorted,
/// each stands in the row of its own number. A row that does not exist raises run-time error 380.
class ListView : public Control {
 public:
  using Control::Control;

  struct Column {
    Text header;
    int width = 0;  // logical pixels (96 to the inch)
  };
  static constexpr int kDefaultColumnWidth = 96;

  const std::vector<Column>& Columns() const { return columns_; }
  /// Adds at the right end. The user may change the width while the window is shown.
  void AddColumn(Text header, int width = kDefaultColumnWidth);
  void ClearColumns();

  /// What the owner's items show. To be set before there are rows; called for items and columns
  /// that exist, at any time while the window is shown.
  std::function<Text(int item, int column)> cell;
  std::function<MailState(int item)> state;

  /// Replaces all rows: the owner has so many items now. No row is selected or current then.
  void SetCount(int count);
  int Count() const { return static_cast<int>(rows_.size()); }
  /// The owner's number of the item that stands in a row.
  int ItemAt(int row) const;
  Text CellAt(int row, int column) const { return cell(ItemAt(row), column); }
  MailState StateAt(int row) const { return state(ItemAt(row)); }
  /// The owner's items show something else in the same places.
  void ItemsChanged() { Changed(); }

  /// Changing the selection raises no event and leaves the current row as it is.
  bool Selected(int row) const;
  void SetSelected(int row, bool selected);
  void SelectAll();
  void SelectNone();
  void InvertSelection();

  /// The row with the focus, the one that the list reports as its selected item; -1 for none.
  int CurrentRow() const { return current_; }
  void SetCurrentRow(int row);

  /// Zero-based column of the last sort and its direction.
  int SortKey() const { return sort_key_; }
  bool SortDescending() const { return sort_descending_; }
  bool Sorted() const { return sorted_; }
  /// Sorts the rows by one column's text in the locale's order, equal ones left as they stand.
  /// Selection and current row stay with their items. A column that does not exist changes nothing
  /// in the order of the rows.
  void Sort(int column, bool descending, const Locale& locale);
  /// The state of a fresh list: unsorted, the direction ascending. Rows stay as they stand.
  void SetUnsorted();

  /// Counts every change of the rows' number or order; a native list resets its view by it.
  uint64_t Generation() const { return generation_; }
  /// Counts every change of a row's selection or of the current row.
  uint64_t SelectionGeneration() const { return selection_generation_; }

  std::function<void(int column)> on_column_click;               // column counts from 1
  std::function<void(int row)> on_item_click;                    // a row became the clicked row
  std::function<bool(int key_code, int modifiers)> on_key_down;  // true when it was used up
  std::function<void(int buttons, int row)> on_mouse_down;       // row -1: none at that place

  /// The user clicks a column's header, counted from 1.
  void ClickColumn(int column);
  /// The user clicks a row without modifiers, or moves to it by keyboard: it alone becomes selected
  /// and current, and on_item_click is raised.
  void ClickRow(int row);
  /// The user presses a key; true when it was used up, and the list must not act on it then.
  bool PressKey(int key_code, int modifiers);
  /// Raises on_mouse_down and selects nothing; comes before the click of the same press.
  void PressMouse(int buttons, int row);
  /// The native selection has changed: takes it over without telling the native side again and
  /// raises nothing. Ranges are pairs of first and last row, both included; rows that do not exist
  /// are left out.
  void TakeSelection(const std::vector<std::pair<int, int>>& selected_ranges, int current_row);

 private:
  struct Row {
    int item;
    bool selected;
  };

  Row& RowAt(int row);
  const Row& RowAt(int row) const { return const_cast<ListView*>(this)->RowAt(row); }
  void SortRows(int column, bool descending, const Locale& locale);
  void RowsChanged();
  void SelectionChanged();

  std::vector<Column> columns_;
  std::vector<Row> rows_;
  int current_ = -1;
  int sort_key_ = 0;
  bool sort_descending_ = false;
  bool sorted_ = false;
  uint64_t generation_ = 0;
  uint64_t selection_generation_ = 0;
};

/// A captioned box around other controls.
class Frame : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;

  Layout content;  // set before the window is realised

  std::vector<const Layout*> Contents() const override { return {&content}; }
};

/// Pages of which one is visible, with a strip of captions to turn them by.
class TabControl : public Control {
 public:
  using Control::Control;

  struct Page {
    Text caption;
    Layout content;
  };
  std::vector<Page> pages;  // set before the window is realised

  /// Index of the current page, from 0.
  int Tab() const { return tab_; }
  void SetTab(int tab) { Set(tab_, tab); }

  /// The user turns to a page.
  void Click(int tab) { SetTab(tab); }

  std::vector<const Layout*> Contents() const override;

 private:
  int tab_ = 0;
};

/// A menu that pops up at the mouse cursor. Not a control of the layout.
struct PopupMenu {
  struct Item {
    Text caption;   // "-" is a separator
    Text shortcut;  // shown only, "Ctrl+S"; the window handles the key itself
    bool enabled = true;
  };
  std::vector<Item> items;
  /// An item was chosen; separators count in the index.
  std::function<void(int index)> on_click;
};

}  // namespace vesko
