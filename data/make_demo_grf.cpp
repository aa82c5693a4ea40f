// make_demo_grf: writes vossel-demo.grf, the small file a new user finds beside the program.
// Four sprites, one of each kind the viewer tells apart: a card of all 256 palette colours, an
// isometric tile in run form, a sprite placed by its offsets, and an action sprite.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "grf_writer.h"

namespace {

using grfw::Bytes;

// 16 x 16 swatches of 8 x 8 pixels; swatch n, counted row by row, has palette index n.
Bytes ColourCard() {
  constexpr int kSwatch = 8, kSide = 16 * kSwatch;
  Bytes pixels(kSide * kSide);
  for (int y = 0; y < kSide; ++y)
    for (int x = 0; x < kSide; ++x)
      pixels[static_cast<size_t>(y * kSide + x)] =
          static_cast<uint8_t>((y / kSwatch) * 16 + x / kSwatch);
  return grfw::PlainSprite(kSide, kSide, pixels);
}

// A ground tile of 64 x 31 in run form: one run of grass per row, the cells left and right of the
// diamond transparent. Its offsets put the top corner on the tile's origin, as the game does.
Bytes GrassTile() {
  constexpr int kWidth = 64, kHeight = 31;
  std::vector<std::vector<grfw::Run>> rows(kHeight);
  for (int r = 0; r < kHeight; ++r) {
    const int fromMiddle = r < 15 ? 15 - r : r - 15;
    const int width = kWidth - 4 * fromMiddle;
    grfw::Run run{static_cast<uint8_t>((kWidth - width) / 2), Bytes(static_cast<size_t>(width))};
    for (int x = 0; x < width; ++x) {
      const bool edge = x < 2 || x >= width - 2;
      run.pixels[static_cast<size_t>(x)] = static_cast<uint8_t>(edge ? 81 : 83 + (x / 3 + r) % 3);
    }
    rows[static_cast<size_t>(r)] = {run};
  }
  return grfw::RunSprite(kWidth, rows, -31, 0);
}

// A red arrow pointing right, 24 x 16, drawn from its centre: offsets -12 and -8.
Bytes Arrow() {
  constexpr int kWidth = 24, kHeight = 16;
  Bytes pixels(kWidth * kHeight);
  for (int y = 0; y < kHeight; ++y) {
    const int fromMiddle = y < 8 ? 7 - y : y - 8;  // 0 on the two middle rows
    for (int x = 0; x < kWidth; ++x) {
      const bool shaft = x < 12 && fromMiddle < 3;
      const bool head = x >= 12 && x - 12 < 12 - fromMiddle * 3 / 2;
      if (!shaft && !head) continue;
      const bool outline = (shaft && (x == 0 || fromMiddle == 2)) ||
                           (head && x - 12 == 11 - fromMiddle * 3 / 2) ||
                           (head && (fromMiddle == 7 || (x == 12 && fromMiddle >= 3)));
      pixels[static_cast<size_t>(y * kWidth + x)] = outline ? 179 : 164;
    }
  }
  return grfw::PlainSprite(kWidth, kHeight, pixels, -12, -8);
}

// An action sprite: a comment action, its text behind the action byte.
Bytes Comment() {
  const std::string text = "Vossel demo: colour card, grass tile, arrow";
  Bytes data{0x0C};
  data.insert(data.end(), text.begin(), text.end());
  return grfw::ActionRecord(data);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_demo_grf OUT\n");
    return 2;
  }
  const Bytes file = grfw::File({ColourCard(), GrassTile(), Arrow(), Comment()});
  std::FILE* out = std::fopen(argv[1], "wb");
  if (out == nullptr) {
    std::perror(argv[1]);
    return 1;
  }
  const bool written = std::fwrite(file.data(), 1, file.size(), out) == file.size();
  if (std::fclose(out) != 0 || !written) {
    std::perror(argv[1]);
    return 1;
  }
  return EXIT_SUCCESS;
}
