// vossel-cli run as the real binary: what list, info, chunks and sprite print for files of every
// kind of record and chunk and for the real files, against a checked-in transcript; and the exit
// status of every kind of wrong usage and failure.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <regex>

#include "golden.h"
#include "grf_writer.h"
#include "run_cli.h"

using grfw::Bytes;

namespace {

namespace fs = std::filesystem;

// One record of each kind, chunks at the edges of both kinds, and a last record cut short.
Bytes Kinds() {
  Bytes edges;
  grfw::AddData(edges, Bytes(128, 0x11));
  grfw::AddData(edges, Bytes(127, 0x0F));
  edges.insert(edges.end(), {0x80, 0x05, 0xFF, 0x00, 0xE8, 0x01, 0x83, 0x10});
  Bytes file =
      grfw::File({grfw::ActionRecord({1, 2, 3}),
                  grfw::PlainSprite(5, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, -1, -2, 0x41),
                  grfw::PlainSprite(3, 1, {7, 8, 9}, 0, 0, 2),
                  grfw::RunSprite(6, {{{1, {11, 22}}, {4, {33}}}, {}, {{0, Bytes(6, 44)}}}, 3, -2),
                  grfw::SpriteRec(0, 1, 291, 0, 0, edges, 128 + 127 + 16 + 1 + 3 + 16),
                  grfw::RawSprite(8, 0, 3, 0, 5, 6, {})},
                 false);
  grfw::Append(file, grfw::RawSprite(11, 2, 1, 5, 0, 0, {5, 0xAA, 0xBB}));
  return file;
}

std::string Transcript(const std::vector<std::string>& args, const std::string& tmp) {
  std::string line = "$ vossel-cli";
  for (const std::string& a : args) line += " " + a;
  const CliRun run = RunCli(args);
  std::string text = line + "\n" + run.Out + (run.Err.empty() ? "" : "stderr: " + run.Err) +
                     "exit " + std::to_string(run.Status) + "\n\n";
  text = std::regex_replace(text, std::regex(tmp), "<tmp>");
  return std::regex_replace(text, std::regex("in \\d+\\.\\d\\d seconds"), "in N.NN seconds");
}

}  // namespace

TEST(Cli, TranscriptOfEveryCommand) {
  const std::string seventeen = grfw::WriteTemp("seventeen.grf", grfw::SeventeenByteFile());
  const std::string kinds = grfw::WriteTemp("kinds.grf", Kinds());
  const std::string tmp = fs::path(kinds).parent_path().string();
  const std::string base = VOSSEL_BASESET_DIR;
  std::vector<std::vector<std::string>> commands = {{"list", seventeen},
                                                    {"info", seventeen},
                                                    {"chunks", seventeen, "1"},
                                                    {"list", kinds},
                                                    {"info", kinds}};
  for (const char* n : {"1", "2", "3", "4", "5", "6", "7"})
    commands.push_back({"chunks", kinds, n});
  for (const char* n : {"1", "2", "3", "4", "5", "6"}) commands.push_back({"sprite", kinds, n});
  if (fs::exists(base + "/openttd.grf")) {
    for (const char* name : {"/openttd.grf", "/orig_extra.grf"})
      commands.push_back({"info", base + name});
    for (const char* n : {"1", "760", "796"})
      commands.push_back({"chunks", base + "/openttd.grf", n});
  }
  std::string text;
  for (const auto& args : commands) text += Transcript(args, tmp);
  ExpectGolden("cli.txt", text);
}

