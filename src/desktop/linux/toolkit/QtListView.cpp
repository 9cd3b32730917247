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

#include "desktop/common/ShownText.h"
#include "desktop/linux/toolkit/QtControls.h"
#include "desktop/linux/toolkit/QtIcons.h"
#include "desktop/linux/toolkit/QtKeys.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

constexpr double kUsualCharWidth = 5;

/// The control's rows. The model remembers how many there were when the view was last reset; the
/// cells are read from the control when they are painted.
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
    if (role == Qt::DisplayRole) {
      return ToQString(OneLine(list_->CellAt(index.row(), index.column())));
    }
    if (role == Qt::DecorationRole && index.column() == 0) {
      return StateIcon(list_->StateAt(index.row()));
    }
    return {};
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (!list_ || orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    const auto column = static_cast<size_t>(section);
    if (column >= list_->Columns().size()) return {};
    return ToQString(OneLine(list_->Columns()[column].header));
  }

 private:
  ListView* list_;
  int rows_ = 0;
  int columns_ = 0;
};

class ListViewPeer;

/// The native list. Passes on to its peer what the user does before or after the list acts on it.
class RowView : public QTreeView {
 public:
  RowView() {
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

  /// Null when the peer goes; the view may live on until its events are over.
  void SetPeer(ListViewPeer* peer) { peer_ = peer; }

  QSize minimumSizeHint() const override {
    const int line = fontMetrics().lineSpacing();
    return {10 * line, 5 * line};
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  ListViewPeer* peer_ = nullptr;
};

class ListViewPeer : public QtPeerOf<ListView, RowView> {
 public:
  ListViewPeer(ListView& control, const PeerContext& context)
      : QtPeerOf(control, context), model_(new RowModel(control)) {
    model_->setParent(Native());
    Native()->setModel(model_);
    Native()->SetPeer(this);
    QObject::connect(Native()->header(), &QHeaderView::sectionClicked, Lifetime(),
                     [this](int section) { HeaderClicked(section); });
    QObject::connect(Native()->selectionModel(), &QItemSelectionModel::selectionChanged, Lifetime(),
                     [this] { TakeSelection(); });
    QObject::connect(Native()->selectionModel(), &QItemSelectionModel::currentChanged, Lifetime(),
                     [this] { TakeSelection(); });
  }
  ~ListViewPeer() override {
    Native()->SetPeer(nullptr);
    model_->ListGone();
  }

  bool WantsLabel() const override { return true; }

  /// A press is about to be handled: it is meant for the row that is there now.
  void MouseAims() { SynchroniseIfChanged(); }

  /// A key was pressed and the list has not seen it yet; true when it was used up.
  bool KeyPressed(const QKeyEvent& event) {
    const int key = KeyCode(event);
    if (key == 0) return false;
    SynchroniseIfChanged();
    bool used = false;
    RunHandler(Context(), [&] { used = control_.PressKey(key, Modifiers(event.modifiers())); });
    return used;
  }

  /// The list has acted on a key.
  void KeyHandled() {
    if (control_.CurrentRow() != clicked_) RaiseItemClick();
  }

  /// The list has acted on a press; row -1: outside of the rows.
  void MouseHandled(const QMouseEvent& event, int row) {
    const int buttons = Buttons(event.button());
    const bool plain_click = buttons == kLeftButton && event.modifiers() == Qt::NoModifier;
    const QPointer<QObject> alive = Lifetime();
    if (row >= 0 && UpToDate() && (plain_click || row != clicked_)) RaiseItemClick();
    if (alive && buttons != 0) RaiseMouse(buttons, row);
  }

  /// The button was released: a drag over several rows clicks only the last.
  void MouseReleased() {
    if (UpToDate() && control_.CurrentRow() != clicked_) RaiseItemClick();
  }

  /// The menu was asked for by keyboard.
  void MenuAsked() {
    SynchroniseIfChanged();
    const QModelIndex current = Native()->currentIndex();
    if (!current.isValid()) return;
    Native()->scrollTo(current);
    const auto place = Context().popup_place;
    *place = Native()->viewport()->mapToGlobal(Native()->visualRect(current).bottomLeft());
    RaiseMouse(kRightButton, current.row());
    place->reset();
  }

 protected:
  void ShowOwnState() override {
    const QScopedValueRollback<bool> showing(showing_, true);
    const bool rows_changed = generation_ != control_.Generation();
    if (rows_changed) ShowRows();
    if (rows_changed || selection_generation_ != control_.SelectionGeneration()) ShowSelection();
    ShowSortIndicator();
    Native()->viewport()->update();
  }

 private:
  void ShowRows() {
    generation_ = control_.Generation();
    const bool new_columns = model_->columnCount() != static_cast<int>(control_.Columns().size());
    model_->Reset();
    if (new_columns) ShowColumns();
    const int icon = IconSizeFor(Native()->fontMetrics().height());
    Native()->setIconSize({icon, icon});
  }

  // The largest image that does not make its row higher.
  static int IconSizeFor(int line_height) {
    int best = kIconSizes[0];
    for (const int size : kIconSizes) best = size <= line_height ? size : best;
    return best;
  }

  void ShowColumns() {
    QHeaderView* const header = Native()->header();
    const double scale = FontScale();
    for (int column = 0; column < model_->columnCount(); ++column) {
      const double width = scale * control_.Columns()[static_cast<size_t>(column)].width;
      header->resizeSection(column,
                            std::max(static_cast<int>(width), header->sectionSizeHint(column)));
    }
  }

  // Widths are meant for a small font; with a larger one the same text takes more room.
  double FontScale() const {
    return std::max(1.0, Native()->fontMetrics().averageCharWidth() / kUsualCharWidth);
  }

  void ShowSortIndicator() {
    QHeaderView* const header = Native()->header();
    header->setSortIndicatorShown(control_.Sorted());
    header->setSortIndicator(control_.Sorted() ? control_.SortKey() : -1,
                             control_.SortDescending() ? Qt::DescendingOrder : Qt::AscendingOrder);
  }

  // Ranges are added to an empty selection: the model would compare each of thousands with all the
  // others otherwise.
  void ShowSelection() {
    selection_generation_ = control_.SelectionGeneration();
    QItemSelectionModel* const selection = Native()->selectionModel();
    const int shown_current = selection->currentIndex().row();
    selection->reset();
    selection->select(SelectedRanges(), QItemSelectionModel::Select);
    const int current = control_.CurrentRow();
    Native()->setAutoScroll(current != shown_current);  // "select all" must not scroll
    selection->setCurrentIndex(model_->index(current, 0), QItemSelectionModel::NoUpdate);
    Native()->setAutoScroll(true);
    clicked_ = current;
  }

  QItemSelection SelectedRanges() const {
    QItemSelection ranges;
    const int last_column = model_->columnCount() - 1;
    int first = 0;
    for (int row = 0; row <= control_.Count(); ++row) {
      if (row < control_.Count() && control_.Selected(row)) continue;
      if (first < row) {
        ranges.append(
            QItemSelectionRange(model_->index(first, 0), model_->index(row - 1, last_column)));
      }
      first = row + 1;
    }
    return ranges;
  }

  // Until changed rows are shown, the view reports rows that no longer exist.
  bool UpToDate() const { return generation_ == control_.Generation(); }

  void TakeSelection() {
    if (showing_ || !UpToDate()) return;
    std::vector<std::pair<int, int>> runs;
    for (const QItemSelectionRange& range : Native()->selectionModel()->selection()) {
      runs.emplace_back(range.top(), range.bottom());
    }
    control_.TakeSelection(runs, Native()->currentIndex().row());
  }

  void HeaderClicked(int section) {
    MarkChanged();  // the view has already turned its arrow
    RunHandler(Context(), [&] { control_.ClickColumn(section + 1); });
  }

  void RaiseItemClick() {
    clicked_ = control_.CurrentRow();
    if (clicked_ < 0 || !control_.on_item_click) return;
    RunHandler(Context(), [click = control_.on_item_click, row = clicked_] { click(row); });
  }

  void RaiseMouse(int buttons, int row) {
    RunHandler(Context(), [&] { control_.PressMouse(buttons, row < control_.Count() ? row : -1); });
  }

  static int Buttons(Qt::MouseButton button) {
    if (button == Qt::LeftButton) return kLeftButton;
    return button == Qt::RightButton ? kRightButton : 0;
  }

  RowModel* model_;
  uint64_t generation_ = 0;
  uint64_t selection_generation_ = 0;
  int clicked_ = -1;  // the row that was last clicked, or made current by the window
  bool showing_ = false;
};

void RowView::keyPressEvent(QKeyEvent* event) {
  if (!peer_) return;
  const bool menu = event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier;
  if (menu) return peer_->MenuAsked();
  if (peer_->KeyPressed(*event)) return event->accept();
  if (!peer_) return;
  QTreeView::keyPressEvent(event);
  if (peer_) peer_->KeyHandled();
}

void RowView::mousePressEvent(QMouseEvent* event) {
  if (peer_) peer_->MouseAims();
  QTreeView::mousePressEvent(event);
  const QModelIndex index = indexAt(event->position().toPoint());
  if (peer_) peer_->MouseHandled(*event, index.isValid() ? index.row() : -1);
}

void RowView::mouseReleaseEvent(QMouseEvent* event) {
  QTreeView::mouseReleaseEvent(event);
  if (peer_) peer_->MouseReleased();
}

// A press of the right mouse button has opened the menu already.
void RowView::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard && peer_) peer_->MenuAsked();
}

}  // namespace

PeerPtr MakeListViewPeer(ListView& control, const PeerContext& context) {
  return std::make_unique<ListViewPeer>(control, context);
}

}  // namespace vesko
