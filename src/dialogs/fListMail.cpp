#include "dialogs/fListMail.h"

#include <memory>
#include <string_view>
#include <utility>

#include "base/RunTimeError.h"
#include "message/mmFile.h"
#include "ui/mVeskoMain.h"
#include "ui/mmWinDefs.h"

namespace vesko {
namespace {

constexpr int kWidth = 900;  // enough for all columns
constexpr int kHeight = 560;

enum ButtonIndex { kConfigSpam, kDeleteSpam, kOpenEmailClient, kExit };

enum MenuIndex {
  kSetSpam = 0,
  kSetOrdinary = 1,
  kSetRead = 3,
  kSetNew = 4,
  kSelectAll = 6,
  kInvertSelection = 7,
};

struct Shortcut {
  int key_code;
  int menu_index;
};
constexpr Shortcut kShortcuts[] = {{'S', kSetSpam}, {'O', kSetOrdinary}, {'R', kSetRead},
                                   {'N', kSetNew},  {'A', kSelectAll},   {'I', kInvertSelection}};

/// What a menu command does to the flag of a message.
struct Mark {
  int menu_index;
  bool cMessage::*flag;
  bool value;
};
constexpr Mark kMarks[] = {{kSetSpam, &cMessage::Spam, true},
                           {kSetOrdinary, &cMessage::Spam, false},
                           {kSetRead, &cMessage::Read, true},
                           {kSetNew, &cMessage::Read, false}};

struct MessageColumn {
  TextView header;
  CompactText cMessage::*text;
  int width = ListView::kDefaultColumnWidth;
};
constexpr MessageColumn kColumns[] = {{u"From", &cMessage::From, 150},
                                      {u"Subject", &cMessage::Subject, 200},
                                      {u"Date", &cMessage::SendDate, 110},
                                      {u"POP3 Server", &cMessage::Server, 100},
                                      {u"To", &cMessage::MessageTo},
                                      {u"Cc", &cMessage::CC},
                                      {u"Bcc", &cMessage::BCC}};

}  // namespace

fListMail::fListMail(Toolkit& toolkit, const Services& services, SharedData& data,
                     fConfig& config_window, fCheckMail& check_window)
    : Form("fListMail", toolkit),
      locale_(services.locale),
      configuration_(data.configuration),
      mails_(data.mails),
      shell_(services.shell),
      config_window_(config_window),
      check_window_(check_window),
      font_name_(data.font_name) {
  SetCaption(u"New Messages");
  Resize(kWidth, kHeight);
  SetResizable(true);
  SetUp();
  SetUpMenu();
  Arrange();
}

fListMail::~fListMail() { TakeDown(); }

void fListMail::SetUp() {
  LV1.SetAccessibleName(u"Messages");
  LV1.cell = [this](int item, int column) {
    return *listed_[static_cast<size_t>(item)].*kColumns[column].text;
  };
  LV1.state = [this](int item) { return StateOf(*listed_[static_cast<size_t>(item)]); };
  LV1.on_column_click = [this](int column) { SortByColumn(LV1, column); };
  LV1.on_item_click = [this](int row) { ItemClicked(row); };
  LV1.on_key_down = [this](int key, int modifiers) { return KeyDown(key, modifiers); };
  LV1.on_mouse_down = [this](int buttons, int row) { MouseDown(buttons, row); };
  txtBody.SetMultiLine(true);
  txtBody.SetReadOnly(true);
  txtBody.SetAccessibleName(u"Message text");
  cmdMail[kConfigSpam].SetCaption(u"&Config SPAM");
  cmdMail[kConfigSpam].on_click = [this] { ConfigSpam(); };
  cmdMail[kDeleteSpam].SetCaption(u"&Delete SPAM");
  cmdMail[kDeleteSpam].on_click = [this] { DeleteSpam(); };
  cmdMail[kOpenEmailClient].SetCaption(u"&Open Email Client");
  cmdMail[kOpenEmailClient].on_click = [this] { OpenEmailClient(); };
  cmdMail[kExit].SetCaption(u"&Exit");
  cmdMail[kExit].on_click = [this] { Unload(); };
  SetCancelButton(cmdMail[kExit]);
}

void fListMail::SetUpMenu() {
  mnuMail.items = {{u"Set &SPAM", u"Ctrl+S"},   {u"Set &Ordinary", u"Ctrl+O"},    {u"-", u""},
                   {u"Set Read", u"Ctrl+R"},    {u"Set New", u"Ctrl+N"},          {u"-", u""},
                   {u"Select &All", u"Ctrl+A"}, {u"&Invert Selection", u"Ctrl+I"}};
  mnuMail.on_click = [this](int index) { RunMenuCommand(index); };
}

void fListMail::Arrange() {
  std::vector<Layout> buttons{Space()};
  for (CommandButton& button : cmdMail) buttons.push_back(Item(button));
  SetLayout(Column({Item(LV1, 2), Item(txtBody, 1), Row(std::move(buttons))}));
}

void fListMail::AddColumns() {
  LV1.ClearColumns();
  for (const MessageColumn& column : kColumns) LV1.AddColumn(Text(column.header), column.width);
}

void fListMail::OnLoad() {
  CentreForm(*this, GetToolkit());
  LV1.SetUnsorted();
  AddColumns();
  txtBody.SetText({});
  RefreshAll();
  SetFirstInTabOrder(cmdMail[kConfigSpam]);
  cmdMail[kOpenEmailClient].SetEnabled(EmailClientExists());
  ApplyFont(*this, GetToolkit(), font_name_);
}

void fListMail::OnUnload() {
  mails_.ClearDeletionMarks();
  LV1.SetCount(0);
  listed_.clear();
}

void fListMail::ApplySpamFilter() {
  mails_.ApplySpamFilter(configuration_.SpamSenders, configuration_.SpamSubjects, locale_);
}

void fListMail::FillList() {
  listed_ = mails_.All();
  LV1.SetCount(static_cast<int>(listed_.size()));
  // A sorted list stays sorted when it is filled again.
  if (LV1.Sorted()) LV1.Sort(LV1.SortKey(), LV1.SortDescending(), locale_);
  if (LV1.Count() > 0) return LV1.ClickRow(0);
  txtBody.SetText({});
}

void fListMail::UpdateStatus() {
  const MailCounts counts = mails_.Counts();
  SetCaption(StatusText(counts));
  cmdMail[kDeleteSpam].SetEnabled(counts.spam > 0);
}

void fListMail::RefreshAll() {
  IgnoreErrors([&] { ApplySpamFilter(); });
  IgnoreErrors([&] { FillList(); });
  IgnoreErrors([&] { UpdateStatus(); });
}

void fListMail::SortByColumn(ListView& list, int column) {
  list.SetVisible(false);
  IgnoreErrors([&] { list.Sort(column - 1, !list.SortDescending(), locale_); });
  list.SetVisible(true);
}

colMails::Message fListMail::MessageOf(int row) const {
  if (row < 0) return nullptr;
  const cMessage& message = *listed_[static_cast<size_t>(LV1.ItemAt(row))];
  return mails_.Find(colMails::Key(message.Server, message.MessageID));
}

void fListMail::ItemClicked(int row) {
  if (const colMails::Message message = MessageOf(row)) {
    txtBody.SetText(message->MessageBody);
    message->Read = true;
    LV1.ItemsChanged();
  }
  IgnoreErrors([&] { UpdateStatus(); });
}

bool fListMail::KeyDown(int key_code, int modifiers) {
  if (!(modifiers & kControl)) return false;
  for (const Shortcut& shortcut : kShortcuts) {
    if (shortcut.key_code != key_code) continue;
    RunMenuCommand(shortcut.menu_index);
    return true;
  }
  return false;
}

void fListMail::MouseDown(int buttons, int row) {
  if (!(buttons & kRightButton) || row < 0) return;
  if (!LV1.Selected(row)) {
    LV1.SelectNone();
    LV1.SetSelected(row, true);
  }
  GetToolkit().ShowPopup(*this, mnuMail);
}

void fListMail::RunMenuCommand(int index) {
  if (index == kSelectAll) LV1.SelectAll();
  if (index == kInvertSelection) LV1.InvertSelection();
  for (const Mark& mark : kMarks) {
    if (mark.menu_index == index) MarkSelected(mark.flag, mark.value);
  }
  IgnoreErrors([&] { UpdateStatus(); });
}

void fListMail::MarkSelected(bool cMessage::*flag, bool value) {
  for (int row = 0; row < LV1.Count(); ++row) {
    if (!LV1.Selected(row)) continue;
    if (const colMails::Message message = MessageOf(row)) (*message).*flag = value;
  }
  LV1.ItemsChanged();
}

void fListMail::ConfigSpam() {
  config_window_.SelectPage(kSpamPage);
  config_window_.ShowModal();
  if (!config_window_.Canceled() && IsLoaded()) RefreshAll();
}

void fListMail::DeleteSpam() {
  mails_.MarkSpamForDeletion();
  check_window_.Prepare();
  check_window_.ShowModal();
  if (IsLoaded()) RefreshAll();
}

void fListMail::OpenEmailClient() {
  if (!EmailClientExists()) return;
  IgnoreErrors([&] { shell_.Start(configuration_.DefaultEmailClient); });
}

bool fListMail::EmailClientExists() const {
  return FileExists(shell_, configuration_.DefaultEmailClient);
}

}  // namespace vesko
