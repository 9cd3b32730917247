#pragma once

#include <QString>

namespace vesko_host {

/// The component as this program uses it. Each operation returns when its window has closed; none
/// may be started while IsBusy.
class MailComponent {
 public:
  virtual ~MailComponent() = default;

  virtual bool IsBusy() = 0;
  virtual void SetFont(const QString& face) = 0;
  /// Minutes between automatic checks; -1: never by itself.
  virtual int CheckTime() = 0;
  virtual void CheckMail() = 0;
  virtual void ViewMail() = 0;
  virtual void Configure() = 0;
};

}  // namespace vesko_host
