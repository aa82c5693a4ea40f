#include "controls.h"

#include <cmath>

#include <QApplication>
#include <QColor>
#include <QGroupBox>
#include <QLabel>
#include <QPalette>
#include <QRect>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include "picturebox.h"

namespace vossel {

namespace {

// The exact text given to SetCaption, kept beside the label's shown text.
constexpr const char kCaptionProperty[] = "vosselCaption";
constexpr const char kAutoSizeProperty[] = "vosselAutoSize";

QSize ClientSize(const QWidget* container) {
  const auto* box = qobject_cast<const PictureBox*>(container);
  const QRect client = box == nullptr ? container->rect() : box->contentsRect();
  return {std::max(0, client.width()), std::max(0, client.height())};
}

int32_t PixelsToUnits(const QWidget* container, int32_t pixels) {
  return pixels * UnitsPerPixel(container);
}

}  // namespace

QPoint ClientOrigin(const QWidget* container) {
  const auto* box = qobject_cast<const PictureBox*>(container);
  return box == nullptr ? QPoint(0, 0) : box->contentsRect().topLeft();
}

int32_t UnitsPerPixel(const QWidget* container) {
  const auto* box = qobject_cast<const PictureBox*>(container);
  if (box != nullptr && box->Scale == ScaleMode::Pixels) return 1;
  return kTwipsPerPixel;
}

int32_t UnitsToPixels(const QWidget* container, int32_t units) {
  return static_cast<int32_t>(
      std::lround(static_cast<double>(units) / static_cast<double>(UnitsPerPixel(container))));
}

int32_t Left(const QWidget* control) {
  const QWidget* container = control->parentWidget();
  return PixelsToUnits(container, control->x() - ClientOrigin(container).x());
}

int32_t Top(const QWidget* control) {
  const QWidget* container = control->parentWidget();
  return PixelsToUnits(container, control->y() - ClientOrigin(container).y());
}

int32_t Width(const QWidget* control) {
  return PixelsToUnits(control->parentWidget(), control->width());
}

int32_t Height(const QWidget* control) {
  return PixelsToUnits(control->parentWidget(), control->height());
}

bool Move(QWidget* control, int32_t left, int32_t top, int32_t width, int32_t height) {
  if (width < 0 || height < 0) return false;
  const QWidget* container = control->parentWidget();
  const QPoint origin = ClientOrigin(container);
  control->setGeometry(origin.x() + UnitsToPixels(container, left),
                       origin.y() + UnitsToPixels(container, top), UnitsToPixels(container, width),
                       UnitsToPixels(container, height));
  // A hidden control gets Qt's resize event only when it is shown; the handler must run now.
  if (auto* box = qobject_cast<PictureBox*>(control)) box->SyncSize();
  return true;
}

int32_t ScaleWidth(const QWidget* container) {
  return PixelsToUnits(container, ClientSize(container).width());
}

int32_t ScaleHeight(const QWidget* container) {
  return PixelsToUnits(container, ClientSize(container).height());
}

void SetCaption(QWidget* control, const std::string& caption) {
  if (auto* label = qobject_cast<QLabel*>(control)) {
    label->setProperty(kCaptionProperty, QByteArray::fromStdString(caption));
    label->setTextFormat(Qt::PlainText);
    label->setText(ToQt(caption).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    if (label->property(kAutoSizeProperty).toBool()) label->adjustSize();
  } else if (auto* frame = qobject_cast<QGroupBox*>(control)) {
    frame->setTitle(ToQt(caption));
  } else {
    control->setWindowTitle(ToQt(caption));
  }
}

std::string Caption(const QWidget* control) {
  if (const auto* label = qobject_cast<const QLabel*>(control)) {
    const QVariant kept = label->property(kCaptionProperty);
    return kept.isValid() ? kept.toByteArray().toStdString() : FromQt(label->text());
  }
  if (const auto* frame = qobject_cast<const QGroupBox*>(control)) return FromQt(frame->title());
  return FromQt(control->windowTitle());
}

void SetAutoSize(QLabel* label, bool autoSize) {
  label->setProperty(kAutoSizeProperty, autoSize);
  if (autoSize) label->adjustSize();
}

QColor ColourOfBgr(uint32_t bgr) {
  return QColor(static_cast<int>(bgr & 0xFF), static_cast<int>((bgr >> 8) & 0xFF),
                static_cast<int>((bgr >> 16) & 0xFF));
}

uint32_t BgrOfColour(const QColor& colour) {
  return static_cast<uint32_t>(colour.red()) | (static_cast<uint32_t>(colour.green()) << 8) |
         (static_cast<uint32_t>(colour.blue()) << 16);
}

uint32_t ButtonFaceColour() {
  return BgrOfColour(QApplication::palette().color(QPalette::Button));
}

uint32_t ButtonShadowColour() {
  return BgrOfColour(QApplication::palette().color(QPalette::Dark));
}

QFont WindowsFont(const std::string& family, double points, bool bold) {
  QFont font;
  // Tahoma and MS Sans Serif are narrow faces; a condensed one keeps the texts inside the design
  // sizes where neither is installed (Wine brings a Tahoma of its own).
  font.setFamilies({ToQt(family), QStringLiteral("Tahoma"), QStringLiteral("DejaVu Sans Condensed"),
                    QStringLiteral("Liberation Sans Narrow"), QStringLiteral("DejaVu Sans")});
  font.setPointSizeF(points);
  font.setBold(bold);
  return font;
}

QString ToQt(const std::string& text) {
  return QString::fromStdString(text);
}

std::string FromQt(const QString& text) {
  return text.toStdString();
}

}  // namespace vossel
