#pragma once

#include <QString>

namespace vesko_host {

/// The component as this program uses it, on the user-interface thread. CheckMail, ViewMail and
/// Configure return when their windows have closed, and handle the program's events until then.
/// None of them may be started while IsBusy.
class MailComponent {
 public:
  virtual ~MailComponent() = default;

  virtual bool IsBusy() = 0;
  /// Font family for the windows that open from now on.
  virtual void SetFont(const QString& face) = 0;
  /// Minutes between automatic checks; -1 for none.
  virtual int CheckTime() = 0;
  virtual void CheckMail() = 0;
  virtual void ViewMail() = 0;
  virtual void Configure() = 0;
};

}  // namespace vesko_host
