#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "grf_writer.h"
#include "run_cli.h"

namespace {

const char kOutOfBuffer[] = "Error! Out of buffer size!\n";
const char kTooSmall[] =
    "File is too small to be loaded. File must contain atleast one non-action sprite size of 1 "
    "pixel.\n";

// The worked example's record without its zero word.
grfw::Bytes WorkedRecord() {
  grfw::Bytes b = grfw::SeventeenByteFile();
  b.resize(15);
  return b;
}

}  // namespace

TEST(CliChunks, WorkedExampleExactOutput) {
  const std::string path = grfw::WriteTemp("cli-chunks-17.grf", grfw::SeventeenByteFile());
  const CliRun run = RunCli({"chunks", path, "1"});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out,
            "10\tData chunk of 2 bytes, 0A 0B\n"
            "13\tOffset chunk, 2 bytes of data from position 0\n");
  EXPECT_EQ(run.Err, "");
}

TEST(CliChunks, ListsTheChosenSpriteAmongSeveral) {
  const std::string path = grfw::WriteTemp(
      "cli-chunks-three.grf", grfw::File({WorkedRecord(), grfw::ActionRecord({1, 2, 3}),
                                          grfw::RawSprite(11, 0, 1, 3, 0, 0, {0xE9, 0x02})}));
  CliRun run = RunCli({"chunks", path, "2"});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out, "18\tAction sprite, 3 bytes\n");
  run = RunCli({"chunks", path, "3"});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out, "31\tOffset chunk, 3 bytes of data from position -258\n");
}

TEST(CliChunks, NumberOutsideTheSpritesFails) {
  const std::string path = grfw::WriteTemp("cli-chunks-range.grf", grfw::SeventeenByteFile());
  for (const char* n : {"0", "2", "-1", "99999999999"}) {
    SCOPED_TRACE(n);
    const CliRun run = RunCli({"chunks", path, n});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, "");
    EXPECT_NE(run.Err.find("sprite"), std::string::npos) << run.Err;
  }
  // A file with no sprite at all has no number to give.
  const CliRun run =
      RunCli({"chunks", grfw::WriteTemp("cli-chunks-none.grf", grfw::Bytes(20, 0)), "1"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Out, "");
}

TEST(CliChunks, TooSmallAndUnreadableFiles) {
  grfw::Bytes small = grfw::SeventeenByteFile();
  small.pop_back();
  CliRun run = RunCli({"chunks", grfw::WriteTemp("cli-chunks-16.grf", small), "1"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Out, "");
  EXPECT_EQ(run.Err, kTooSmall);

  const std::string missing = grfw::WriteTemp("cli-chunks-x.grf", small) + ".missing";
  run = RunCli({"chunks", missing, "1"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Out, "");
  EXPECT_EQ(run.Err, "Error " + std::to_string(ENOENT) + ": " + std::strerror(ENOENT) + " (" +
                         missing + ")\n");

  // A file of no bytes cannot be read; it is not too small.
  const std::string empty = grfw::WriteTemp("cli-chunks-empty.grf", {});
  run = RunCli({"chunks", empty, "1"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Err.rfind("Error ", 0), 0u) << run.Err;
  EXPECT_NE(run.Err.find(" (" + empty + ")\n"), std::string::npos) << run.Err;
}

TEST(CliChunks, InvalidStreamIsReportedAndTheSpritesBeforeStay) {
  grfw::Bytes f = grfw::File({WorkedRecord(), WorkedRecord()}, false);
  grfw::Append(f, grfw::RawSprite(10, 0, 1, 2, 0, 0, {0x03, 1, 2, 3}));  // 3 bytes of 2
  grfw::Append(f, grfw::File({WorkedRecord()}));
  const std::string path = grfw::WriteTemp("cli-chunks-invalid.grf", f);
  CliRun run = RunCli({"chunks", path, "2"});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Err, kOutOfBuffer);
  EXPECT_EQ(run.Out,
            "25\tData chunk of 2 bytes, 0A 0B\n"
            "28\tOffset chunk, 2 bytes of data from position 0\n");
  run = RunCli({"chunks", path, "3"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Out, "");
  EXPECT_EQ(run.Err.rfind(kOutOfBuffer, 0), 0u) << run.Err;
}

TEST(CliChunks, WrongNumberOfArgumentsIsUsage) {
  const std::string path = grfw::WriteTemp("cli-chunks-usage.grf", grfw::SeventeenByteFile());
  for (const auto& args :
       {std::vector<std::string>{"chunks"}, std::vector<std::string>{"chunks", path},
        std::vector<std::string>{"chunks", path, "1", "2"},
        std::vector<std::string>{"chunks", path, "x"}, std::vector<std::string>{"chunks", path, ""},
        std::vector<std::string>{"chunks", path, "1x"}}) {
    const CliRun run = RunCli(args);
    EXPECT_EQ(run.Status, 2);
    EXPECT_EQ(run.Out, "");
    EXPECT_NE(run.Err.find("Usage: vossel-cli chunks FILE N"), std::string::npos);
  }
}
