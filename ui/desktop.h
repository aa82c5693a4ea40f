// What the desktop program shares with the desktop: its version, and the GRF files handed to it
// by a file manager or dropped on its window.
#pragma once

#include <string>

#include <QString>

class QMimeData;

namespace vossel {

#ifndef VOSSEL_VERSION
#define VOSSEL_VERSION "0.0.0"
#endif
inline constexpr const char kAppVersion[] = VOSSEL_VERSION;

// The type that data/vossel-mime.xml gives GRF files.
inline constexpr const char kGrfMimeType[] = "application/x-grf";

// A regular file that the MIME database takes for a GRF file, or whose name ends in .grf: run
// from the build tree, the program has no MIME definition installed.
bool IsGrfFile(const QString& path);

// The GRF file that a drop carries when it carries exactly one local file and that is one; else
// the empty text.
QString DroppedGrfFile(const QMimeData* data);

// The text of Help > About.
std::string AboutText();

}  // namespace vossel
