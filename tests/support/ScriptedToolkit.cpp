#include "support/ScriptedToolkit.h"

#include <gtest/gtest.h>

#include <utility>

namespace vesko {
namespace {

class NotingControlPeer : public ControlPeer {
 public:
  NotingControlPeer(Control& control, ScriptedToolkit& toolkit)
      : control_(control), toolkit_(toolkit) {
    control_.SetPeer(this);
  }
  ~NotingControlPeer() override { control_.SetPeer(nullptr); }

  void StateChanged() override {}
  void Refresh() override {}
  void TakeFocus() override {
    if (control_.Enabled()) toolkit_.focus = control_.Name();
  }

 private:
  Control& control_;
  ScriptedToolkit& toolkit_;
};

void Collect(const Layout& layout, std::vector<Control*>& controls) {
  if (layout.control) {
    controls.push_back(layout.control);
    for (const Layout* content : layout.control->Contents()) Collect(*content, controls);
  }
  for (const Layout& item : layout.items) Collect(item, controls);
}

}  // namespace

class ScriptedToolkit::Peer : public FormPeer {
 public:
  Peer(Form& form, ScriptedToolkit& toolkit) : form_(form), toolkit_(toolkit) {
    toolkit_.realised_.insert(&form_);
    for (Control* control : form_.Controls()) {
      controls_.push_back(std::make_unique<NotingControlPeer>(*control, toolkit_));
    }
  }
  ~Peer() override {
    Note("destroy ");
    toolkit_.realised_.erase(&form_);
  }

  void FitToContent() override { Note("fit "); }
  void Show() override {
    Note("show ");
    toolkit_.shown.push_back(form_.Name());
  }
  void Hide() override { Note("hide "); }
  void StateChanged() override {}

 private:
  void Note(const std::string& call) { toolkit_.calls.push_back(call + form_.Name()); }

  Form& form_;
  ScriptedToolkit& toolkit_;
  std::vector<std::unique_ptr<NotingControlPeer>> controls_;
};

ScriptedToolkit::~ScriptedToolkit() {
  for (const auto& [form, drivers] : drivers_) {
    EXPECT_TRUE(drivers.empty()) << form << " was to be shown " << drivers.size() << " times more";
  }
}

void ScriptedToolkit::Answer(const Text& caption, const Text& expected) {
  On("QuestionBox", [caption, expected](Form& form) {
    EXPECT_EQ(Find<Label>(form, "lblMessage").Caption(), expected);
    for (Control* control : form.Controls()) {
      auto* button = dynamic_cast<CommandButton*>(control);
      if (button && !caption.empty() && button->Caption() == caption) return button->Click();
    }
    form.Close();
  });
}

void ScriptedToolkit::Input(const Text& text, const Text& expected) {
  On("InputBox", [text, expected](Form& form) {
    EXPECT_EQ(Find<Label>(form, "lblPrompt").Caption(), expected);
    Type(form, "txtAnswer", text);
    Press(form, "cmdOK");
  });
}

std::unique_ptr<FormPeer> ScriptedToolkit::Realise(Form& form) {
  return std::make_unique<Peer>(form, *this);
}

void ScriptedToolkit::RunModal(Form& form) {
  const std::string name = form.Name();
  std::deque<Driver>& waiting = drivers_[name];
  if (waiting.empty()) {
    ADD_FAILURE() << "nobody expected " << name;
  } else {
    const Driver driver = std::move(waiting.front());
    waiting.pop_front();
    driver(form);
  }
  if (!realised_.contains(&form) || !form.IsLoaded()) return;
  ADD_FAILURE() << "nobody unloaded " << name;
  form.Unload();
}

void ScriptedToolkit::ShowMessage(const Text& text, const Text& title, MessageIcon icon) {
  messages.push_back({text, title, icon});
}

Text ScriptedToolkit::OpenFile(const Text& title, const Text& filter,
                               const Text& default_extension) {
  picked.push_back(title + u"/" + filter + u"/" + default_extension);
  if (files.empty()) return {};
  Text file = std::move(files.front());
  files.pop_front();
  return file;
}

void ScriptedToolkit::ShowPopup(Form&, PopupMenu& menu) {
  if (on_popup) on_popup(menu);
}

std::vector<Control*> LaidOut(const Layout& layout) {
  std::vector<Control*> controls;
  Collect(layout, controls);
  return controls;
}

}  // namespace vesko
