// PNG files for the CLI's pictures and sheets, encoded through libpng itself: Qt's writer offers
// no choice of row filter, and its adaptive filtering costs more than all the rest of an export.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QImage>

namespace vossel {

using PngTexts = std::vector<std::pair<std::string, std::string>>;

// The picture as a PNG file's bytes: an indexed picture as palette indices with its colour table
// (and the colours' alpha), a picture with alpha as RGBA, any other as RGB; rows unfiltered and
// zlib at a fast level, `texts` as tEXt chunks. False for a null picture or a failure of libpng.
bool EncodePng(const QImage& picture, const PngTexts& texts, std::vector<uint8_t>& png);

// An opaque RGB picture encoded as its rows come, so that a large sheet is never held whole: rows
// as QImage::Format_RGB32 holds them, written as RGB.
struct PngRows;
struct PngRowsDeleter {
  void operator()(PngRows* rows) const;
};
using PngRowsPtr = std::unique_ptr<PngRows, PngRowsDeleter>;
// Null on a failure of libpng.
PngRowsPtr StartPngRows(int32_t width, int32_t height, const PngTexts& texts,
                        std::vector<uint8_t>& png);
// One row of `width` RGB32 pixels; false once libpng has failed.
bool AddPngRow(PngRows& rows, const uint8_t* rgb32);
// After the last row; false on a failure of libpng, the bytes then incomplete.
bool FinishPngRows(PngRows& rows);

}  // namespace vossel
