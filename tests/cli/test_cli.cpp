// vossel-cli run as the real binary: what it prints and its exit status, for every command on
// files of every kind of record and chunk and on the real files, and for every kind of wrong usage;
// standard output that cannot be written; the rough edges of the arguments.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <regex>
#include <sstream>

#include "actions.h"
#include "case_file.h"
#include "grf_writer.h"
#include "nfo_bytes.h"
#include "reference.h"
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

// Version 2. Sprite 1: three alternatives of id 1, one of them tile form wider than 256; 2: a
// pseudo-sprite; 3: only 32-bit, none at normal zoom; 4: an id the file lacks; 5: a stream that
// ends too soon; 6: only 8-bit, none at normal zoom; 7: 32-bit in4 and out2; 8: id 1 again; 9: an
// entry that holds no image. Id 9 is never used; the sprite section is not in id order.
Bytes Version2() {
  using grfw::V2Ref, grfw::V2Sprite;
  const auto Random = grfw::RandomImage;
  return grfw::V2File(
      {V2Ref(1), grfw::V2Data(0xFF, {9, 8, 7}), V2Ref(2), V2Ref(99), V2Ref(3), V2Ref(7), V2Ref(4),
       V2Ref(1), V2Ref(6)},
      {V2Sprite(7, Random(0x04, 1, 2, 2, 0, 0, 7)), V2Sprite(7, Random(0x04, 3, 2, 2, 0, 0, 8)),
       V2Sprite(7, Random(0x04, 2, 2, 2, 0, 0, 9)), V2Sprite(9, Random(0x04, 0, 2, 2, 0, 0, 10)),
       V2Sprite(1, Random(0x04, 0, 5, 3, -2, 1, 2)), V2Sprite(1, Random(0x07, 0, 4, 2, 0, 0, 3)),
       V2Sprite(1, Random(0x0B, 1, 300, 2, -150, -1, 4)),
       V2Sprite(2, Random(0x01, 2, 6, 6, 3, 3, 5)), V2Sprite(2, Random(0x0D, 3, 3, 3, 0, 0, 6)),
       grfw::V2Raw(3, {0x04, 0, 2, 0, 2, 0, 0, 0, 0, 0, 1, 7}),
       V2Sprite(4, Random(0x01, 1, 2, 2, 0, 0, 11)), V2Sprite(4, Random(0x07, 3, 2, 2, 0, 0, 12)),
       grfw::V2Raw(6, {0xFF, 1, 2, 3})});
}

// A pseudo-sprite and a picture, for diff.
Bytes Small(uint8_t pixel, int16_t x) {
  return grfw::File({grfw::ActionRecord({0x0C, 'n', 'o', 't', 'e'}),
                     grfw::PlainSprite(3, 2, {1, 2, 3, 4, 5, pixel}, x, 0)});
}

// Pictures of 4 x 4, 5 x 3, 1 x 7, 90 x 20 and 32 x 32 around a pseudo-sprite, for sheet.
Bytes Range() {
  std::vector<Bytes> records;
  for (const auto& [w, h] : {std::pair{4, 4}, {5, 3}, {0, 0}, {1, 7}, {90, 20}, {32, 32}})
    records.push_back(w == 0 ? grfw::ActionRecord({0x08, 1, 2})
                             : grfw::PlainSprite(uint16_t(w), uint8_t(h), Bytes(size_t(w * h), 7)));
  return grfw::FileOf(records);
}

const std::string kData = std::string(VOSSEL_TESTS_DIR) + "/data/newgrf";

// The command, what it printed and its exit status; whether a PNG it was asked for is there.
std::string Transcript(const std::vector<std::string>& args, const std::string& tmp) {
  std::string text = "$ vossel-cli";
  for (const std::string& a : args) text += " " + a;
  auto png = std::find(args.begin(), args.end(), "--png");
  if (png != args.end() && (png + 1 == args.end() || png[1].rfind(tmp, 0) != 0)) png = args.end();
  if (png != args.end()) fs::remove(png[1]);
  const CliRun run = RunCli(args);
  text += "\n" + run.Out + (run.Err.empty() ? "" : "stderr: " + run.Err) + "exit " +
          std::to_string(run.Status) + "\n";
  if (png != args.end()) text += fs::exists(png[1]) ? "PNG written\n" : "no PNG\n";
  text = std::regex_replace(text + "\n", std::regex(tmp), "<tmp>");
  text = std::regex_replace(text, std::regex(kData), "<data>");
  text = std::regex_replace(text, std::regex("Milliseconds\": \\d+"), "Milliseconds\": N");
  return std::regex_replace(text, std::regex("in \\d+\\.\\d\\d seconds"), "in N.NN seconds");
}

}  // namespace

