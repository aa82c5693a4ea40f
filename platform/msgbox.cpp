#include "msgbox.h"

#include <utility>

#include <QMessageBox>
#include <QString>

namespace vossel {

namespace {

MsgBoxHook& Hook() {
  static MsgBoxHook hook;
  return hook;
}

}  // namespace

void SetMsgBoxHook(MsgBoxHook hook) {
  Hook() = std::move(hook);
}

void MsgBox(const std::string& text, const std::string& title, MsgBoxIcon icon) {
  const std::string shownTitle = title.empty() ? std::string(kMsgBoxTitle) : title;
  if (Hook()) {
    Hook()(text, shownTitle, icon);
    return;
  }
  QMessageBox::Icon qtIcon = QMessageBox::NoIcon;
  if (icon == MsgBoxIcon::Exclamation) qtIcon = QMessageBox::Warning;
  if (icon == MsgBoxIcon::Information) qtIcon = QMessageBox::Information;
  // No parent: the box is application-modal, also while the calling window is disabled.
  QMessageBox box(qtIcon, QString::fromStdString(shownTitle), QString::fromStdString(text),
                  QMessageBox::Ok);
  box.exec();
}

}  // namespace vossel
