#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/Toolkit.h"

namespace vesko {

/// A desktop without a display. Modal windows are driven by scripts, one for each showing in the
/// order given; a window that nobody drives or unloads fails the test and is unloaded. At its end
/// it fails the test where a script was left over.
class ScriptedToolkit : public Toolkit {
 public:
  using Driver = std::function<void(Form&)>;

  struct Message {
    Text text, title;
    MessageIcon icon;
    friend bool operator==(const Message&, const Message&) = default;
  };

  /// With a pump of the test's own; without, nothing is ever pending.
  explicit ScriptedToolkit(Pump* pump = nullptr) : pump_(pump ? *pump : idle_pump_) {}
  ~ScriptedToolkit() override;

  /// What the user does at the next showing of a window of this name that has no script yet.
  void On(const std::string& form, Driver driver) { drivers_[form].push_back(std::move(driver)); }

  /// The user presses the button of this caption in the next question box, or closes the box when
  /// the caption is empty. The box must ask just what is expected.
  void Answer(const Text& caption, const Text& expected);

  /// The user types into the next input box and presses OK. The box must ask just what is expected.
  void Input(const Text& text, const Text& expected);

  std::vector<std::string> shown;  // names of windows, in order
  std::vector<Message> messages;
  std::deque<Text> files;    // what the user picks next; none: nothing
  std::vector<Text> picked;  // what files were asked for: "title/filter/extension"
  std::function<void(PopupMenu&)> on_popup;
  std::string focus;               // name of the control that was given the focus last
  std::vector<std::string> calls;  // of the windows' native sides, "show fConfig"
  Rect screen{0, 0, 1920, 1080};

  Pump& GetPump() override { return pump_; }
  std::unique_ptr<FormPeer> Realise(Form& form) override;
  void RunModal(Form& form) override;
  void ShowMessage(const Text& text, const Text& title, MessageIcon icon) override;
  Text OpenFile(const Text& title, const Text& filter, const Text& default_extension) override;
  void ShowPopup(Form& form, PopupMenu& menu) override;
  Rect Screen() const override { return screen; }
  void Invalidate(Form&, Control&) override {}

 private:
  class Peer;
  struct IdlePump : Pump {
    void RunPending(std::chrono::milliseconds) override {}
  };

  IdlePump idle_pump_;
  Pump& pump_;
  std::map<std::string, std::deque<Driver>> drivers_;
  std::set<const Form*> realised_;
};

/// The control of this name and kind; std::out_of_range when the window has none.
template <typename Kind>
Kind& Find(const Form& form, const std::string& name) {
  for (Control* control : form.Controls()) {
    auto* found = dynamic_cast<Kind*>(control);
    if (found && found->Name() == name) return *found;
  }
  throw std::out_of_range(form.Name() + " has no " + name);
}

/// The user presses a button, types into a box, reads a box.
inline void Press(const Form& form, const std::string& name) {
  Find<CommandButton>(form, name).Click();
}
inline void Type(const Form& form, const std::string& name, const Text& text) {
  Find<TextBox>(form, name).Type(text);
}
inline const Text& Read(const Form& form, const std::string& name) {
  return Find<TextBox>(form, name).GetText();
}

/// The controls of a layout in the order of the tab key, frames and pages entered.
std::vector<Control*> LaidOut(const Layout& layout);

}  // namespace vesko
