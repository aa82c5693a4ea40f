// A version-2 file kept open: read at positions it gives what a buffer of it gives, and a file
// changed while it is open (cut, replaced, rewritten, grown) is told, never read as it was.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "chunkfile.h"
#include "grf2_chunks.h"
#include "grf_writer.h"
#include "grffile.h"

using namespace vossel;

namespace {

using grfw::Bytes;

// A pseudo-sprite larger than the read window comes first, so the index skips its body; then
// pictures of both depths and forms, and data beside the last picture.
Bytes KeptFile() {
  std::vector<Bytes> data = {grfw::V2Data(0xFF, Bytes(kV2ReadWindow + 1000, 0x3C))};
  std::vector<Bytes> sprites;
  const std::tuple<uint8_t, uint16_t, uint16_t> kinds[] = {{0x04, 40, 30}, {0x0F, 300, 20}};
  for (const auto& [info, w, h] : kinds) {
    const auto id = uint32_t(data.size());
    sprites.push_back(grfw::V2Sprite(id, grfw::RandomImage(info, 0, w, h, 0, 0, id)));
    data.push_back(grfw::V2Ref(id));
  }
  sprites.push_back(grfw::V2Raw(uint32_t(data.size() - 1), {0xFF, 1, 2, 3}));
  return grfw::V2File(data, sprites);
}

std::vector<std::string> Texts(const std::vector<ChunkLine>& lines) {
  std::vector<std::string> texts;
  for (const ChunkLine& line : lines) texts.push_back(std::to_string(line.ItemData) + line.Text);
  return texts;
}

}  // namespace

TEST(KeptOpen, ReadsWhatTheBufferHolds) {
  const Bytes bytes = KeptFile();
  GrfFile file;
  const std::string path = grfw::WriteTemp("kept.grf", bytes);
  ASSERT_EQ(LoadGrfFile(path, file, nullptr, nullptr).End, OpenEnd::Ok);
  std::filesystem::remove(path);  // the file kept open stays readable
  GrfV2Index index;
  IndexGrfV2(bytes.data(), bytes.size(), index, nullptr);
  ASSERT_EQ(SpriteCount(file), 3);
  EXPECT_EQ(file.ProblemCount, 0);
  std::vector<uint8_t> got;
  EXPECT_EQ(SpriteBytes(file, 0, -1, got), GrfResult::Ok);
  EXPECT_TRUE(got == Bytes(kV2ReadWindow + 1000, 0x3C));
  EXPECT_EQ(SpriteBytes(file, 2, 1, got), GrfResult::Ok);
  EXPECT_TRUE(got == Bytes({1, 2, 3}));
  for (int32_t s = 1; s < 3; ++s) {
    SCOPED_TRACE(s);
    const GrfV2Sprite& v = index.Sprites[size_t(s)];
    SpritePicture picture;  // pictures read at positions are compared in the tests of decoding
    EXPECT_EQ(PictureOf(file, s, 0, picture), GrfResult::Ok);
    std::vector<ChunkLine> lines;
    for (const ChunkRecord& chunk : ChunksOf(file, s, 0)) lines.push_back(LineOf(chunk));
    EXPECT_EQ(Texts(lines), Texts(V2ChunkList(bytes.data(), bytes.size(), index, v, v.Default)));
  }
}

// Cut short; written over by another file; the same length with a newer time, as a rewrite in
// place leaves it; bytes appended with the time set back as it was, where only the length tells.
// Each is told in the opened file and in the chunk viewer's own reading.
TEST(KeptOpen, AFileChangedWhileOpenIsTold) {
  const Bytes bytes = KeptFile();
  const Bytes other = grfw::V2File({grfw::V2Ref(1)}, {grfw::V2Raw(1, {0xFF, 9})});
  const std::string size = std::to_string(bytes.size());
  const std::string kinds[] = {
      std::to_string(bytes.size() / 2) + " bytes now, " + size + " then",
      std::to_string(other.size()) + " bytes now, " + size + " then", "been rewritten",
      std::to_string(bytes.size() + 100) + " bytes now, " + size + " then"};
  for (const std::string& kind : kinds) {
    SCOPED_TRACE(kind);
    const std::string path = grfw::WriteTemp("changed.grf", bytes);
    GrfFile file;
    ChunkFile viewed;
    ASSERT_EQ(LoadGrfFile(path, file, nullptr, nullptr).End, OpenEnd::Ok);
    ASSERT_EQ(ScanGrfFile(path, viewed).End, ScanEnd::Complete);
    ChunkCursor cursor = StartChunks(file, 1, 0);
    const auto time = std::filesystem::last_write_time(path);
    if (kind == kinds[0]) std::filesystem::resize_file(path, bytes.size() / 2);
    if (kind == kinds[1]) grfw::WriteTemp("changed.grf", other);
    if (kind == kinds[2]) std::filesystem::last_write_time(path, time + std::chrono::seconds(1));
    if (kind == kinds[3]) {
      std::ofstream(path, std::ios::binary | std::ios::app) << std::string(100, '\x3C');
      std::filesystem::last_write_time(path, time);
    }
    const std::string told = std::string("The file has changed since it was opened: it ") +
                             (kind == kinds[2] ? "has " : "holds ") + kind +
                             "; open it again to see it as it is";
    SpritePicture picture;
    std::vector<uint8_t> got;
    ChunkRecord chunk;
    EXPECT_EQ(PictureOf(file, 1, 0, picture), GrfResult::FileChanged);
    EXPECT_EQ(PictureProblem(file, 1, 0, GrfResult::FileChanged), told);
    EXPECT_EQ(SpriteBytes(file, 0, -1, got), GrfResult::FileChanged);
    EXPECT_EQ(SpriteBytes(file, 2, 1, got), GrfResult::FileChanged);
    EXPECT_TRUE(picture.Rgba.empty() && picture.Indices.empty() && got.empty());
    EXPECT_FALSE(NextChunk(file, cursor, chunk));
    EXPECT_TRUE(cursor.Unreadable && cursor.Done);
    ChunkCursor own = StartChunks(viewed, 1, 0);
    EXPECT_FALSE(NextChunk(viewed, own, chunk));
    EXPECT_TRUE(own.Unreadable);
    EXPECT_EQ(UnreadableText(viewed.File), told);
    std::filesystem::remove(path);
  }
}
