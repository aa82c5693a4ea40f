// Measures, moves, captions, colours and fonts of the controls. A control measures in the scale of
// its container: twips, 15 to a pixel, unless the container is a picture box set to pixels.
#pragma once

#include <cstdint>
#include <string>

#include <QFont>
#include <QPoint>
#include <QString>

class QColor;
class QLabel;
class QWidget;

namespace vossel {

constexpr int32_t kTwipsPerPixel = 15;

// Twips or pixels of one screen pixel inside `container` (15 or 1).
int32_t UnitsPerPixel(const QWidget* container);
// Where the client area of `container` starts, in pixels: inside the border of a picture box, at
// the outer corner of anything else (a frame's caption included).
QPoint ClientOrigin(const QWidget* container);
// Units of `container`'s scale to whole pixels, the nearest one.
int32_t UnitsToPixels(const QWidget* container, int32_t units);

// Place and size of a control inside its container's client area, in the container's scale.
int32_t Left(const QWidget* control);
int32_t Top(const QWidget* control);
int32_t Width(const QWidget* control);
int32_t Height(const QWidget* control);

// Left, top, width and height in one operation. False, with nothing changed, for a negative width
// or height. Where the size really changes, the control's resize event runs inside the move.
bool Move(QWidget* control, int32_t left, int32_t top, int32_t width, int32_t height);

// The client area of a container, inside its border, in the container's own scale.
int32_t ScaleWidth(const QWidget* container);
int32_t ScaleHeight(const QWidget* container);

// Caption of a window, a label or a frame. A label shows CR LF as a line break and shows the text
// as it stands (no markup, no mnemonics); Caption gives back exactly what was set.
void SetCaption(QWidget* control, const std::string& caption);
std::string Caption(const QWidget* control);
// A label that takes the size of its text whenever its caption is set.
void SetAutoSize(QLabel* label, bool autoSize);

// Colours as the windows write them: 0x00BBGGRR.
QColor ColourOfBgr(uint32_t bgr);
uint32_t BgrOfColour(const QColor& colour);
uint32_t ButtonFaceColour();
uint32_t ButtonShadowColour();

// A font by its Windows name in points; the nearest installed face where that one is missing.
QFont WindowsFont(const std::string& family, double points, bool bold = false);

QString ToQt(const std::string& text);
std::string FromQt(const QString& text);

}  // namespace vossel
