// frmDetails: what the sprite on view and its file say about themselves, beside the main window.
// Non-modal; the text can be selected and copied.
#pragma once

#include <string>

#include <QWidget>

#include "actions.h"

class QPlainTextEdit;

namespace vossel {

class frmDetails : public QWidget {
  Q_OBJECT

 public:
  explicit frmDetails(QWidget* owner);

  // The file's identity on top, then the sprite's number and what it is.
  void ShowDetails(const FactLines& identity, int32_t sprite, const FactLines& details);
  // No file open.
  void ShowNothing();
  std::string Text() const;

 private:
  QPlainTextEdit* text_;
};

}  // namespace vossel
