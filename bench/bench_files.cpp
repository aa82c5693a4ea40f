#include "bench_files.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>

#include "grf_writer.h"

namespace vossel {

namespace {

std::vector<uint8_t> ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)),
                              std::istreambuf_iterator<char>());
}

// Deterministic pixels with runs in them, so the streams mix both chunk kinds.
struct Pixels {
  uint32_t state = 12345;
  uint8_t Next() {
    state = state * 1103515245u + 12345u;
    return static_cast<uint8_t>(state >> 16);
  }
  grfw::Bytes Make(size_t n) {
    grfw::Bytes out;
    while (out.size() < n) {
      const uint8_t v = Next();
      const size_t run = (v & 3) == 0 ? 4 + (v >> 5) : 1;
      for (size_t i = 0; i < run && out.size() < n; ++i) out.push_back(v);
    }
    return out;
  }
};

}  // namespace

std::vector<BenchFile> RealBenchFiles() {
  std::vector<std::string> paths;
  if (const char* env = std::getenv("VOSSEL_BENCH_FILES")) {
    std::string list = env;
    size_t at = 0;
    while (at <= list.size()) {
      const size_t colon = list.find(':', at);
      const std::string path =
          list.substr(at, colon == std::string::npos ? std::string::npos : colon - at);
      if (!path.empty()) paths.push_back(path);
      if (colon == std::string::npos) break;
      at = colon + 1;
    }
  }
  for (const char* name : {"openttd.grf", "orig_extra.grf"})
    paths.push_back(std::string("/usr/share/games/openttd/baseset/") + name);
  std::vector<BenchFile> files;
  std::set<std::string> seen;
  for (const std::string& path : paths) {
    const std::string name = std::filesystem::path(path).stem().string();
    if (!std::filesystem::is_regular_file(path) || !seen.insert(name).second) continue;
    files.push_back({name, ReadFile(path)});
  }
  return files;
}

std::vector<uint8_t> LimitsFile() {
  Pixels pixels;
  std::vector<grfw::Bytes> records;
  records.reserve(32767);
  for (int i = 0; i < 32767; ++i) {
    if (i % 2 == 0) {
      records.push_back(grfw::PlainSprite(16, 12, pixels.Make(16 * 12), -8, -6));
    } else {
      std::vector<std::vector<grfw::Run>> rows(12);
      for (int r = 0; r < 12; ++r) {
        const uint8_t a = static_cast<uint8_t>(pixels.Next() % 6);
        rows[static_cast<size_t>(r)] = {{a, pixels.Make(5)},
                                        {static_cast<uint8_t>(a + 7), pixels.Make(3)}};
      }
      records.push_back(grfw::RunSprite(16, rows, -8, -6));
    }
  }
  return grfw::FileOf(records);
}

std::vector<uint8_t> ManySpritesFile(int count) {
  Pixels pixels;
  std::vector<grfw::Bytes> records;
  for (int i = 0; i < count; ++i) {
    if (i % 50 == 0)
      records.push_back(grfw::ActionRecord(pixels.Make(40)));
    else
      records.push_back(grfw::PlainSprite(32, 24, pixels.Make(32 * 24), -16, -12));
  }
  return grfw::FileOf(records);
}

std::vector<uint8_t> ChunkyFile(int chunks) {
  grfw::Bytes stream;
  int32_t decoded = 0;
  for (int i = 0; i < chunks; ++i) {
    if (i % 2 == 0) {
      grfw::AddData(stream,
                    grfw::Bytes(static_cast<size_t>(1 + (i * 37) % 128), static_cast<uint8_t>(i)));
      decoded += 1 + (i * 37) % 128;
    } else {
      grfw::AddOffset(stream, 16, 3);
      decoded += 16;
    }
  }
  return grfw::File({grfw::SpriteRec(0, 1, static_cast<uint16_t>(decoded), 0, 0, stream, decoded)});
}

std::vector<BenchFile> OpenGfxBenchFiles() {
  std::vector<BenchFile> files;
  const std::filesystem::path dir = "/usr/share/games/openttd/baseset/opengfx";
  if (!std::filesystem::is_directory(dir)) return files;
  for (const auto& entry : std::filesystem::directory_iterator(dir))
    if (entry.path().extension() == ".grf")
      files.push_back({entry.path().stem().string(), ReadFile(entry.path().string())});
  std::sort(files.begin(), files.end(),
            [](const BenchFile& a, const BenchFile& b) { return a.Name < b.Name; });
  return files;
}

namespace {

// The file of V2ManySpritesFile, given to `put` in pieces of about 1 MiB.
void V2ManySprites(int count, const std::function<void(const std::vector<uint8_t>&)>& put) {
  // Each alternative's entry is made once and copied with the id of each sprite written in.
  std::vector<grfw::Bytes> entries;
  const uint8_t zooms[3] = {0, 2, 1};
  for (int k = 0; k < 3; ++k) {
    grfw::Image2 im{0x03,
                    zooms[k],
                    static_cast<uint16_t>(8 << k),
                    static_cast<uint16_t>(8 << k),
                    static_cast<int16_t>(-4 << k),
                    static_cast<int16_t>(-4 << k),
                    {}};
    for (int y = 0; y < im.height; ++y)
      im.pixels.insert(im.pixels.end(), size_t{im.width} * 4, static_cast<uint8_t>(y * 9 + 40));
    entries.push_back(grfw::V2Sprite(1, im));
  }
  // The header and the data section as the writer makes them, with no sprite section yet.
  std::vector<grfw::Bytes> data;
  for (int id = 1; id <= count; ++id) data.push_back(grfw::V2Ref(static_cast<uint32_t>(id)));
  grfw::Bytes head = grfw::V2File(data, {});
  head.resize(head.size() - 4);
  put(head);
  grfw::Bytes sprites;
  for (int id = 1; id <= count; ++id) {
    for (const grfw::Bytes& e : entries) {
      const size_t at = sprites.size();
      grfw::Append(sprites, e);
      for (int b = 0; b < 4; ++b)
        sprites[at + static_cast<size_t>(b)] = static_cast<uint8_t>(id >> (8 * b));
    }
    if (sprites.size() >= (1u << 20) || id == count) {
      put(sprites);
      sprites.clear();
    }
  }
  put({0, 0, 0, 0});
}

}  // namespace

std::vector<uint8_t> V2ManySpritesFile(int count) {
  std::vector<uint8_t> file;
  V2ManySprites(count, [&file](const std::vector<uint8_t>& part) { grfw::Append(file, part); });
  return file;
}

bool WriteV2ManySpritesFile(const std::string& path, int count) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  V2ManySprites(count, [&out](const std::vector<uint8_t>& part) {
    out.write(reinterpret_cast<const char*>(part.data()),
              static_cast<std::streamsize>(part.size()));
  });
  out.close();
  return !out.fail();
}

std::vector<uint8_t> V2DecodeFile(int references) {
  Pixels pixels;
  grfw::Image2 im{0x0F, 1, 256, 124, -128, -62, {}};
  const grfw::Bytes colours = pixels.Make(256 * 124);
  for (size_t i = 0; i < colours.size(); ++i) {
    const uint8_t v = colours[i];
    if (v % 3 == 0)
      im.pixels.insert(im.pixels.end(), 5, uint8_t{0});
    else
      im.pixels.insert(im.pixels.end(), {v, uint8_t(v / 2), uint8_t(255 - v), 255, uint8_t(v | 1)});
  }
  return grfw::V2File(std::vector<grfw::Bytes>(static_cast<size_t>(references), grfw::V2Ref(1)),
                      {grfw::V2Sprite(1, im)});
}

}  // namespace vossel
