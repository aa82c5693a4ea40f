#include "frmDetails.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "nfo_encoder.h"

namespace vossel {

namespace {

std::string Lines(const FactLines& facts) {
  std::string text;
  for (const auto& [key, value] : facts) text += key + ": " + value + "\n";
  return text;
}

}  // namespace

frmDetails::frmDetails(QWidget* owner) : QWidget(owner, Qt::Window) {
  setWindowTitle(QStringLiteral("Vossel - Details"));
  text_ = new QPlainTextEdit(this);
  text_->setReadOnly(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // NFO bytes line up in a fixed font; long lines wrap rather than hide.
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(text_);
  resize(560, 360);
}

void frmDetails::ShowDetails(const FactLines& identity, int32_t sprite, const FactLines& details) {
  // Numbered as the list counts (from 1) and as NFO does (from 0), as the CLI says it.
  const std::string text =
      Lines(identity) + "\n" + SpriteNumberText(sprite) + "\n" + Lines(details);
  text_->setPlainText(QString::fromStdString(text));
}

void frmDetails::ShowNothing() {
  text_->setPlainText(QStringLiteral("No file loaded"));
}

std::string frmDetails::Text() const {
  return text_->toPlainText().toStdString();
}

}  // namespace vossel
