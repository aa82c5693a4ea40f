// PNG files for the CLI's pictures and sheets, encoded through libpng itself: Qt's writer offers
// no choice of row filter, and its adaptive filtering costs more than all the rest of an export.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <QImage>

namespace vossel {

using PngTexts = std::vector<std::pair<std::string, std::string>>;

// The picture as a PNG file's bytes: an indexed picture as palette indices with its colour table
// (and the colours' alpha), a picture with alpha as RGBA, any other as RGB; rows unfiltered, zlib
// at a fast level, `texts` as tEXt chunks. False for a null picture or a failure of libpng.
bool EncodePng(const QImage& picture, const PngTexts& texts, std::vector<uint8_t>& png);

}  // namespace vossel
