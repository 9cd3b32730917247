#include "ui/InputBox.h"

#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/mVeskoMain.h"

namespace vesko {
namespace {

constexpr int kWidth = 380;
constexpr int kHeight = 140;

class InputForm : public Form {
 public:
  InputForm(Toolkit& toolkit, const Text& prompt, const Text& title, const Text& initial)
      : Form("InputBox", toolkit) {
    SetCaption(title);
    Resize(kWidth, kHeight);
    prompt_.SetCaption(prompt);
    prompt_.SetLiteral(true);
    prompt_.SetWraps(true);
    answer_.SetText(initial);
    answer_.SetAccessibleName(prompt);
    ok_.SetCaption(u"OK");
    cancel_.SetCaption(u"Cancel");
    ok_.on_click = [this] { Confirm(); };
    cancel_.on_click = [this] { Unload(); };
    SetLayout(Column({Item(prompt_, 1), Item(answer_), Row({Space(), Item(ok_), Item(cancel_)})}));
    SetDefaultButton(ok_);
    SetCancelButton(cancel_);
    SetFirstInTabOrder(answer_);
  }
  ~InputForm() override { TakeDown(); }

  const Text& Result() const { return result_; }

 private:
  void OnLoad() override { CentreForm(*this, GetToolkit()); }
  void OnActivate() override { answer_.SetFocus(); }

  void Confirm() {
    result_ = answer_.GetText();
    Unload();
  }

  Text result_;
  Label prompt_{*this, "lblPrompt"};
  TextBox answer_{*this, "txtAnswer"};
  CommandButton ok_{*this, "cmdOK"};
  CommandButton cancel_{*this, "cmdCancel"};
};

}  // namespace

Text InputBox(Toolkit& toolkit, const Text& prompt, const Text& title, const Text& initial) {
  InputForm box(toolkit, prompt, title, initial);
  box.ShowModal();
  return box.Result();
}

}  // namespace vesko
