#pragma once

#include <QString>
#include <QTimer>
#include <QWidget>

namespace vesko::demo {

/// Acts for the user where there is no display: takes pictures of the progress window and of the
/// list window, closes windows that wait for somebody, and writes the text of boxes to the standard
/// error. Questions are answered with "&No", so that nothing is tried for ever.
class Onlooker {
 public:
  /// Pictures go into the folder, which is created where it is missing; with an empty name none
  /// are taken.
  explicit Onlooker(const QString& picture_folder);

  /// A box reported a failure, or a question had to be answered for the user.
  bool SawTrouble() const { return saw_trouble_; }

 private:
  void Look();
  void LookAtProgress(QWidget& window);
  void LookAtList(QWidget& window);
  void CloseBox(QWidget& window);
  void Photograph(QWidget& window, const QString& name);

  QTimer timer_;
  QString picture_folder_;
  bool saw_trouble_ = false;
  bool has_progress_picture_ = false;
  int looks_since_trouble_ = 0;
  int looks_at_list_ = 0;
};

}  // namespace vesko::demo
