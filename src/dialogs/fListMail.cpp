#include "dialogs/fListMail.h"

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "base/RunTimeError.h"
#include "message/mmFile.h"
#include "ui/mVeskoMain.h"
#include "ui/mmWinDefs.h"

namespace vesko {
namespace {

constexpr int kWidth = 900;  // all columns fit
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

/// What a menu command does to a message's flag and to the images of the rows that show it. A row
/// with another image keeps it.
struct Mark {
  int menu_index;
  bool cMessage::*flag;
  bool value;
  std::array<std::pair<std::string_view, const char*>, 2> images;
};
constexpr Mark kMarks[] = {
    {kSetSpam, &cMessage::Spam, true, {{{"Mail", "Spam"}, {"MailRead", "SpamRead"}}}},
    {kSetOrdinary, &cMessage::Spam, false, {{{"Spam", "Mail"}, {"SpamRead", "MailRead"}}}},
    {kSetRead, &cMessage::Read, true, {{{"Mail", "MailRead"}, {"Spam", "SpamRead"}}}},
    {kSetNew, &cMessage::Read, false, {{{"MailRead", "Mail"}, {"SpamRead", "Spam"}}}},
};

const Mark* FindMark(int menu_index) {
  for (const Mark& mark : kMarks) {
    if (mark.menu_index == menu_index) return &mark;
  }
  return nullptr;
}

/// True when the image has changed.
bool ChangeImage(ListView& list, int row, const Mark& mark) {
  for (const auto& [from, to] : mark.images) {
    if (list.RowAt(row).image != from) continue;
    list.SetImage(row, to);
    return true;
  }
  return false;
}

ListView::Row RowFor(const cMessage& message) {
  ListView::Row row;
  row.key = colMails::Key(message.Server, message.MessageID);
  row.cells = {message.From,      message.Subject, message.SendDate, message.Server,
               message.MessageTo, message.CC,      message.BCC};
  row.image = StateName(message);
  return row;
}

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
  Add(LV1);
  Add(txtBody);
  std::vector<Layout> buttons{Space()};
  for (CommandButton& button : cmdMail) {
    Add(button);
    buttons.push_back(Item(button));
  }
  SetLayout(Column({Item(LV1, 2), Item(txtBody, 1), Row(std::move(buttons))}));
}

void fListMail::AddColumns() {
  LV1.ClearColumns();
  LV1.AddColumn(u"From", 150);
  LV1.AddColumn(u"Subject", 200);
  LV1.AddColumn(u"Date", 110);
  LV1.AddColumn(u"POP3 Server", 100);
  LV1.AddColumn(u"To");
  LV1.AddColumn(u"Cc");
  LV1.AddColumn(u"Bcc");
}

void fListMail::OnLoad() {
  CentreForm(*this, GetToolkit());
  LV1.SetUnsorted();
  AddColumns();
  txtBody.SetText({});
  current_row_ = -1;
  RefreshAll();
  SetFirstInTabOrder(cmdMail[kConfigSpam]);
  cmdMail[kOpenEmailClient].SetEnabled(EmailClientExists());
  ApplyFont(*this, GetToolkit(), font_name_);
}

void fListMail::OnUnload() {
  mails_.ClearDeletionMarks();
  LV1.ClearRows();
  current_message_.reset();
}

void fListMail::ApplySpamFilter() {
  mails_.ApplySpamFilter(configuration_.SpamSenders, configuration_.SpamSubjects, locale_);
}

void fListMail::FillList() {
  LV1.ClearRows();
  LV1.ReserveRows(mails_.Count());
  mails_.ForEach([&](const cMessage& message) {
    LV1.AddRow(RowFor(message));
    return true;
  });
  // A list that is being sorted keeps its order when its rows come anew.
  if (LV1.Sorted()) LV1.Sort(LV1.SortKey(), LV1.SortDescending(), locale_);
  if (LV1.Count() > 0) return LV1.ClickRow(0);
  current_message_.reset();
  txtBody.SetText({});
}

void fListMail::UpdateStatus() {
  const MailCounts counts = mails_.Counts();
  SetCaption(StatusText(counts, locale_));
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
  return row < 0 ? nullptr : mails_.Find(LV1.RowAt(row).key);
}

void fListMail::ItemClicked(int row) {
  current_message_ = MessageOf(row);
  if (current_message_) txtBody.SetText(current_message_->MessageBody);
  const bool was_unread = ChangeImage(LV1, row, *FindMark(kSetRead));
  if (was_unread && current_message_) current_message_->Read = true;
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
  current_row_ = row;
  current_message_ = MessageOf(row);
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
  if (FindMark(index)) MarkSelected(index);
  IgnoreErrors([&] { UpdateStatus(); });
}

void fListMail::MarkSelected(int index) {
  const Mark& mark = *FindMark(index);
  for (int row = 0; row < LV1.Count(); ++row) {
    if (!LV1.Selected(row)) continue;
    ChangeImage(LV1, row, mark);
    if (const colMails::Message message = MessageOf(row)) (*message).*mark.flag = mark.value;
  }
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