TEST(Cli, UsageAndExitStatus) {
  const std::string five = grfw::WriteTemp("usage.grf", Kinds());
  const std::string lf = "JASC-PAL\n0100\n1\n1 2 3\n";
  const std::string pal = grfw::WriteTemp("lf.pal", Bytes(lf.begin(), lf.end()));
  const std::string png = (fs::path(five).parent_path() / "usage.png").string();
  const std::string link = (fs::path(five).parent_path() / "vossel-cli-link").string();
  fs::remove(link);
  fs::create_symlink(VOSSEL_CLI_PATH, link);
  const std::string usage = "Usage: vossel-cli sprite FILE N [--png OUT] [--palette PAL]\n";
  const struct {
    std::vector<std::string> Args;
    int Status;
    std::string Err;       // its start; "*" for anything
    std::string Out = "";  // its start; nothing is printed unless it says so
  } cases[] = {
      {{}, 2, "Usage: vossel-cli COMMAND"},
      {{"frobnicate"}, 2, "vossel-cli: unknown command 'frobnicate'"},
      {{"--help"}, 0, "", "Usage: vossel-cli COMMAND"},
      {{"--version"}, 0, "", "vossel-cli 0."},
      {{"list"}, 2, "Usage: vossel-cli list FILE\n"},
      {{"info", "a", "b"}, 2, "Usage: vossel-cli info FILE\n"},
      {{"list", "/nonexistent/x.grf"},
       1,
       "Error 2: No such file or directory (/nonexistent/x.grf)\n"},
      {{"info", grfw::WriteTemp("empty.grf", {})}, 1, "Error "},
      {{"info", grfw::WriteTemp("sixteen.grf", Bytes(16, 1))},
       1,
       "File is too small to be loaded. File must contain atleast one non-action sprite size of 1 "
       "pixel.\n"},
      {{"chunks", five}, 2, "Usage: vossel-cli chunks FILE N\n"},
      {{"chunks", five, "1", "2"}, 2, "Usage: vossel-cli chunks FILE N\n"},
      {{"chunks", five, "0"},
       1,
       "vossel-cli: sprite 0 does not exist: give a number from 1 to 7\n"},
      {{"chunks", five, "8"}, 1, "vossel-cli: sprite 8 does not exist"},
      {{"chunks", grfw::WriteTemp("none.grf", Bytes(20, 0)), "1"},
       1,
       "vossel-cli: sprite 1 does not exist: the file holds no sprite\n"},
      {{"sprite", five, "7"}, 1, "Error! Out of buffer size!\nvossel-cli: sprite 7 does not exist"},
      {{"sprite", five, "99999999999"}, 1, "*"},
      {{"sprite"}, 2, "vossel-cli: sprite needs FILE and N\n" + usage},
      {{"sprite", five, "1", "--png"}, 2, "vossel-cli: --png needs a value\n" + usage},
      {{"sprite", five, "1", "--png", "a", "--png", "b"},
       2,
       "vossel-cli: --png given twice\n" + usage},
      {{"sprite", five, "1", "--palette", "a", "--palette", "b"},
       2,
       "vossel-cli: --palette given twice\n" + usage},
      {{"sprite", five, "1", "--jpg", "a"}, 2, "vossel-cli: unknown option '--jpg'\n" + usage},
      {{"sprite", five, "1", "extra"}, 2, "vossel-cli: unknown option 'extra'\n" + usage},
      {{"sprite", five, "--png", "a", "1"},
       2,
       "vossel-cli: FILE and N come before the options\n" + usage},
      {{"sprite", five, "1", "--palette", pal}, 1, "Invalid palette file or unknown format\n"},
      {{"sprite", five, "1", "--png", png, "--palette", pal + ".missing"},
       1,
       "Invalid palette file or unknown format\n"},
      {{"sprite", five, "2", "--png", "/nonexistent/x.png"},
       1,
       "Error! Out of buffer size!\nvossel-cli: cannot write the PNG file '/nonexistent/x.png'\n",
       "Viewing sprite 2 (5 x 2)\n"},
      {{"sprite", five, "6", "--png", png},
       0,
       "Error! Out of buffer size!\nvossel-cli: sprite 6 has no pixels (0 x 3); no PNG written\n",
       "Viewing sprite 6 (0 x 3)\n"},
  };
  for (const auto& c : cases) {
    const CliRun run = RunCli(c.Args);
    const std::string what = c.Args.empty() ? "no arguments" : c.Args[0] + " " + c.Args.back();
    EXPECT_EQ(run.Status, c.Status) << what;
    EXPECT_TRUE(c.Err == "*" || run.Err.rfind(c.Err, 0) == 0) << what << ": " << run.Err;
    EXPECT_EQ(run.Out.substr(0, c.Out.size()), c.Out) << what;
    EXPECT_EQ(run.Out.empty(), c.Out.empty()) << what;
  }
  EXPECT_FALSE(fs::exists(png));
  // Through a link, the palette beside the real program is found.
  EXPECT_EQ(
      std::system(
          ("'" + link + "' sprite '" + five + "' 4 --png '" + png + "' 2>/dev/null >&2").c_str()),
      0);
  EXPECT_TRUE(fs::exists(png));
}
