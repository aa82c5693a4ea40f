// Writes the seed corpora of the fuzz targets: small inputs covering each record kind and flag,
// each palette line form, each registry value form and each dialog buffer layout.
// Usage: make_fuzz_seeds <corpus folder>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "grf_writer.h"

namespace fs = std::filesystem;
using grfw::Bytes;

namespace {

void Put(const fs::path& dir, const std::string& name, const Bytes& bytes) {
  fs::create_directories(dir);
  std::ofstream out(dir / name, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

void Put(const fs::path& dir, const std::string& name, const std::string& text) {
  Put(dir, name, Bytes(text.begin(), text.end()));
}

std::vector<std::pair<std::string, Bytes>> GrfSeeds() {
  Bytes mixed;
  grfw::AddData(mixed, {1, 2, 3});
  grfw::AddOffset(mixed, 5, 2);
  grfw::AddOffset(mixed, 16, 1);
  Bytes pixels(64);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i % 7);
  const Bytes run = grfw::RunSprite(8, {{{1, {5, 6}}, {6, {7}}}, {}, {{0, Bytes(8, 9)}}}, -2, 3);
  const Bytes stored = grfw::PlainSprite(8, 8, pixels, 4, -4, 2);
  const Bytes plain = grfw::PlainSprite(8, 8, pixels, -1, 1, 0);
  const Bytes flagsOdd = grfw::PlainSprite(2, 2, {1, 2, 3, 4}, 0, 0, 0x41);
  const Bytes action = grfw::ActionRecord({0x00, 0x01, 0xFF, 0x7F, 0x80});
  Bytes zeroChunk;
  grfw::AddData(zeroChunk, Bytes(128, 0x44));
  return {
      {"seventeen.grf", grfw::SeventeenByteFile()},
      {"mixed.grf", grfw::File({grfw::SpriteRec(0, 2, 12, 0, 0, mixed, 24), action, run})},
      {"stored.grf", grfw::File({stored, plain, flagsOdd})},
      {"run.grf", grfw::File({run, run}, false)},
      {"action.grf", grfw::File({action, grfw::ActionRecord(Bytes(40, 3)), plain})},
      {"chunk128.grf", grfw::File({grfw::SpriteRec(0, 1, 128, 0, 0, zeroChunk, 128)})},
      {"bothflags.grf",
       grfw::File({grfw::RawSprite(16, 254, 1, 4, 0, 0,
                                   {0x05, 0x02, 0x00, 0x84, 0x00, 0x09, 0xE8, 0x01})})},
      {"negative.grf", grfw::File({plain, grfw::RawSprite(0x8004, 0, 1, 1, 0, 0, {1, 2, 3})})},
      {"overrun.grf", grfw::File({plain, grfw::RawSprite(12, 0, 2, 2, 0, 0, {5, 1, 2, 3, 4, 5})})},
      {"cut.grf", Bytes(plain.begin(), plain.end() - 3)},
      {"wide.grf", grfw::File({grfw::RawSprite(10, 2, 1, 0x8000, 0, 0, {1, 5})})},
  };
}

// Version-2 files: every image kind, zoom levels, data, references shared and missing, a cut.
std::vector<std::pair<std::string, Bytes>> Grf2Seeds() {
  auto image = [](uint8_t info, uint8_t zoom, uint16_t w, uint16_t h) {
    grfw::Image2 im{info, zoom, w, h, -1, 2, {}};
    for (size_t i = 0; i < size_t{w} * h * grfw::PixelBytes(info); ++i)
      im.pixels.push_back(static_cast<uint8_t>((i / grfw::PixelBytes(info)) % 5 ? i * 7 / 3 : 0));
    return grfw::V2Sprite(zoom + 1u, im);
  };
  const std::vector<Bytes> refs = {grfw::V2Ref(1), grfw::V2Data(0xFF, {1, 2, 3}), grfw::V2Ref(2),
                                   grfw::V2Ref(1), grfw::V2Ref(9)};
  Bytes cut = grfw::V2File(refs, {image(0x01, 0, 4, 4)});
  cut.resize(cut.size() - 7);
  return {{"eight.grf", grfw::V2File(refs, {image(0x04, 0, 6, 5), image(0x0C, 1, 9, 4)})},
          {"rgba.grf", grfw::V2File(refs, {image(0x03, 1, 5, 5), image(0x07, 1, 10, 10),
                                           image(0x0D, 0, 4, 3)})},
          {"wide.grf", grfw::V2File(refs, {image(0x0B, 0, 300, 2), image(0x4C, 1, 257, 3),
                                           grfw::V2Raw(9, {0xFF, 5, 6})})},
          {"cut.grf", cut}};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_fuzz_seeds <corpus folder>\n");
    return 2;
  }
  const fs::path root(argv[1]);
  for (const auto& [name, bytes] : GrfSeeds()) {
    Put(root / "loader", name, bytes);
    Put(root / "scan", name, bytes);
  }

  for (const auto& [name, bytes] : Grf2Seeds()) Put(root / "grf2", name, bytes);

  // Palette files: the good form, short counts, each refusal's shape.
  std::string good = "JASC-PAL\r\n0100\r\n256\r\n";
  for (int i = 0; i < 256; ++i)
    good +=
        std::to_string(i) + " " + std::to_string(255 - i) + " " + std::to_string(i / 2) + "\r\n";
  Put(root / "palette", "full.pal", good);
  Put(root / "palette", "short.pal",
      std::string("JASC-PAL\r\n0100\r\n3\r\n1 2 3\r\n4 5 6 7\r\n8  9 10\r\n"));
  Put(root / "palette", "crlf_cr.pal", std::string("JASC-PAL\r0100\r\n2.5\r255 0 0\r0 255 0\r\n"));
  Put(root / "palette", "lf.pal", std::string("JASC-PAL\n0100\n1\n1 2 3\n"));
  Put(root / "palette", "tabs.pal", std::string("JASC-PAL\r\n0100\r\n1\r\n1\t2\t3\r\n"));
  Put(root / "palette", "big.pal", std::string("JASC-PAL\r\n0100\r\n300\r\n1 2 3\r\n"));
  Put(root / "palette", "negative.pal", std::string("JASC-PAL\r\n0100\r\n-4\r\n"));
  Put(root / "palette", "numbers.pal",
      std::string("JASC-PAL\r\n0100\r\n 2 \r\n+1.5 2e1 &H1F\r\n255.4 -0.4 0\r\n"));

  // Registry files.
  const std::string head =
      "WINE REGISTRY Version 2\n;; All keys relative to \\\\Machine\n\n#arch=win32\n\n";
  const std::string key =
      "[Software\\\\FISH Technology Group\\\\Transport Tycoon Deluxe] "
      "1600000000\n#time=1d6f0e0a0b0c0d0\n";
  Put(root / "registry", "string.reg", head + key + "\"HDPath\"=\"C:\\\\TTD\\\\\"\n");
  Put(root / "registry", "escapes.reg",
      head + key + "\"HDPath\"=\"C:\\\\Games\\\\T\\x00e4\\\"d\\n\\t\\0x\"\n@=\"def\"\n");
  Put(root / "registry", "types.reg",
      head + key +
          "\"A\"=str(2):\"%PATH%\"\n\"B\"=dword:0000002a\n\"C\"=hex:01,02,\\\n  03,04\n"
          "\"HDPath\"=hex(1):43,00,3a,00,5c,00,00,00,41,00\n\"E\"=hex(7):41,00,00,00,00,00\n");
  Put(root / "registry", "empty.reg", head + key + "\"HDPath\"=hex(1):\n\"X\"=\"\"\n");
  Put(root / "registry", "case.reg",
      head +
          "[SOFTWARE\\\\fish technology group\\\\TRANSPORT TYCOON "
          "DELUXE]\n\"hdpath\"=\"D:\\\\x\"\n");

  // File dialog buffers as the platform leaves them, behind one byte: bit 0 says the dialog was
  // confirmed, bit 1 that the caller's file name was empty. One path, several files, a cancel.
  const std::string confirmed("\x03", 1), kept("\x01", 1), failed("\x02", 1);
  Put(root / "filedialog", "one.buf",
      confirmed + std::string("/home/u/a.grf\0", 14) + std::string(40, '\0'));
  Put(root / "filedialog", "multi.buf", confirmed + std::string("/home/u\0a.grf\0b.grf\0\0", 22));
  Put(root / "filedialog", "append.buf", kept + std::string("/home/u\0a.grf\0b.grf\0\0", 22));
  Put(root / "filedialog", "root.buf", confirmed + std::string("/\0a.grf\0\0", 9));
  Put(root / "filedialog", "blanks.buf", confirmed + std::string("  /x/a b.grf  \0", 15));
  Put(root / "filedialog", "cancel.buf", failed + std::string(64, '\0'));
  Put(root / "filedialog", "failed.buf", failed + std::string("/x\0a.grf\0", 10));
  Put(root / "filedialog", "suffix.buf", confirmed + std::string("/x/a.grf\0a.grf\0", 15));
  return 0;
}
