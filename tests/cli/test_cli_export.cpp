// vossel-cli export and sprite --png, run as the real binary; what they write is read back and
// compared with the engine's store, or the pixels our writer put in, seen through the palette file.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <random>
#include <thread>

#include <QImage>

#include "actions.h"
#include "grf.h"
#include "grf_writer.h"
#include "load_sprites.h"
#include "nfo_bytes.h"
#include "palette.h"
#include "run_cli.h"

using namespace vossel;

namespace fs = std::filesystem;
using grfw::Bytes;

namespace {

QRgb Colour(size_t i) {
  static const PaletteBuffer p = [] {
    PaletteBuffer b{};
    LoadPalette((fs::path(VOSSEL_CLI_PATH).parent_path() / kPaletteFileName).string(), b);
    return b;
  }();
  return qRgb(p[4 * i + 2], p[4 * i + 1], p[4 * i]);
}

// The PNG has the size, the offsets and, pixel by pixel, the colours asked for.
void ExpectPicture(const fs::path& path, int width, int height, int x, int y,
                   const std::function<QRgb(int, int)>& colour) {
  QImage png;
  ASSERT_TRUE(png.load(QString::fromStdString(path.string()), "PNG")) << path;
  EXPECT_EQ(png.text("XOffset").toInt(), x) << path;
  EXPECT_EQ(png.text("YOffset").toInt(), y) << path;
  ASSERT_EQ(png.size(), QSize(width, height)) << path;
  for (int row = 0; row < height; ++row)
    for (int column = 0; column < width; ++column)
      ASSERT_EQ(png.pixel(column, row), colour(column, row)) << path << " " << column << "," << row;
}

// A pseudo-sprite's bytes as the export's NFO listing gives them.
Bytes ListedBytes(const fs::path& dir, size_t index) {
  for (const fs::directory_entry& entry : fs::directory_iterator(dir)) {
    if (entry.path().extension() != ".nfo") continue;
    std::ifstream in(entry.path());
    const std::string head = std::to_string(index) + " * ";
    for (std::string line; std::getline(in, line);) {
      if (line.rfind(head, 0) != 0) continue;
      // Long ones go on over lines that start with a tab.
      std::string text = line.substr(line.find(' ', head.size()) + 1);
      while (in.peek() == '\t' && std::getline(in, line)) text += line;
      return ParseNfoBytes(text).value_or(Bytes{});
    }
  }
  return {};
}

// The file of version-1 sprite `index` of the store: its bytes in the listing, or its pixels and
// offsets.
void ExpectSprite(const fs::path& dir, const SpriteStore& store, size_t index) {
  const SpriteRecord& r = store.SpriteTable[index];
  const uint8_t* bytes = store.SpriteData.data() + r.DataOffset;
  std::string stem = std::to_string(index + 1);
  stem.insert(0, stem.size() < 4 ? 4 - stem.size() : 0, '0');
  if (r.Flags == kActionFlags)
    EXPECT_EQ(ListedBytes(dir, index), Bytes(bytes, bytes + r.Size)) << stem;
  else
    ExpectPicture(dir / (stem + ".png"), r.Width, r.Height, r.XOffset, r.YOffset,
                  [&](int x, int y) { return Colour(bytes[y * r.Width + x]); });
}

SpriteStore Load(const Bytes& bytes) {
  SpriteStore store;
  LoadSprites(bytes.data(), int32_t(bytes.size()), store, [](const std::string&) {});
  return store;
}

// `count` sprites of random pixels, which hardly compress: 16 x 16, every 50th 64 x 64.
Bytes NoisyFile(int count) {
  std::mt19937 rng(7);
  std::vector<Bytes> records;
  for (int i = 0; i < count; ++i) {
    const uint8_t side = i % 50 == 49 ? 64 : 16;
    Bytes pixels(size_t{side} * side);
    for (uint8_t& p : pixels) p = static_cast<uint8_t>(rng());
    records.push_back(grfw::PlainSprite(side, side, pixels, int16_t(i % 9), -4, 0, false));
  }
  return grfw::FileOf(records);
}

// Every file under its own name (not a hidden temporary one) holds its sprite whole; gives how many
// there are.
size_t ExpectWholeFiles(const fs::path& dir, const SpriteStore& store) {
  size_t count = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(dir)) {
    const std::string name = entry.path().filename().string();
    if (name.front() == '.' || entry.path().extension() == ".nfo") continue;
    ExpectSprite(dir, store, std::stoul(entry.path().stem().string()) - 1);
    ++count;
  }
  return count;
}

