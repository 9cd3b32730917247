#include <QAbstractTableModel>
#include <QContextMenuEvent>
#include <QHash>
#include <QHeaderView>
#include <QIcon>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QTreeView>
#include <algorithm>
#include <utility>
#include <vector>

#include "desktop/linux/toolkit/QtControls.h"
#include "desktop/linux/toolkit/QtIcons.h"
#include "desktop/linux/toolkit/QtKeys.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

constexpr double kUsualCharWidth = 5;

/// The control's rows as they were when the view was last reset. Nothing is copied: cells are read
/// from the control when they are painted.
class RowModel : public QAbstractTableModel {
 public:
  explicit RowModel(ListView& list) : list_(&list) {}

  void Reset() {
    beginResetModel();
    rows_ = list_->Count();
    columns_ = static_cast<int>(list_->Columns().size());
    endResetModel();
  }
  void ListGone() { list_ = nullptr; }

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : rows_;
  }
  int columnCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : columns_;
  }

  QVariant data(const QModelIndex& index, int role) const override {
    if (!list_ || index.row() >= list_->Count()) return {};
    const ListView::Row& row = list_->RowAt(index.row());
    if (role == Qt::DisplayRole) return Cell(row, static_cast<size_t>(index.column()));
    if (role == Qt::DecorationRole && index.column() == 0) return StateIcon(row.image);
    return {};
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (!list_ || orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    const auto column = static_cast<size_t>(section);
    if (column >= list_->Columns().size()) return {};
    return OneLine(list_->Columns()[column].header);
  }

 private:
  static QVariant Cell(const ListView::Row& row, size_t column) {
    return column < row.cells.size() ? OneLine(row.cells[column]) : QString();
  }

  ListView* list_;
  int rows_ = 0;
  int columns_ = 0;
};

/// What the view reports.
class RowViewEvents {
 public:
  virtual ~RowViewEvents() = default;
  virtual void MouseAims() = 0;                         // before a press counts
  virtual bool KeyPressed(const QKeyEvent& event) = 0;  // true when it was used up
  virtual void KeyHandled() = 0;
  virtual void MouseHandled(const QMouseEvent& event, int row) = 0;
  virtual void MouseReleased() = 0;
  virtual void MenuAsked() = 0;
};

class RowView : public QTreeView {
 public:
  explicit RowView(RowViewEvents& events) : events_(&events) {
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setExpandsOnDoubleClick(false);
    setUniformRowHeights(true);  // without it every row is measured when the list opens
    setAllColumnsShowFocus(true);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    header()->setSectionsClickable(true);
    header()->setSectionsMovable(false);
    header()->setStretchLastSection(false);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  }

  void Detach() { events_ = nullptr; }

  QSize minimumSizeHint() const override {
    const int line = fontMetrics().lineSpacing();
    return {10 * line, 5 * line};
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (!events_) return;
    if (AsksForMenu(*event)) return events_->MenuAsked();
    if (events_->KeyPressed(*event)) return event->accept();
    if (!events_) return;
    QTreeView::keyPressEvent(event);
    if (events_) events_->KeyHandled();
  }

  void mousePressEvent(QMouseEvent* event) override {
    if (events_) events_->MouseAims();
    QTreeView::mousePressEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (events_) events_->MouseHandled(*event, index.isValid() ? index.row() : -1);
  }

  void mouseReleaseEvent(QMouseEvent* event) override {
    QTreeView::mouseReleaseEvent(event);
    if (events_) events_->MouseReleased();
  }

  // A menu asked for with the mouse has come with the press.
  void contextMenuEvent(QContextMenuEvent* event) override {
    if (event->reason() == QContextMenuEvent::Keyboard && events_) events_->MenuAsked();
  }

 private:
  static bool AsksForMenu(const QKeyEvent& event) {
    return event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier;
  }

  RowViewEvents* events_;
};

class ListViewPeer : public QtControlPeer, private RowViewEvents {
 public:
  ListViewPeer(ListView& control, const PeerContext& context)
      : QtControlPeer(control, new RowView(*this), context),
        list_(control),
        model_(new RowModel(control)) {
    model_->setParent(View());
    View()->setModel(model_);
    QObject::connect(View()->header(), &QHeaderView::sectionClicked, Lifetime(),
                     [this](int section) { HeaderClicked(section); });
    QObject::connect(View()->selectionModel(), &QItemSelectionModel::selectionChanged, Lifetime(),
                     [this] { TakeSelection(); });
    QObject::connect(View()->selectionModel(), &QItemSelectionModel::currentChanged, Lifetime(),
                     [this] { TakeSelection(); });
  }
  ~ListViewPeer() override {
    View()->Detach();
    model_->ListGone();
  }

  bool WantsLabel() const override { return true; }

 protected:
  void ShowOwnState() override {
    const QScopedValueRollback<bool> showing(showing_, true);
    const bool rows_changed = generation_ != list_.Generation();
    if (rows_changed) ShowRows();
    if (rows_changed || selection_generation_ != list_.SelectionGeneration()) ShowSelection();
    ShowSortIndicator();
    View()->viewport()->update();
  }

 private:
  RowView* View() const { return static_cast<RowView*>(Widget()); }

  void ShowRows() {
    generation_ = list_.Generation();
    const bool new_columns = model_->columnCount() != static_cast<int>(list_.Columns().size());
    model_->Reset();
    clicked_ = list_.CurrentRow();
    if (new_columns) ShowColumns();
    const int icon = IconSizeFor(View()->fontMetrics().height());
    View()->setIconSize({icon, icon});
  }