// The runs of commands.txt: every command on files of every kind and on the real files, and
// every kind of wrong usage and failure, against the checked-in transcript.
TEST(Cli, Transcript) {
  const std::string lf = "JASC-PAL\n0100\n1\n1 2 3\n";
  const std::string tmp =
      fs::path(grfw::WriteTemp("lf.pal", Bytes(lf.begin(), lf.end()))).parent_path();
  const std::pair<const char*, Bytes> files[] = {
      {"seventeen.grf", grfw::SeventeenByteFile()},
      {"kinds.grf", Kinds()},
      {"empty.grf", {}},
      {"sixteen.grf", Bytes(16, 1)},
      {"none.grf", Bytes(20, 0)},
      {"v2.grf", Version2()},
      {"diff-a.grf", Small(6, 0)},
      {"diff-b.grf", Small(7, -2)},
      {"diff-c.grf", Small(7, 0)},
      {"range.grf", Range()},
      {"one.grf", grfw::V2File({grfw::V2Data(0xFF, {0x0C, 0x78})}, {})},
      {"many.grf", grfw::FileOf(std::vector<Bytes>(200, grfw::PlainSprite(1, 1, {9})))}};
  for (const auto& [name, bytes] : files) grfw::WriteTemp(name, bytes);
  std::string text;
  for (std::string line : CaseLines("cli/commands.txt")) {
    line = std::regex_replace(line, std::regex("<tmp>"), tmp);
    line = std::regex_replace(line, std::regex("<data>"), kData);
    std::istringstream words(std::regex_replace(line, std::regex("<base>"), VOSSEL_BASESET_DIR));
    std::vector<std::string> args;
    for (std::string w; words >> w;)
      if (w != "-") args.push_back(w);
    text += Transcript(args, tmp);
  }
  ExpectGolden("cli.txt", text);
  // Through a link, as installed, the palette beside the real program is found.
  fs::remove(tmp + "/vossel-cli-link");
  fs::create_symlink(VOSSEL_CLI_PATH, tmp + "/vossel-cli-link");
  EXPECT_EQ(std::system((tmp + "/vossel-cli-link sprite " + tmp + "/seventeen.grf 1 --png " + tmp +
                         "/linked.png --force 2>/dev/null")
                            .c_str()),
            0);
}

