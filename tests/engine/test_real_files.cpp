// The two GRF files of Debian's openttd-data, loaded whole.
#include <gtest/gtest.h>

#include <filesystem>

#include "fileio.h"
#include "load_helper.h"
#include "text.h"

namespace {

void CheckRealFile(const std::string& name) {
  const std::string path = std::string(VOSSEL_BASESET_DIR) + "/" + name;
  if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " is not installed";
  const FileReadResult file = ReadWholeFile(path);
  ASSERT_TRUE(file.Ok) << file.Description;
  const Loaded l = Load(file.Bytes);
  EXPECT_TRUE(l.Messages.empty());
  ASSERT_GT(l.Count(), 100);
  int64_t compressed = 0, decoded = 0, offset = 0;
  int actions = 0;
  for (int i = 0; i < l.Count(); ++i) {
    const SpriteRecord& r = l.At(i);
    EXPECT_EQ(r.DataOffset, offset) << i;
    if (r.Flags == 255) {
      ++actions;
      EXPECT_EQ(r.Size, r.Width) << i;
      EXPECT_EQ(r.Height, 1) << i;
    } else {
      EXPECT_EQ(r.Size, int32_t{r.Width} * r.Height) << i;
    }
    compressed += r.CompressedSize;
    decoded += r.Size;
    offset += r.Size;
  }
  EXPECT_GT(actions, 0);
  EXPECT_EQ(l.Outcome.Totals.CompressedTotal, compressed);
  EXPECT_EQ(l.Outcome.Totals.DecodedTotal, decoded);
  EXPECT_EQ(static_cast<int64_t>(l.Store.SpriteData.size()), decoded);
  const std::string status = StatusText(path, l.Outcome.Totals.CompressedTotal,
                                        l.Outcome.Totals.DecodedTotal, l.Outcome.FileLength);
  EXPECT_NE(status.find(" compressed of " + FormatSize(static_cast<int32_t>(decoded))),
            std::string::npos);
  EXPECT_NE(status.find("- Filesize " + FormatSize(static_cast<int32_t>(file.Bytes.size()))),
            std::string::npos);
}

}  // namespace

TEST(RealFiles, OpenttdGrfLoadsCompletely) {
  CheckRealFile("openttd.grf");
}
TEST(RealFiles, OrigExtraGrfLoadsCompletely) {
  CheckRealFile("orig_extra.grf");
}
