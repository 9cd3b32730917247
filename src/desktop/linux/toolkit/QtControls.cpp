#include "desktop/linux/toolkit/QtControls.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>

#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

class ButtonPeer : public QtControlPeer {
 public:
  ButtonPeer(CommandButton& control, const PeerContext& context)
      : QtControlPeer(control, new QPushButton, context), control_(control) {
    QObject::connect(Button(), &QPushButton::clicked, Lifetime(),
                     [this] { Raise(Context(), [this] { control_.Click(); }); });
  }

 protected:
  void ShowOwnState() override { Button()->setText(OneLine(control_.Caption())); }

 private:
  QPushButton* Button() const { return static_cast<QPushButton*>(Widget()); }

  CommandButton& control_;
};

class CheckBoxPeer : public QtControlPeer {
 public:
  CheckBoxPeer(CheckBox& control, const PeerContext& context)
      : QtControlPeer(control, new QCheckBox, context), control_(control) {
    QObject::connect(Box(), &QCheckBox::clicked, Lifetime(), [this] {
      MarkChanged();  // the control decides whether the press counts
      Raise(Context(), [this] { control_.Click(); });
    });
  }

 protected:
  void ShowOwnState() override {
    Box()->setText(OneLine(control_.Caption()));
    Box()->setChecked(control_.Value() != 0);
  }

 private:
  QCheckBox* Box() const { return static_cast<QCheckBox*>(Widget()); }

  CheckBox& control_;
};

class ProgressPeer : public QtControlPeer {
 public:
  ProgressPeer(ProgressBar& control, const PeerContext& context)
      : QtControlPeer(control, new QProgressBar, context), control_(control) {
    Bar()->setTextVisible(false);
  }

  bool WantsLabel() const override { return true; }

 protected:
  void ShowOwnState() override {
    Bar()->setRange(0, control_.Maximum());
    Bar()->setValue(control_.Value());
  }

 private:
  QProgressBar* Bar() const { return static_cast<QProgressBar*>(Widget()); }

  ProgressBar& control_;
};

class ListBoxPeer : public QtControlPeer {
 public:
  ListBoxPeer(ListBox& control, const PeerContext& context)
      : QtControlPeer(control, new QListWidget, context), control_(control) {
    List()->setUniformItemSizes(true);
    QObject::connect(List(), &QListWidget::itemSelectionChanged, Lifetime(),
                     [this] { SelectionChanged(); });
  }

  bool WantsLabel() const override { return true; }

 protected:
  void ShowOwnState() override {
    const QSignalBlocker silent(List());
    ShowItems();
    if (control_.ListIndex() < 0) {
      List()->clearSelection();
      List()->setCurrentRow(-1, QItemSelectionModel::NoUpdate);
    } else {
      List()->setCurrentRow(control_.ListIndex());
    }
  }

 private:
  QListWidget* List() const { return static_cast<QListWidget*>(Widget()); }

  void ShowItems() {
    while (List()->count() > control_.Count()) delete List()->takeItem(List()->count() - 1);
    for (int i = 0; i < control_.Count(); ++i) {
      const QString text = OneLine(control_.Item(i));
      if (i == List()->count()) {
        List()->addItem(text);
      } else {
        List()->item(i)->setText(text);
      }
    }
  }

  void SelectionChanged() {
    const QList<QListWidgetItem*> selected = List()->selectedItems();
    if (selected.isEmpty()) return;
    const int row = List()->row(selected.front());
    MarkChanged();
    if (row < control_.Count()) Raise(Context(), [&] { control_.Click(row); });
  }

  ListBox& control_;
};

class FramePeer : public QtControlPeer {
 public:
  FramePeer(Frame& control, const PeerContext& context)
      : QtControlPeer(control, new QGroupBox, context), control_(control) {}

 protected:
  void ShowOwnState() override {
    static_cast<QGroupBox*>(Widget())->setTitle(OneLine(control_.Caption()));
  }

 private:
  Frame& control_;
};

class TabPeer : public QtControlPeer {
 public:
  TabPeer(TabControl& control, const std::vector<QWidget*>& pages, const PeerContext& context)
      : QtControlPeer(control, new QTabWidget, context), control_(control) {
    for (size_t i = 0; i < pages.size(); ++i) {
      Tabs()->addTab(pages[i], OneLine(control.pages[i].caption));
    }
    QObject::connect(Tabs(), &QTabWidget::currentChanged, Lifetime(),
                     [this](int tab) { Raise(Context(), [&] { control_.Click(tab); }); });
  }

 protected:
  void ShowOwnState() override {
    const QSignalBlocker silent(Tabs());
    Tabs()->setCurrentIndex(control_.Tab());
  }

 private:
  QTabWidget* Tabs() const { return static_cast<QTabWidget*>(Widget()); }

  TabControl& control_;
};

}  // namespace

PeerPtr MakeQtPeer(CommandButton& control, const PeerContext& context) {
  return std::make_unique<ButtonPeer>(control, context);
}

PeerPtr MakeQtPeer(CheckBox& control, const PeerContext& context) {
  return std::make_unique<CheckBoxPeer>(control, context);
}

PeerPtr MakeQtPeer(ProgressBar& control, const PeerContext& context) {
  return std::make_unique<ProgressPeer>(control, context);
}

PeerPtr MakeQtPeer(ListBox& control, const PeerContext& context) {
  return std::make_unique<ListBoxPeer>(control, context);
}

PeerPtr MakeQtPeer(Frame& control, const PeerContext& context) {
  return std::make_unique<FramePeer>(control, context);
}

PeerPtr MakeQtPeer(TabControl& control, const std::vector<QWidget*>& pages,
                   const PeerContext& context) {
  return std::make_unique<TabPeer>(control, pages, context);
}

}  // namespace vesko
