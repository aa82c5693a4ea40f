// vossel-cli list and info, run as the real binary.
#include <gtest/gtest.h>

#include <filesystem>

#include "grf_writer.h"
#include "run_cli.h"

TEST(CliList, PrintsOneTabSeparatedLinePerSprite) {
  const std::string path = grfw::WriteTemp("cli17.grf", grfw::SeventeenByteFile());
  const CliRun run = RunCli({"list", path});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out, "0001\t002\t002\t00004\t00000000\n");
  EXPECT_EQ(run.Err, "");
  const std::string two = grfw::WriteTemp(
      "cli2.grf",
      grfw::File({grfw::ActionRecord(grfw::Bytes(10, 1)), grfw::PlainSprite(1, 1, {2}, 0, 0, 4)}));
  EXPECT_EQ(RunCli({"list", two}).Out,
            "0001\t010\t001\t00010\t11111111\n0002\t001\t001\t00001\t00000100\n");
}

TEST(CliInfo, PrintsTheStatusTextThenTheMessagesNewestFirst) {
  const std::string path = grfw::WriteTemp("info17.grf", grfw::SeventeenByteFile());
  const CliRun run = RunCli({"info", path});
  EXPECT_EQ(run.Status, 0);
  const std::string expected_head = path +
                                    "\n- Compression ratio: -25.00 %\n- 5 bytes compressed of 4 "
                                    "bytes uncompressed\n- Filesize 17 bytes\n\n*** '" +
                                    path + "' loaded ***\nLoaded 1 sprites in ";
  EXPECT_EQ(run.Out.substr(0, expected_head.size()), expected_head);
  EXPECT_NE(run.Out.find(" seconds\nPrepared memory in "), std::string::npos);
  EXPECT_EQ(run.Out.back(), '\n');
}

TEST(CliInfo, OverrunGoesToStandardErrorAndTheLoadRunsToItsEnd) {
  grfw::Bytes bad;
  grfw::AddData(bad, {1, 2, 3, 4, 5});
  const std::string path = grfw::WriteTemp(
      "over.grf",
      grfw::File({grfw::PlainSprite(1, 1, {7}), grfw::RawSprite(12, 0, 2, 2, 0, 0, bad)}));
  const CliRun run = RunCli({"info", path});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Err, "Error! Out of buffer size!\n");
  EXPECT_NE(run.Out.find("Loaded 1 sprites in "), std::string::npos);
}

TEST(CliInfo, FilesThatCannotBeLoaded) {
  grfw::Bytes bytes = grfw::SeventeenByteFile();
  bytes.pop_back();
  const std::string sixteen = grfw::WriteTemp("six.grf", bytes);
  CliRun run = RunCli({"info", sixteen});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Out, "");
  EXPECT_EQ(run.Err,
            "File is too small to be loaded. File must contain atleast one non-action sprite size "
            "of 1 pixel.\n");
  run = RunCli({"list", std::string("/nonexistent/x.grf")});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Err, "Error 2: No such file or directory (/nonexistent/x.grf)\n");
  // A file of no bytes takes the read failure, not the too-small message.
  run = RunCli({"info", grfw::WriteTemp("zero.grf", {})});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Err.rfind("Error ", 0), 0u);
}

TEST(CliUsage, WrongUsageExitsWithTwo) {
  EXPECT_EQ(RunCli({}).Status, 2);
  EXPECT_EQ(RunCli({"list"}).Status, 2);
  EXPECT_EQ(RunCli({"info", "a", std::string("b")}).Status, 2);
  EXPECT_EQ(RunCli({"frobnicate"}).Status, 2);
  const CliRun help = RunCli({"--help"});
  EXPECT_EQ(help.Status, 0);
  EXPECT_NE(help.Out.find("list FILE"), std::string::npos);
  const CliRun version = RunCli({"--version"});
  EXPECT_EQ(version.Status, 0);
  EXPECT_EQ(version.Out.rfind("vossel-cli ", 0), 0u);
}