// The NFO listing read back into bytes gives every pseudo-sprite's bytes, as the plain decoder or
// a walk of the data section finds them in the file, on the real files and on random ones.
TEST(Cli, NfoReadsBackIntoEveryPseudoSprite) {
  std::vector<std::pair<std::string, std::map<int, Bytes>>> files;
  const std::string base = VOSSEL_BASESET_DIR;
  for (const std::string name : {"openttd.grf", "orig_extra.grf"}) {
    if (!fs::exists(base + "/" + name)) continue;
    const Bytes bytes = grfw::ReadFile(base + "/" + name);
    const vossel::ReferenceLoad ref =
        vossel::ReferenceDecode(bytes.data(), static_cast<int32_t>(bytes.size()), {});
    std::map<int, Bytes> pseudo;
    for (int i = 0; i < ref.Count; ++i) {
      const vossel::SpriteRecord& r = ref.Table[static_cast<size_t>(i)];
      if (r.Flags == 0xFF)
        pseudo[i].assign(&ref.Data[r.DataOffset], &ref.Data[r.DataOffset] + r.Size);
    }
    files.emplace_back(base + "/" + name, pseudo);
  }
  // Version 2: the data section's entries of info FF, walked here.
  if (const std::string v2 = base + "/opengfx/ogfxe_extra.grf"; fs::exists(v2)) {
    const Bytes b = grfw::ReadFile(v2);
    std::map<int, Bytes> pseudo;
    for (size_t at = 15, n = 0;; ++n) {
      const size_t size = b[at] | b[at + 1] << 8 | b[at + 2] << 16 | size_t{b[at + 3]} << 24;
      if (size == 0) break;
      if (b[at + 4] == 0xFF) pseudo[int(n)].assign(&b[at + 5], &b[at + 5] + size);
      at += 5 + size;
    }
    files.emplace_back(v2, pseudo);
  }
  std::mt19937 rng(20);
  for (int round = 0; round < 20; ++round) {
    std::vector<Bytes> records;
    std::map<int, Bytes> pseudo;
    for (int i = 0; i < 30; ++i) {
      if (rng() % 2) {
        Bytes data(1 + rng() % 300);
        for (uint8_t& c : data) c = rng() % 3 ? uint8_t(0x20 + rng() % 95) : uint8_t(rng());
        records.push_back(grfw::ActionRecord(pseudo[i] = data));
      } else {
        records.push_back(grfw::PlainSprite(2, 1, {1, 2}));
      }
    }
    files.emplace_back(
        grfw::WriteTemp("nfo-" + std::to_string(round) + ".grf", grfw::FileOf(records)), pseudo);
  }
  const std::regex line("(\\d+) \\* (\\d+) (.*)");
  for (const auto& [path, pseudo] : files) {
    const CliRun run = RunCli({"nfo", path});
    ASSERT_EQ(run.Status, 0) << path;
    std::map<int, Bytes> read;
    std::istringstream out(run.Out);
    std::smatch m;
    for (std::string text; std::getline(out, text);) {
      if (!std::regex_match(text, m, line)) continue;
      read[std::stoi(m[1])] = vossel::ParseNfoBytes(m[3]).value_or(Bytes{});
      EXPECT_EQ(read[std::stoi(m[1])].size(), std::stoul(m[2])) << path << ": " << text;
    }
    EXPECT_EQ(read, pseudo) << path;
  }
}

// Standard output that cannot be written fails every command that prints, naming why.
TEST(CliRoughEdges, AFullStandardOutputFails) {
  const std::string grf = grfw::WriteTemp(
      "full.grf",
      grfw::File({grfw::ActionRecord({1, 2, 3}), grfw::PlainSprite(2, 2, {1, 2, 3, 4})}));
  const std::vector<std::vector<std::string>> commands = {{"list", grf},
                                                          {"info", grf},
                                                          {"about", grf},
                                                          {"nfo", grf},
                                                          {"sprite", grf, "2"},
                                                          {"chunks", grf, "2"},
                                                          {"list", grf, "--json"},
                                                          {"sprite", grf, "1", "--json"},
                                                          {"sprite", grf, "2", "--png", "-"}};
  for (const std::vector<std::string>& args : commands) {
    const CliRun run = RunCli(args, "/dev/full");
    EXPECT_EQ(run.Status, 1) << args[0];
    EXPECT_EQ(run.Err, "vossel-cli: cannot write to standard output: No space left on device\n")
        << args[0];
  }
}

// "-" is standard output, and not beside --json. (Palette and colour names, unknown options and
// sprites out of range are in the transcript.)
TEST(CliRoughEdges, ADashIsStandardOutput) {
  const std::string grf = grfw::WriteTemp(
      "edges.grf",
      grfw::File({grfw::ActionRecord({1, 2, 3}), grfw::PlainSprite(2, 2, {1, 2, 3, 4}, -1, 2)}));
  const std::string file = (fs::path(grf).parent_path() / "edges.png").string();
  fs::remove(file);
  ASSERT_EQ(RunCli({"sprite", grf, "2", "--png", file}).Status, 0);
  const CliRun run = RunCli({"sprite", grf, "2", "--png", "-"});
  EXPECT_EQ(run.Status, 0) << run.Err;
  const Bytes written = grfw::ReadFile(file);
  EXPECT_EQ(run.Out, std::string(written.begin(), written.end()));
  EXPECT_EQ(RunCli({"sprite", grf, "2", "--png", "-", "--json"}).Status, 2);
}
