#include "ui/Controls.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

// Takes a copy, because the handler may destroy the control that holds the original.
void Raise(std::function<void()> event) {  // NOLINT(performance-unnecessary-value-param)
  if (event) event();
}

void RequireIndex(int index, int lowest, int count) {
  if (index < lowest || index >= count) throw RunTimeError(kInvalidPropertyValue);
}

bool IsLineBreak(char16_t c) {
  return (c >= u'\n' && c <= u'\r') || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool IsControl(char16_t c) { return c < u' ' || (c >= 0x7F && c < 0xA0); }

/// The text up to its first line break, without control characters.
Text FirstLine(TextView text) {
  Text line(text.begin(), std::find_if(text.begin(), text.end(), IsLineBreak));
  std::erase_if(line, IsControl);
  return line;
}

}  // namespace

void CommandButton::Click() {
  if (Enabled() && Visible()) Raise(on_click);
}

void CheckBox::SetValue(int value) {
  if (Set(value_, value == 0 ? 0 : 1)) Raise(on_click);
}

void CheckBox::Click() {
  if (Enabled()) SetValue(1 - value_);
}

void TextBox::SetText(Text text) {
  if (Set(text_, multi_line_ ? std::move(text) : FirstLine(text))) Raise(on_change);
}

void TextBox::Type(TextView text) {
  if (Enabled() && !read_only_) SetText(multi_line_ ? Text(text) : Edited(text));
}

Text TextBox::Edited(TextView text) const {
  const auto [kept, came] = std::mismatch(text_.begin(), text_.end(), text.begin(), text.end());
  const auto behind = std::mismatch(text_.rbegin(), std::make_reverse_iterator(kept), text.rbegin(),
                                    std::make_reverse_iterator(came));
  const TextView inserted(came, behind.second.base());
  return Text(text_.begin(), kept) + FirstLine(inserted) + Text(behind.first.base(), text_.end());
}

bool TextBox::PressKey(int key_code) { return Enabled() && on_key_down && on_key_down(key_code); }

void ProgressBar::SetValue(int32_t value) {
  if (value < 0 || value > maximum_) throw RunTimeError(kInvalidPropertyValue);
  Set(value_, value);
}

void ProgressBar::SetMaximum(int32_t maximum) {
  if (maximum < 1) throw RunTimeError(kInvalidPropertyValue);
  value_ = std::min(value_, maximum);
  Set(maximum_, maximum);
}

const Text& ListBox::Item(int index) const {
  RequireIndex(index, 0, Count());
  return items_[static_cast<size_t>(index)];
}

void ListBox::SetItem(int index, Text item) {
  RequireIndex(index, 0, Count());
  Set(items_[static_cast<size_t>(index)], std::move(item));
}

void ListBox::AddItem(Text item) {
  items_.push_back(std::move(item));
  Changed();
}

void ListBox::RemoveItem(int index) {
  RequireIndex(index, 0, Count());
  items_.erase(items_.begin() + index);
  if (index_ == index) {
    index_ = -1;
  } else if (index_ > index) {
    --index_;
  }
  Changed();
}

void ListBox::Clear() {
  items_.clear();
  index_ = -1;
  Changed();
}

void ListBox::SetListIndex(int index) {
  RequireIndex(index, -1, Count());
  if (Set(index_, index)) Raise(on_click);
}

void ListBox::Click(int index) {
  if (Enabled()) SetListIndex(index);
}

void ListView::AddColumn(Text header, int width) {
  columns_.push_back({std::move(header), width});
  RowsChanged();
}

void ListView::ClearColumns() {
  columns_.clear();
  RowsChanged();
}

void ListView::SetCount(int count) {
  rows_.clear();
  rows_.reserve(static_cast<size_t>(count));
  for (int item = 0; item < count; ++item) rows_.push_back({item, false});
  current_ = -1;
  RowsChanged();
}

ListView::Row& ListView::RowAt(int row) {
  RequireIndex(row, 0, Count());
  return rows_[static_cast<size_t>(row)];
}

int ListView::ItemAt(int row) const { return RowAt(row).item; }

bool ListView::Selected(int row) const { return RowAt(row).selected; }

void ListView::SetSelected(int row, bool selected) {
  if (Set(RowAt(row).selected, selected)) SelectionChanged();
}

void ListView::SelectAll() {
  for (Row& row : rows_) row.selected = true;
  SelectionChanged();
}

void ListView::SelectNone() {
  for (Row& row : rows_) row.selected = false;
  SelectionChanged();
}

void ListView::InvertSelection() {
  for (Row& row : rows_) row.selected = !row.selected;
  SelectionChanged();
}

void ListView::SetCurrentRow(int row) {
  RequireIndex(row, -1, Count());
  if (Set(current_, row)) SelectionChanged();
}

void ListView::Sort(int column, bool descending, const Locale& locale) {
  if (column >= 0 && column < static_cast<int>(columns_.size()))
    SortRows(column, descending, locale);
  sort_key_ = column;
  sort_descending_ = descending;
  sorted_ = true;
  RowsChanged();
}

void ListView::SortRows(int column, bool descending, const Locale& locale) {
  const int current_item = current_ < 0 ? -1 : ItemAt(current_);
  // The owner is asked once for each text, not once for each comparison.
  std::vector<Text> texts(rows_.size());
  for (const Row& row : rows_) texts[static_cast<size_t>(row.item)] = cell(row.item, column);
  std::stable_sort(rows_.begin(), rows_.end(), [&](const Row& left, const Row& right) {
    const Text& a = texts[static_cast<size_t>(descending ? right.item : left.item)];
    const Text& b = texts[static_cast<size_t>(descending ? left.item : right.item)];
    return a != b && locale.Compare(a, b) < 0;
  });
  if (current_ < 0) return;
  const auto found = std::find_if(rows_.begin(), rows_.end(),
                                  [&](const Row& row) { return row.item == current_item; });
  current_ = static_cast<int>(found - rows_.begin());
}

void ListView::SetUnsorted() {
  sort_key_ = 0;
  sort_descending_ = false;
  sorted_ = false;
  Changed();
}

void ListView::ClickColumn(int column) {
  if (Enabled() && on_column_click) on_column_click(column);
}

void ListView::ClickRow(int row) {
  if (!Enabled()) return;
  RequireIndex(row, 0, Count());
  SelectNone();
  SetSelected(row, true);
  SetCurrentRow(row);
  if (on_item_click) on_item_click(row);
}

bool ListView::PressKey(int key_code, int modifiers) {
  return Enabled() && on_key_down && on_key_down(key_code, modifiers);
}

void ListView::PressMouse(int buttons, int row) {
  if (Enabled() && on_mouse_down) on_mouse_down(buttons, row);
}

void ListView::TakeSelection(const std::vector<std::pair<int, int>>& selected_ranges,
                             int current_row) {
  for (Row& row : rows_) row.selected = false;
  for (auto [first, last] : selected_ranges) {
    for (int row = std::max(first, 0); row <= last && row < Count(); ++row) {
      rows_[static_cast<size_t>(row)].selected = true;
    }
  }
  current_ = current_row < Count() ? std::max(current_row, -1) : -1;
}

void ListView::RowsChanged() {
  ++generation_;
  SelectionChanged();
}

void ListView::SelectionChanged() {
  ++selection_generation_;
  Changed();
}

std::vector<const Layout*> TabControl::Contents() const {
  std::vector<const Layout*> contents;
  for (const Page& page : pages) contents.push_back(&page.content);
  return contents;
}

}  // namespace vesko