// Exit 1 naming a file of DIR and the system's reason, and nothing left that the run began.
void ExpectStoppedAndTidy(const CliRun& run, const fs::path& dir, int error) {
  EXPECT_EQ(run.Status, 1);
  EXPECT_NE(run.Err.find("vossel-cli: cannot write '" + dir.string() + "/"), std::string::npos)
      << run.Err;
  EXPECT_NE(run.Err.find(std::string("': ") + std::strerror(error) + "\n"), std::string::npos)
      << run.Err;
  EXPECT_TRUE(fs::is_empty(dir)) << std::distance(fs::directory_iterator(dir), {});
}

}  // namespace

TEST(CliExport, RealFileReadsBackAsTheStoreThroughThePalette) {
  const fs::path real = fs::path(VOSSEL_BASESET_DIR) / "orig_extra.grf";
  if (!fs::exists(real)) GTEST_SKIP() << real << " is not installed";
  const SpriteStore store = Load(grfw::ReadFile(real));
  const size_t count = store.SpriteTable.size();
  const fs::path dir = grfw::FreshFolder("export-real");
  ASSERT_EQ(RunCli({"export", real.string(), dir.string(), "--palette", "windows"}).Status, 0);
  size_t pictures = 0;
  for (const SpriteRecord& r : store.SpriteTable) pictures += r.Flags != kActionFlags;
  EXPECT_EQ(size_t(std::distance(fs::directory_iterator(dir), {})), pictures + 1);
  for (size_t i = 0; i < count; i += 37) ExpectSprite(dir, store, i);
  ExpectSprite(dir, store, count - 1);
  fs::remove_all(dir);
}

// A full disk (a small tmpfs, in a mount namespace of this test's own where the system allows
// one) and a write past the file size limit: the export stops, says why and removes what it began.
TEST(CliExport, AFailedWriteStopsWithTheReasonAndRemovesWhatWasBegun) {
  const std::string grf = grfw::WriteTemp("noisy.grf", NoisyFile(700));
  const fs::path disk = grfw::FreshFolder("export-full");
  fs::create_directories(disk);
  if (unshare(CLONE_NEWNS) == 0 &&
      mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
      mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=2m") == 0) {
    ExpectStoppedAndTidy(RunCli({"export", grf, (disk / "out").string()}), disk / "out", ENOSPC);
    umount(disk.c_str());
  } else {
    std::cout << "No tmpfs can be mounted here (" << std::strerror(errno)
              << "): the full disk is checked through the file size limit alone.\n";
  }
  // 16 x 16 pictures fit under the limit, 64 x 64 ones do not.
  rlimit saved{};
  getrlimit(RLIMIT_FSIZE, &saved);
  rlimit limit = saved;
  limit.rlim_cur = 2048;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  const CliRun run = RunCli({"export", grf, (disk / "limited").string()});
  setrlimit(RLIMIT_FSIZE, &saved);
  ExpectStoppedAndTidy(run, disk / "limited", EFBIG);
  fs::remove_all(disk);
}

