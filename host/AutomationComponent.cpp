#include "AutomationComponent.h"

#include <VeskoEx/Host.h>

#include <utility>

namespace vesko_host {

namespace {

class AutomationComponent final : public MailComponent {
 public:
  explicit AutomationComponent(vesko::host::Object object) : object_(std::move(object)) {}

  bool IsBusy() override {
    return Answer(false, [this] { return object_.Get(u"IsBusy").ToBool(); });
  }

  int CheckTime() override {
    return Answer(-1, [this] { return object_.Call(u"CheckTime").ToInt(); });
  }

  void SetFont(const QString& face) override {
    Answer(0, [&] {
      object_.Call(u"SetFont", face.toStdU16String(), int32_t{0});
      return 0;
    });
  }

  void CheckMail() override { Operate(u"CheckMail"); }
  void ViewMail() override { Operate(u"ViewMail"); }
  void Configure() override { Operate(u"Configure"); }

 private:
  void Operate(std::u16string_view name) {
    Answer(0, [&] {
      object_.Call(name);
      return 0;
    });
  }

  template <typename Value, typename Ask>
  static Value Answer(Value otherwise, Ask&& ask) {
    try {
      return ask();
    } catch (const vesko::host::Error& error) {
      qWarning("%s", error.what());
      return otherwise;
    }
  }

  vesko::host::Object object_;
};

}  // namespace

std::unique_ptr<MailComponent> LoadComponent() {
  return std::make_unique<AutomationComponent>(vesko::host::Create("VeskoEx.cVeskoEx"));
}

}  // namespace vesko_host
