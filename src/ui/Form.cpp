#include "ui/Form.h"

#include <utility>

namespace vesko {

Control::Control(Form& form, std::string name) : name_(std::move(name)) {
  form.controls_.push_back(this);
}

Form::Form(std::string name, Toolkit& toolkit) : name_(std::move(name)), toolkit_(toolkit) {}

Form::~Form() { TakeDown(); }

void Form::SetCaption(Text caption) {
  if (caption_ == caption) return;
  caption_ = std::move(caption);
  StateChanged();
}

void Form::Move(int left, int top) {
  bounds_.left = left;
  bounds_.top = top;
  StateChanged();
}

void Form::Resize(int width, int height) {
  bounds_.width = width;
  bounds_.height = height;
  StateChanged();
}

void Form::SetFirstInTabOrder(Control& control) {
  first_in_tab_order_ = &control;
  StateChanged();
}

void Form::TakeBounds(const Rect& bounds) { bounds_ = bounds; }

/// One showing. Takes the window down however it ends, unless the form itself is gone by then.
class Form::Showing {
 public:
  explicit Showing(Form& form) : form_(form) {
    form_.showing_ = this;
    form_.loaded_ = true;
  }
  ~Showing() {
    if (form_gone_) return;
    form_.showing_ = nullptr;
    form_.loaded_ = false;
    form_.peer_.reset();
  }
  Showing(const Showing&) = delete;
  Showing& operator=(const Showing&) = delete;

  void FormGone() { form_gone_ = true; }

  void Run() {
    form_.peer_ = form_.toolkit_.Realise(form_);
    form_.peer_->FitToContent();
    form_.OnLoad();
    if (Ended()) return;
    // The host's font, set while loading, may need more room than the font measured before.
    form_.peer_->FitToContent();
    form_.peer_->Show();
    form_.OnActivate();
    if (Ended()) return;
    form_.toolkit_.RunModal(form_);
  }

 private:
  bool Ended() const { return form_gone_ || !form_.loaded_; }

  Form& form_;
  bool form_gone_ = false;
};

void Form::ShowModal() {
  if (showing_) return;
  Showing(*this).Run();
}

void Form::Unload() {
  if (!loaded_ || unloading_) return;
  unloading_ = true;
  OnUnload();
  unloading_ = false;
  loaded_ = false;
  if (peer_) peer_->Hide();
}

void Form::TakeDown() {
  Unload();
  if (showing_) showing_->FormGone();
  showing_ = nullptr;
  peer_.reset();
}

void Form::StateChanged() {
  if (peer_) peer_->StateChanged();
}

}  // namespace vesko