  // The largest image that does not make its line higher.
  static int IconSizeFor(int line_height) {
    int best = kIconSizes[0];
    for (const int size : kIconSizes) best = size <= line_height ? size : best;
    return best;
  }

  void ShowColumns() {
    QHeaderView* const header = View()->header();
    const double scale = FontScale();
    for (int column = 0; column < model_->columnCount(); ++column) {
      const double width = scale * list_.Columns()[static_cast<size_t>(column)].width;
      header->resizeSection(column,
                            std::max(static_cast<int>(width), header->sectionSizeHint(column)));
    }
  }

  // Widths are meant for a small font; with a larger one the same text takes more room.
  double FontScale() const {
    return std::max(1.0, View()->fontMetrics().averageCharWidth() / kUsualCharWidth);
  }

  void ShowSortIndicator() {
    QHeaderView* const header = View()->header();
    header->setSortIndicatorShown(list_.Sorted());
    header->setSortIndicator(list_.Sorted() ? list_.SortKey() : -1,
                             list_.SortDescending() ? Qt::DescendingOrder : Qt::AscendingOrder);
  }

  // Starting from an empty selection, thousands of ranges are set without comparing each with each.
  void ShowSelection() {
    selection_generation_ = list_.SelectionGeneration();
    QItemSelectionModel* const selection = View()->selectionModel();
    const int shown_current = selection->currentIndex().row();
    selection->reset();
    selection->select(SelectedRanges(), QItemSelectionModel::Select);
    const int current = list_.CurrentRow();
    View()->setAutoScroll(current != shown_current);  // "select all" stays where it is
    selection->setCurrentIndex(model_->index(current, 0), QItemSelectionModel::NoUpdate);
    View()->setAutoScroll(true);
    clicked_ = current;
  }

  QItemSelection SelectedRanges() const {
    QItemSelection ranges;
    const int last_column = model_->columnCount() - 1;
    int first = 0;
    for (int row = 0; row <= list_.Count(); ++row) {
      if (row < list_.Count() && list_.Selected(row)) continue;
      if (first < row) {
        ranges.append(
            QItemSelectionRange(model_->index(first, 0), model_->index(row - 1, last_column)));
      }
      first = row + 1;
    }
    return ranges;
  }

  // While the rows have changed but are not shown yet, the view speaks of rows that are gone.
  bool UpToDate() const { return generation_ == list_.Generation(); }

  void TakeSelection() {
    if (showing_ || !UpToDate()) return;
    std::vector<std::pair<int, int>> runs;
    for (const QItemSelectionRange& range : View()->selectionModel()->selection()) {
      runs.emplace_back(range.top(), range.bottom());
    }
    list_.TakeSelection(runs, View()->currentIndex().row());
  }

  void HeaderClicked(int section) {
    MarkChanged();  // the view has turned its arrow by itself
    Raise(Context(), [&] { list_.ClickColumn(section + 1); });
  }

  // A press is for the row that stands there now.
  void MouseAims() override { SynchroniseIfChanged(); }

  bool KeyPressed(const QKeyEvent& event) override {
    const int key = KeyCode(event);
    if (key == 0) return false;
    SynchroniseIfChanged();
    bool used = false;
    Raise(Context(), [&] { used = list_.PressKey(key, Modifiers(event.modifiers())); });
    return used;
  }

  void KeyHandled() override {
    if (list_.CurrentRow() != clicked_) RaiseItemClick();
  }

  void MouseHandled(const QMouseEvent& event, int row) override {
    const int buttons = Buttons(event.button());
    const bool plain_click = buttons == kLeftButton && event.modifiers() == Qt::NoModifier;
    const QPointer<QObject> alive = Lifetime();
    if (row >= 0 && UpToDate() && (plain_click || row != clicked_)) RaiseItemClick();
    if (alive && buttons != 0) RaiseMouse(buttons, row);
  }

  // Dragging over rows clicks the last one only.
  void MouseReleased() override {
    if (UpToDate() && list_.CurrentRow() != clicked_) RaiseItemClick();
  }

  void MenuAsked() override {
    SynchroniseIfChanged();
    const QModelIndex current = View()->currentIndex();
    if (!current.isValid()) return;
    View()->scrollTo(current);
    const auto place = Context().popup_place;
    *place = View()->viewport()->mapToGlobal(View()->visualRect(current).bottomLeft());
    RaiseMouse(kRightButton, current.row());
    place->reset();
  }

  void RaiseItemClick() {
    clicked_ = list_.CurrentRow();
    if (clicked_ < 0 || !list_.on_item_click) return;
    Raise(Context(), [click = list_.on_item_click, row = clicked_] { click(row); });
  }

  void RaiseMouse(int buttons, int row) {
    Raise(Context(), [&] { list_.PressMouse(buttons, row < list_.Count() ? row : -1); });
  }

  static int Buttons(Qt::MouseButton button) {
    if (button == Qt::LeftButton) return kLeftButton;
    return button == Qt::RightButton ? kRightButton : 0;
  }

  ListView& list_;
  RowModel* model_;
  uint64_t generation_ = 0;
  uint64_t selection_generation_ = 0;
  int clicked_ = -1;  // the row that was last clicked, or made current by the window
  bool showing_ = false;
};

}  // namespace

PeerPtr MakeQtPeer(ListView& control, const PeerContext& context) {
  return std::make_unique<ListViewPeer>(control, context);
}

}  // namespace vesko
