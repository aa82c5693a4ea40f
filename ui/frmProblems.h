// frmProblems: the mistakes the file carries. A non-modal window beside the main one: a list of
// the checker's findings (code, severity, sprite, item, text), sortable; a click on a finding with
// a sprite hands it to Choose. It is filled again on every load while it is shown.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QWidget>

#include "check.h"

class QLabel;
class QTreeWidget;

namespace vossel {

inline constexpr const char kProblemsCaption[] = "Vossel - Problems";

class frmProblems : public QWidget {
 public:
  explicit frmProblems(QWidget* owner = nullptr);

  // A file was loaded and checked.
  void Attach(const std::vector<Finding>& findings);
  // The file is about to change or close: the window empties.
  void Detach();
  bool Attached() const { return attached_; }
  // Called with the sprite (from 0) of the finding the user picks.
  std::function<void(int32_t)> Choose;

  // Controls, by their names.
  QLabel* lblSummary;
  QTreeWidget* tvwProblems;

 private:
  bool attached_ = false;
};

}  // namespace vossel
