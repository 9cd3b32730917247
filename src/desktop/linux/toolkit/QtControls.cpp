#include "desktop/linux/toolkit/QtControls.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>
#include <stdexcept>

#include "desktop/common/ShownText.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

class ButtonPeer : public QtPeerOf<CommandButton, QPushButton> {
 public:
  ButtonPeer(CommandButton& control, const PeerContext& context) : QtPeerOf(control, context) {
    QObject::connect(Native(), &QPushButton::clicked, Lifetime(),
                     [this] { RunHandler(Context(), [this] { control_.Click(); }); });
  }

 protected:
  void ShowOwnState() override { Native()->setText(ToQString(OneLine(control_.Caption()))); }
};

class CheckBoxPeer : public QtPeerOf<CheckBox, QCheckBox> {
 public:
  CheckBoxPeer(CheckBox& control, const PeerContext& context) : QtPeerOf(control, context) {
    QObject::connect(Native(), &QCheckBox::clicked, Lifetime(), [this] {
      MarkChanged();  // the control decides whether the press counts
      RunHandler(Context(), [this] { control_.Click(); });
    });
  }

 protected:
  void ShowOwnState() override {
    Native()->setText(ToQString(OneLine(control_.Caption())));
    Native()->setChecked(control_.Value() != 0);
  }
};

class ProgressPeer : public QtPeerOf<ProgressBar, QProgressBar> {
 public:
  ProgressPeer(ProgressBar& control, const PeerContext& context) : QtPeerOf(control, context) {
    Native()->setTextVisible(false);
  }

 protected:
  void ShowOwnState() override {
    Native()->setRange(0, control_.Maximum());
    Native()->setValue(control_.Value());
  }
};

class ListBoxPeer : public QtPeerOf<ListBox, QListWidget> {
 public:
  ListBoxPeer(ListBox& control, const PeerContext& context) : QtPeerOf(control, context) {
    Native()->setUniformItemSizes(true);
    QObject::connect(Native(), &QListWidget::itemSelectionChanged, Lifetime(),
                     [this] { SelectionChanged(); });
  }

  bool WantsLabel() const override { return true; }

 protected:
  void ShowOwnState() override {
    const QSignalBlocker silent(Native());
    ShowItems();
    if (control_.ListIndex() < 0) {
      Native()->clearSelection();
      Native()->setCurrentRow(-1, QItemSelectionModel::NoUpdate);
    } else {
      Native()->setCurrentRow(control_.ListIndex());
    }
  }

 private:
  void ShowItems() {
    while (Native()->count() > control_.Count()) delete Native()->takeItem(Native()->count() - 1);
    for (int i = 0; i < control_.Count(); ++i) {
      const QString text = ToQString(OneLine(control_.Item(i)));
      if (i == Native()->count()) {
        Native()->addItem(text);
      } else {
        Native()->item(i)->setText(text);
      }
    }
  }

  void SelectionChanged() {
    const QList<QListWidgetItem*> selected = Native()->selectedItems();
    if (selected.isEmpty()) return;
    const int row = Native()->row(selected.front());
    MarkChanged();
    if (row < control_.Count()) RunHandler(Context(), [&] { control_.Click(row); });
  }
};

class FramePeer : public QtPeerOf<Frame, QGroupBox> {
 public:
  using QtPeerOf::QtPeerOf;

  std::vector<QWidget*> Containers() const override { return {Native()}; }

 protected:
  void ShowOwnState() override { Native()->setTitle(ToQString(OneLine(control_.Caption()))); }
};

class TabPeer : public QtPeerOf<TabControl, QTabWidget> {
 public:
  TabPeer(TabControl& control, const PeerContext& context) : QtPeerOf(control, context) {
    for (const TabControl::Page& page : control.pages) {
      Native()->addTab(new QWidget, ToQString(OneLine(page.caption)));
    }
    QObject::connect(Native(), &QTabWidget::currentChanged, Lifetime(),
                     [this](int tab) { RunHandler(Context(), [&] { control_.Click(tab); }); });
  }

  std::vector<QWidget*> Containers() const override {
    std::vector<QWidget*> pages;
    for (int i = 0; i < Native()->count(); ++i) pages.push_back(Native()->widget(i));
    return pages;
  }

 protected:
  void ShowOwnState() override {
    const QSignalBlocker silent(Native());
    Native()->setCurrentIndex(control_.Tab());
  }
};

template <typename Peer>
PeerPtr Make(typename Peer::Kind& control, const PeerContext& context) {
  return std::make_unique<Peer>(control, context);
}

/// Null where the control is of another kind.
template <typename Kind, PeerPtr (*kMake)(Kind&, const PeerContext&)>
PeerPtr MakeFor(Control& control, const PeerContext& context) {
  auto* const kind = dynamic_cast<Kind*>(&control);
  return kind ? kMake(*kind, context) : nullptr;
}

constexpr PeerPtr (*kMakers[])(Control&, const PeerContext&) = {
    MakeFor<Label, MakeLabelPeer>,
    MakeFor<CommandButton, Make<ButtonPeer>>,
    MakeFor<CheckBox, Make<CheckBoxPeer>>,
    MakeFor<TextBox, MakeTextBoxPeer>,
    MakeFor<ProgressBar, Make<ProgressPeer>>,
    MakeFor<ListBox, Make<ListBoxPeer>>,
    MakeFor<ListView, MakeListViewPeer>,
    MakeFor<Frame, Make<FramePeer>>,
    MakeFor<TabControl, Make<TabPeer>>,
};

}  // namespace

PeerPtr MakeQtPeer(Control& control, const PeerContext& context) {
  for (const auto make : kMakers) {
    if (PeerPtr peer = make(control, context)) return peer;
  }
  throw std::logic_error("a control of an unknown kind");
}

}  // namespace vesko