// Killed while it writes, and again while it puts the files in place: no file under its own name
// is cut. The next run removes the temporary files the killed ones left.
TEST(CliExport, AKilledExportLeavesNoCutFile) {
  const Bytes noisy = NoisyFile(500);
  const std::string grf = grfw::WriteTemp("many.grf", noisy);
  const SpriteStore store = Load(noisy);
  const fs::path dir = grfw::FreshFolder("export-killed");
  // The first file appears under a temporary name, and at the end 0001.png is placed first.
  const auto killWhenThere = [&](const fs::path& there) {
    const pid_t child = StartCli({"export", grf, dir.string(), "--force"},
                                 "/tmp/vossel-cli-killed-" + std::to_string(getpid()));
    int status = 0;
    std::error_code ignored;
    while (waitpid(child, &status, WNOHANG) == 0) {
      const bool seen = there == dir
                            ? fs::directory_iterator(dir, ignored) != fs::directory_iterator()
                            : fs::exists(there, ignored);
      if (seen) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        break;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return status;
  };
  EXPECT_TRUE(WIFSIGNALED(killWhenThere(dir)));
  ExpectWholeFiles(dir, store);
  killWhenThere(dir / "0001.png");
  ExpectWholeFiles(dir, store);
  ASSERT_EQ(RunCli({"export", grf, dir.string(), "--force"}).Status, 0);
  EXPECT_EQ(ExpectWholeFiles(dir, store), store.SpriteTable.size());
  EXPECT_EQ(size_t(std::distance(fs::directory_iterator(dir), {})), store.SpriteTable.size() + 1);
  fs::remove_all(dir);
}

// A sound sprite behind Action 11 is written as the WAV file it holds, under its own name, and
// the listing names each picture's file.
TEST(CliExport, SoundsAsTheirWavFilesAndTheListingNamesThePictures) {
  const Bytes wav = {'R', 'I', 'F', 'F', 4, 0, 0, 0, 'W', 'A', 'V', 'E'};
  Bytes sound = {0xFF, 8, 'h', 'o', 'r', 'n', '.', 'w', 'a', 'v', 0};
  sound.insert(sound.end(), wav.begin(), wav.end());
  const std::string grf = grfw::WriteTemp(
      "sounds.grf", grfw::File({grfw::ActionRecord({0x11, 1, 0}), grfw::ActionRecord(sound),
                                grfw::PlainSprite(1, 1, {5}, 2, 3)}));
  const fs::path dir = grfw::FreshFolder("export-sounds");
  const CliRun run = RunCli({"export", grf, dir.string()});
  EXPECT_EQ(run.Status, 0);
  EXPECT_NE(run.Out.find(": 1 PNG, 1 WAV, 1 NFO\n"), std::string::npos) << run.Out;
  EXPECT_EQ(grfw::ReadFile(dir / "horn.wav"), wav);
  const Bytes listing = grfw::ReadFile(dir / "sounds.nfo");
  EXPECT_NE(std::string(listing.begin(), listing.end())
                .find("\n2 sprites/0003.png 8bpp 0 0 1 1 2 3 normal nocrop\n"),
            std::string::npos);
  fs::remove_all(dir);
}

// Names take a fifth digit from 10,000 sprites on, and not before: the first and the last sprite of
// files of 9,999 and 10,000 sprites, and the summary's counts. (The singular is in the transcript.)
TEST(CliExport, NamesTakeFiveDigitsFromTenThousandSprites) {
  for (const int count : {9999, 10000}) {
    std::vector<Bytes> records(static_cast<size_t>(count), grfw::ActionRecord({0x0C, 'x'}));
    records.front() = grfw::PlainSprite(1, 1, {9});
    records.back() = grfw::PlainSprite(1, 1, {8});
    const std::string grf =
        grfw::WriteTemp("many-" + std::to_string(count) + ".grf", grfw::FileOf(records));
    const fs::path dir = grfw::FreshFolder("export-digits");
    const CliRun run = RunCli({"export", grf, dir.string()});
    ASSERT_EQ(run.Status, 0) << run.Err;
    const std::string last = std::to_string(count);
    const std::string first = count < 10000 ? "0001" : "00001";
    EXPECT_TRUE(fs::exists(dir / (first + ".png"))) << count;
    EXPECT_TRUE(fs::exists(dir / (last + ".png"))) << count;
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), {}), 3) << count;
    EXPECT_EQ(run.Out.substr(0, run.Out.find(':')),
              "Wrote 3 files for " + last + " sprites to " + dir.string());
  }
}

// A forced export that fails while it puts its files in place leaves the files that were there
// as they were, every one, and nothing of its own. (An export without --force into files that are
// there is refused in the CLI's transcript.)
TEST(CliExport, AFailedForcedExportPutsBackWhatItReplaced) {
  const Bytes three = grfw::File({grfw::PlainSprite(3, 2, {1, 2, 3, 4, 5, 6}, -1, 7),
                                  grfw::PlainSprite(2, 1, {7, 8}), grfw::PlainSprite(1, 1, {200})});
  const std::string grf = grfw::WriteTemp("replaced.grf", three);
  const fs::path dir = grfw::FreshFolder("export-replaced");
  fs::create_directories(dir);
  const std::pair<const char*, const char*> before[] = {
      {"0001.png", "first"}, {"0002.png", "second"}, {"replaced.nfo", "mine"}};
  for (const auto& [name, text] : before) std::ofstream(dir / name) << text;
  // A folder with a file in it cannot be replaced by a picture: the run fails at 0003.png, after
  // 0001.png and 0002.png are in place.
  fs::create_directory(dir / "0003.png");
  std::ofstream(dir / "0003.png" / "keep") << "keep";
  EXPECT_EQ(RunCli({"export", grf, dir.string(), "--force"}).Status, 1);
  for (const auto& [name, text] : before) {
    std::ifstream in(dir / name);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), text) << name;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(dir), {}), 4);
}
