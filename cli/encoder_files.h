// The pictures of an export as the NewGRF encoder reads them back.
#pragma once

#include <QImage>

#include "commands.h"

namespace vossel {

// One alternative's picture, or with `mask` its mask layer: an 8-bit picture and a mask as palette
// indices, the sprite's own, a 32-bit one as its RGBA. The colour table is the chosen palette;
// with a company colour each index shows the colour it is drawn in, the indices unchanged.
QImage EncoderImage(const SpritePicture& picture, const Look& look, bool mask);

}  // namespace vossel
