#include "ui/QuestionBox.h"

#include <string>
#include <utility>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/mVeskoMain.h"

namespace vesko {
namespace {

constexpr int kWidth = 360;
constexpr int kHeight = 120;

class QuestionForm : public Form {
 public:
  QuestionForm(Toolkit& toolkit, const Text& message, const Text& title,
               const std::array<Text, 5>& captions)
      : Form("QuestionBox", toolkit) {
    SetCaption(title);
    Resize(kWidth, kHeight);
    message_.SetCaption(message);
    message_.SetLiteral(true);
    message_.SetWraps(true);
    SetLayout(Column({Item(message_, 1), ButtonRow(captions)}));
  }
  ~QuestionForm() override { TakeDown(); }

  int Pressed() const { return pressed_; }

 private:
  Layout ButtonRow(const std::array<Text, 5>& captions) {
    std::vector<Layout> row{Space()};
    for (size_t i = 0; i < captions.size(); ++i) {
      answers_[i].SetVisible(!captions[i].empty());
      if (captions[i].empty()) continue;
      SetUpButton(static_cast<int>(i), captions[i]);
      row.push_back(Item(answers_[i]));
    }
    return Row(std::move(row));
  }

  void SetUpButton(int index, const Text& caption) {
    CommandButton& button = answers_[static_cast<size_t>(index)];
    button.SetCaption(caption);
    button.on_click = [this, index] {
      pressed_ = index;
      Unload();
    };
    if (DefaultButton()) return;
    SetDefaultButton(button);
    SetFirstInTabOrder(button);
  }

  void OnLoad() override { CentreForm(*this, GetToolkit()); }

  void OnActivate() override {
    if (DefaultButton()) DefaultButton()->SetFocus();
  }

  int pressed_ = kNoButton;
  Label message_{*this, "lblMessage"};
  ControlArray<CommandButton, 5> answers_{*this, "cmdAnswer"};
};

}  // namespace

int QuestionBox(Toolkit& toolkit, const Text& message, const Text& title,
                const std::array<Text, 5>& captions) {
  QuestionForm box(toolkit, message, title, captions);
  box.ShowModal();
  return box.Pressed();
}

}  // namespace vesko
