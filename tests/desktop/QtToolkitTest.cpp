#include <QAccessible>
#include <QClipboard>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFont>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <chrono>
#include <ctime>

#include "base/RunTimeError.h"
#include "desktop/QtWindows.h"
#include "desktop/linux/LinuxDesktop.h"

namespace vesko {
namespace {

using std::chrono::milliseconds;

struct Counter : QObject {
  int paints = 0;
  bool eventFilter(QObject*, QEvent* event) override {
    paints += event->type() == QEvent::Paint;
    return false;
  }
};

class QtToolkitTest : public QtWindowTest {};

TEST_F(QtToolkitTest, WhatTheUserDoesReachesTheControls) {
  CommandButton button(form, "cmd");
  CheckBox box(form, "chk");
  TextBox text(form, "txt");
  ListBox list(form, "lst");
  TabControl tabs(form, "tab");
  tabs.pages = {{u"One", Column({})}, {u"Two", Column({})}};
  list.AddItem(u"a");
  list.AddItem(u"b");
  std::string log;
  button.on_click = [&] {
    log += "button ";
    throw RunTimeError(kTypeMismatch);  // ends the event and nothing else
  };
  box.on_click = [&] { log += "box "; };
  text.on_change = [&] { log += "text "; };
  list.on_click = [&] { log += "list "; };
  WhileShown(form, [&] {
    QTest::mouseClick(Native(button), Qt::LeftButton);
    QTest::keyClick(Native(box), Qt::Key_Space);
    QTest::keyClicks(Native(text), "ab");
    Native(list)->setFocus();  // only looking at a list selects nothing
    EXPECT_EQ(log, "button box text text ");
    QTest::keyClick(Native(list), Qt::Key_Down);
    list.AddItem(u"c");
    list.RemoveItem(0);
    Settle();
    EXPECT_EQ(Native<QListWidget>(list)->currentItem()->text(), "b");
    Native<QTabWidget>(tabs)->tabBar()->setCurrentIndex(1);
    button.SetEnabled(false);
    QTest::mouseClick(Native(button), Qt::LeftButton);  // not shown disabled yet, but it is
    log += std::to_string(box.Value()) + std::to_string(list.ListIndex());
  });
  EXPECT_EQ(log, "button box text text list 10");
  EXPECT_EQ(text.GetText(), u"ab");
  EXPECT_EQ(tabs.Tab(), 1);
}

TEST_F(QtToolkitTest, ABusyCheckIsShownNowAndThenButRefreshAtOnce) {
  Label label(form, "lbl");
  label.SetLiteral(true);
  WhileShown(form, [&] {
    Counter counter;
    Native(label)->installEventFilter(&counter);
    QElapsedTimer time;
    time.start();
    for (int i = 0; i < 3000; ++i) {
      label.SetCaption(Decimal(i));
      toolkit->GetPump().RunPending(milliseconds(0));
    }
    EXPECT_LE(counter.paints, time.elapsed() / 25 + 2);
    Settle();
    label.SetCaption(u"now");
    EXPECT_EQ(Native<QLabel>(label)->text(), "2999");
    counter.paints = 0;
    label.Refresh();
    EXPECT_EQ(Native<QLabel>(label)->text(), "now");
    EXPECT_EQ(counter.paints, 1);
  });
}

TEST_F(QtToolkitTest, APasswordCannotBeReadOutOfItsBox) {
  TextBox box(form, "txt");
  box.SetPassword(true);
  WhileShown(form, [&] {
    auto* const edit = Native<QLineEdit>(box);
    QApplication::clipboard()->setText("before");
    box.SetText(u"sec");
    Settle();
    QTest::keyClicks(edit, "ret");
    EXPECT_EQ(edit->displayText(), "******");
    edit->selectAll();
    QTest::keySequence(edit, QKeySequence::Copy);
    auto* const accessible = QAccessible::queryAccessibleInterface(edit);
    EXPECT_EQ(accessible->text(QAccessible::Value).count("secret"), 0);
    EXPECT_EQ(accessible->textInterface()->text(0, 6).count("secret"), 0);
    EXPECT_EQ(box.GetText(), u"secret");
    QTest::keySequence(edit, QKeySequence::Cut);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
  });
}

TEST_F(QtToolkitTest, ABoxOfOneLineTakesOneLineByOtherWaysAsWell) {
  TextBox box(form, "txt");
  WhileShown(form, [&] {
    auto* const edit = Native<QLineEdit>(box);
    QInputMethodEvent typed;
    typed.setCommitString("a\nb");
    QApplication::sendEvent(edit, &typed);
    EXPECT_EQ(box.GetText(), u"a");
    auto* const accessible = QAccessible::queryAccessibleInterface(edit);
    accessible->editableTextInterface()->insertText(1, "c\u2028d");
    Settle();
    edit->setCursorPosition(1);
    QApplication::clipboard()->setText("b\nx");
    QTest::keySequence(edit, QKeySequence::Paste);
    QTest::keyClicks(edit, "!");
    EXPECT_EQ(box.GetText(), u"ab!c") << "the cursor follows what was pasted";
  });
}

TEST_F(QtToolkitTest, TextFromServersIsNeverMarkup) {
  Label literal(form, "lblLiteral"), wrapping(form, "lblWrapping"), plain(form, "lblPlain");
  const Text evil = u"<b>&bold</b><img src='http://tracker.example'>" + Text(3000, u'x');
  for (Label* label : {&literal, &wrapping}) {
    label->SetLiteral(true);
    label->SetCaption(evil);
  }
  wrapping.SetWraps(true);
  plain.SetCaption(u"Q&&A &Name");
  plain.SetTooltip(u"<b>tip</b>");
  WhileShown(form, [&] {
    for (const Label* label : {&literal, &wrapping}) {
      EXPECT_EQ(Native<QLabel>(*label)->textFormat(), Qt::PlainText);
      EXPECT_TRUE(Native<QLabel>(*label)->text().startsWith("<b>&bold</b>"));
    }
    EXPECT_LT(WindowOf(literal)->width(), 700);
    EXPECT_EQ(Native<QLabel>(plain)->text(), "Q&A Name");
    EXPECT_TRUE(Native(plain)->toolTip().contains("&lt;b&gt;"));
    form.SetCaption(u"two\r\nlines");
    Soon([&] {
      auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      EXPECT_EQ(box->textFormat(), Qt::PlainText);
      EXPECT_EQ(box->windowTitle(), "VeskoEx");
      EXPECT_LT(box->width(), 800);
      EXPECT_EQ(WindowOf(literal)->windowTitle(), "two  lines");
      box->accept();
    });
    toolkit->ShowMessage(evil, {}, MessageIcon::kExclamation);
  });
}

TEST_F(QtToolkitTest, EnterEscapeAndClosing) {
  const struct {
    bool has_default, has_cancel, focus_on_other;
    int key;  // 0: the window manager closes
    std::string expected;
  } cases[] = {{true, true, false, Qt::Key_Return, "default "},
               {true, true, true, Qt::Key_Return, "other "},
               {false, true, true, Qt::Key_Enter, "other "},
               {true, true, true, Qt::Key_Escape, "cancel "},
               {true, false, false, Qt::Key_Escape, "closed "},
               {true, true, false, 0, "closed "}};
  for (const auto& test : cases) {
    SCOPED_TRACE(&test - cases);
    AnyForm sample(*toolkit);
    TextBox box(sample, "txt");
    CommandButton other(sample, "cmdOther"), ok(sample, "cmdOk"), cancel(sample, "cmdCancel");
    std::string log;
    other.on_click = [&] { log += "other "; };
    ok.on_click = [&] { log += "default "; };
    cancel.on_click = [&] { log += "cancel "; };
    if (test.has_default) sample.SetDefaultButton(ok);
    if (test.has_cancel) sample.SetCancelButton(cancel);
    WhileShown(sample, [&] {
      EXPECT_TRUE(Native(box)->hasFocus());
      if (test.focus_on_other) other.SetFocus();
      QWidget* const window = WindowOf(box);
      test.key ? QTest::keyClick(window->focusWidget(), Qt::Key(test.key)) : void(window->close());
    });
    if (sample.closed) log += "closed ";
    EXPECT_EQ(log, test.expected);
  }
}

TEST_F(QtToolkitTest, ATextBoxGetsItsKeysFirst) {
  TextBox box(form, "txt");
  CommandButton ok(form, "cmdOk");
  std::string log;
  bool use_up = true;
  box.on_key_down = [&](int key) {
    log += std::to_string(key) + " ";
    return use_up;
  };
  ok.on_click = [&] { log += "ok "; };
  form.SetDefaultButton(ok);
  WhileShown(form, [&] {
    QTest::keyClick(Native(box), Qt::Key_Return);
    QTest::keyClick(Native(box), Qt::Key_A);
    EXPECT_EQ(box.GetText(), u"");
    use_up = false;
    QTest::keyClick(Native(box), Qt::Key_Enter);
  });
  EXPECT_EQ(log, "13 65 13 ok ");
}

TEST_F(QtToolkitTest, LabelsLeadToAndNameWhatStandsBehindThem) {
  Label keywords(form, "lblKeywords");
  ListBox list(form, "lst");
  CommandButton button(form, "cmd");
  Label name(form, "lblName");
  TextBox box(form, "txt"), other(form, "txtOther");
  name.SetCaption(u"&Name");
  keywords.SetCaption(u"&Keywords");
  button.SetCaption(u"&Rename");
  other.SetAccessibleName(u"Port");
  form.SetFirstInTabOrder(other);
  WhileShown(form, [&] {
    EXPECT_TRUE(Native(other)->hasFocus());
    QTest::keyClick(WindowOf(box), Qt::Key_K, Qt::AltModifier);
    EXPECT_TRUE(Native(list)->hasFocus());
    QTest::keyClick(WindowOf(box), Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(Native(box)->hasFocus());
    form.SetFirstInTabOrder(list);
    Settle();
    std::string order;
    list.SetFocus();
    for (int i = 0; i < 4; ++i) {
      QWidget* const focus = WindowOf(box)->focusWidget();
      order += focus->objectName().toStdString() + " ";
      QTest::keyClick(focus, Qt::Key_Tab);
    }
    EXPECT_EQ(order, "lst cmd txt txtOther ");
    QStringList names;
    for (const Control* control : std::initializer_list<Control*>{&box, &other, &list, &button}) {
      names += QAccessible::queryAccessibleInterface(Native(*control))->text(QAccessible::Name);
    }
    EXPECT_EQ(names, (QStringList{"Name", "Port", "Keywords", "Rename"}));
  });
}

TEST_F(QtToolkitTest, AHugeBodyIsShownInPartAndKeptWhole) {
  TextBox body(form, "txt");
  body.SetMultiLine(true);
  const Text huge = Text(u"first\r\nNUL\0 and bell\u0007", 21) + Text(25'000'000, u'x');
  WhileShown(form, [&] {
    auto* const edit = Native<QPlainTextEdit>(body);
    body.SetText(huge);
    Settle();
    EXPECT_TRUE(edit->toPlainText().startsWith("first\nNUL  and bell "));
    EXPECT_LT(edit->toPlainText().size(), 1'000'000);
    EXPECT_EQ(body.GetText().size(), huge.size());
    body.SetText(u"short\r\n");
    Settle();
    edit->moveCursor(QTextCursor::End);
    QTest::keyClicks(edit, "x\r");
  });
  EXPECT_EQ(body.GetText(), u"short\r\nx\r\n");
}

TEST_F(QtToolkitTest, WindowsNestAndBlockTheOnesBelow) {
  AnyForm outer(*toolkit), inner(*toolkit);
  CommandButton below(outer, "cmdBelow"), above(inner, "cmdAbove");
  below.on_click = [&] { inner.Open(); };
  above.on_click = [&] {
    Soon([&] {
      QWidget* const box = QApplication::activeModalWidget();
      EXPECT_EQ(box->parentWidget(), WindowOf(above));
      below.SetCaption(u"shown while a box is open");
      QEventLoop box_loop;
      QTimer::singleShot(60, &box_loop, &QEventLoop::quit);
      box_loop.exec();
      EXPECT_EQ(Native<QPushButton>(below)->text(), "shown while a box is open");
      qobject_cast<QDialog*>(box)->reject();
    });
    toolkit->ShowMessage(u"text", u"title", MessageIcon::kInformation);
    inner.Unload();
  };
  Soon([&] {
    Soon([&] {
      EXPECT_EQ(WindowOf(above)->parentWidget(), WindowOf(below));
      EXPECT_EQ(QApplication::activeModalWidget(), WindowOf(above));
      below.Refresh();
      QTest::mouseClick(Native(above), Qt::LeftButton);
      Soon([&] { outer.Unload(); });
    });
    QTest::mouseClick(Native(below), Qt::LeftButton);
  });
  outer.Open();
  EXPECT_FALSE(outer.IsLoaded());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(QtToolkitTest, AWindowMayGoInTheMiddleOfItsOwnEvent) {
  struct Owner : AnyForm {
    using AnyForm::AnyForm;
    ~Owner() override { TakeDown(); }
    TextBox box{*this, "txt"};
    CommandButton button{*this, "cmd"};
  };
  for (const bool while_another_is_above : {false, true}) {
    auto owner = std::make_unique<Owner>(*toolkit);
    owner->button.on_click = [&] {
      if (!while_another_is_above) return owner.reset();
      AnyForm inner(*toolkit);
      CommandButton above(inner, "cmdAbove");
      Soon([&] {
        owner.reset();
        EXPECT_TRUE(Native(above)->isVisible());
        Soon([&] { inner.Unload(); });
      });
      inner.Open();
    };
    owner->box.on_change = [&] { QTest::mouseClick(Native(owner->button), Qt::LeftButton); };
    Soon([&] { QTest::keyClick(Native(owner->box), Qt::Key_A); });
    owner->Open();
    EXPECT_EQ(owner, nullptr);
    Settle();
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
  }
}

TEST_F(QtToolkitTest, ThePumpSleepsWithoutProcessorTimeAndWakesForAnything) {
  Pump& pump = toolkit->GetPump();
  for (int i = 0; i < 5; ++i) pump.RunPending(milliseconds(0));
  QElapsedTimer time;
  time.start();
  const std::clock_t worked = std::clock();
  while (time.elapsed() < 300) pump.RunPending(milliseconds(300));
  EXPECT_LT(static_cast<double>(std::clock() - worked) / CLOCKS_PER_SEC, 0.05);
  bool queued = false, timed = false;
  QMetaObject::invokeMethod(
      qApp, [&] { queued = true; }, Qt::QueuedConnection);
  while (!queued) pump.RunPending(milliseconds(10'000));
  QTimer::singleShot(20, qApp, [&] { timed = true; });
  while (!timed) pump.RunPending(milliseconds(10'000));
  EXPECT_LT(time.elapsed(), 3000);
}

TEST_F(QtToolkitTest, FilesArePickedByFilterAndExtension) {
  const QTemporaryDir folder;
  QFile(folder.filePath("ding.wav")).open(QIODevice::WriteOnly);
  for (const char* typed : {"ding.wav", "ding", ""}) {
    Soon([&, typed] {
      auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      EXPECT_EQ(dialog->nameFilters(), (QStringList{"All Files (*)", "Wave Files (*.wav *.au)"}));
      dialog->setDirectory(folder.path());
      if (!*typed) return dialog->reject();
      dialog->findChild<QLineEdit*>()->setText(typed);
      QMetaObject::invokeMethod(dialog, "accept");
    });
    const Text path =
        toolkit->OpenFile(u"", u"All Files (*.*)|*.*|Wave Files (*.wav)|*.wav;*.au", u"wav");
    EXPECT_EQ(QString::fromStdU16String(path), *typed ? folder.filePath("ding.wav") : QString());
  }
}

TEST_F(QtToolkitTest, NothingIsCutOffAtAnyFontSize) {
  const QFont desktop = QApplication::font();
  for (const double size : {8.0, 12.0, 24.0, 60.0}) {
    SCOPED_TRACE(size);
    QFont font = desktop;
    font.setPointSizeF(size);
    QApplication::setFont(font);
    AnyForm sample(*toolkit);
    TabControl tabs(sample, "tab");
    ControlArray<CommandButton, 3> buttons(sample, "cmd");
    for (CommandButton& button : buttons) button.SetCaption(u"Open Email Client");
    tabs.pages = {{u"Two", Row({Item(buttons[0]), Item(buttons[1]), Item(buttons[2])})}};
    sample.SetLayout(Item(tabs));
    sample.Resize(100, 50);
    WhileShown(sample, [&] {
      for (const CommandButton& button : buttons) {
        EXPECT_GE(Native(button)->width(), Native(button)->minimumSizeHint().width());
      }
      const auto* const scroll = WindowOf(tabs)->findChild<QScrollArea*>();
      EXPECT_LE(sample.Width(), toolkit->Screen().width);
      EXPECT_EQ(scroll->horizontalScrollBar()->maximum() > 0,
                sample.Width() == toolkit->Screen().width);
    });
  }
  QApplication::setFont(desktop);
}

TEST_F(QtToolkitTest, TextThatWrapsLeavesRoomForTheButtons) {
  for (const size_t length : {10, 300, 330, 1000}) {
    SCOPED_TRACE(length);
    AnyForm sample(*toolkit);
    Label label(sample, "lbl");
    CommandButton button(sample, "cmd");
    label.SetLiteral(true);
    label.SetWraps(true);
    label.SetCaption(u"Failed on '" + Text(length, u'x') + u"' and so on.\r\nTry again ?");
    WhileShown(sample, [&] {
      const QWidget* const window = WindowOf(button);
      EXPECT_FALSE(window->findChild<QScrollArea*>()->verticalScrollBar()->isVisible());
      EXPECT_GE(Native(label)->height(), Native(label)->heightForWidth(Native(label)->width()));
    });
  }
}

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  application.setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
