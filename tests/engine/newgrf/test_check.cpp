// The checker: a table of faulty files, each giving exactly its finding beside a clean twin that
// gives none; real files that give no error; a cut file said once.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <sstream>

#include "case_file.h"
#include "check.h"
#include "grf_writer.h"
#include "items.h"
#include "nfo_bytes.h"
#include "open_grf.h"

using namespace vossel;
using grfw::Bytes;

namespace {

struct Checked : OpenedGrf {
  std::vector<Finding> Findings;
};

std::unique_ptr<Checked> Check(const std::string& path) {
  auto c = std::make_unique<Checked>();
  OpenGrf(path, *c);
  c->Findings = CheckGrf(c->File, c->Reading, ReadItems(c->Reading));
  return c;
}

const std::vector<std::string> kBase = {
    "count",   "08 08 \"TEST\" \"n\" 00 \"d\" 00", "00 00 01 01 00 09 64 00", "01 00 01 01",
    "picture", "02 00 05 01 01 00 00 00 00",       "03 00 01 00 00 05 00",
};

// A 2x2 picture of one alternative per "depth/zoom" word, in a version-2 file.
std::vector<grfw::Image2> Alternatives(const std::string& words) {
  std::vector<grfw::Image2> out;
  std::stringstream in(words);
  for (std::string w; in >> w;) {
    const bool deep = w.rfind("32/", 0) == 0;
    const auto zoom = static_cast<uint8_t>(std::stoi(w.substr(w.find('/') + 1)));
    out.push_back({uint8_t(deep ? 3 : 4), zoom, 2, 2, 0, 0, Bytes(deep ? 16 : 4, 7)});
  }
  return out;
}

Bytes CaseFile(const std::vector<std::string>& given) {
  std::vector<std::string> lines;
  size_t chop = 0;
  bool v2 = false;
  for (const std::string& line : given) {
    if (line == "base")
      lines.insert(lines.end(), kBase.begin(), kBase.end());
    else if (line.rfind("chop ", 0) == 0)
      chop = std::stoul(line.substr(5));
    else if (line == "v2")
      v2 = true;
    else
      lines.push_back(line);
  }
  // Version 1: records. Version 2: data entries and the pictures' alternatives.
  std::vector<Bytes> records, sprites;
  const auto pseudo = [&](const Bytes& data) {
    records.push_back(v2 ? grfw::V2Data(0xFF, data) : grfw::ActionRecord(data));
  };
  const auto picture = [&](const std::vector<grfw::Image2>& alternatives) {
    if (!v2) {
      const grfw::Image2& im = alternatives[0];
      return records.push_back(
          grfw::PlainSprite(im.width, uint8_t(im.height), im.pixels, im.x, im.y));
    }
    const auto id = static_cast<uint32_t>(records.size() + 1);
    records.push_back(grfw::V2Ref(id));
    for (const grfw::Image2& im : alternatives) sprites.push_back(grfw::V2Sprite(id, im));
  };
  for (const std::string& line : lines) {
    if (line == "picture" || line == "blank") {
      const uint8_t v = line == "picture" ? 7 : 0;
      picture({{4, 0, 2, 2, 0, 0, {v, v, 0, v}}});
    } else if (line.rfind("alts ", 0) == 0) {
      picture(Alternatives(line.substr(5)));
    } else if (line.rfind("view ", 0) == 0) {
      std::stringstream in(line.substr(5));
      int w = 0, h = 0, x = 0, y = 0;
      in >> w >> h >> x >> y;
      picture({{4, 0, uint16_t(w), uint16_t(h), int16_t(x), int16_t(y), Bytes(size_t(w * h), 9)}});
    } else if (line == "recolour") {
      Bytes map(257, 0);
      for (size_t i = 1; i < map.size(); ++i) map[i] = static_cast<uint8_t>(i - 1);
      pseudo(map);
    } else if (line.rfind("count", 0) == 0) {
      const uint32_t n =
          line.size() > 6 ? std::stoul(line.substr(6)) : static_cast<uint32_t>(lines.size() - 1);
      pseudo({uint8_t(n), uint8_t(n >> 8), 0, 0});
    } else {
      pseudo(line.find('"') != std::string::npos ? ParseNfoBytes(line).value() : Hex(line));
    }
  }
  if (v2) return grfw::V2File(records, sprites);
  Bytes file = grfw::FileOf(records, chop == 0);
  file.resize(file.size() - chop);
  return file;
}

std::vector<std::string> Codes(const std::vector<Finding>& findings) {
  std::vector<std::string> out;
  for (const Finding& f : findings)
    out.push_back(CodeText(f.Code) + "@" + (f.Sprite < 0 ? "-" : std::to_string(f.Sprite)));
  return out;
}

}  // namespace

TEST(Check, EachFaultGivesExactlyItsFindingAndItsTwinNone) {
  const std::vector<std::vector<std::string>> cases = CaseBlocks("engine/newgrf/check_cases.txt");
  ASSERT_GE(cases.size(), 20u);
  std::map<CheckCode, int> covered;
  for (const std::vector<std::string>& c : cases) {
    SCOPED_TRACE(c[0]);
    std::vector<std::string> expect, files[2];  // the faulty file's lines and its twin's
    size_t into = 0;
    for (size_t i = 1; i < c.size(); ++i) {
      std::stringstream words(c[i].rfind("expect ", 0) == 0 ? c[i].substr(7) : "");
      for (std::string w; words >> w;) expect.push_back(w);
      if (c[i] == "bad" || c[i] == "good")
        into = c[i] == "good";
      else if (c[i].rfind("expect ", 0) != 0)
        files[into].push_back(c[i]);
    }
    const auto bad = Check(grfw::WriteTemp("check-bad.grf", CaseFile(files[0])));
    EXPECT_EQ(Codes(bad->Findings), expect);
    for (const Finding& f : bad->Findings) {
      ++covered[f.Code];
      EXPECT_FALSE(FindingText(f).empty());
    }
    const auto good = Check(grfw::WriteTemp("check-good.grf", CaseFile(files[1])));
    EXPECT_EQ(Codes(good->Findings), std::vector<std::string>{});
  }
  // Every code the table names is given by some case, but for the version-2 damage of the CLI's
  // transcript, and a loop, which no file can make: a group refers only to groups defined before.
  for (const CodeRow& row : CheckCodes()) {
    if (row.Code == CheckCode::ContainerProblem || row.Code == CheckCode::PictureUnreadable ||
        row.Code == CheckCode::GroupLoop)
      continue;
    EXPECT_TRUE(covered.count(row.Code)) << CodeText(row.Code);
  }
}

TEST(Check, CutVersion2FileIsSaidOnceWithTheSpritesLost) {
  std::vector<Bytes> data, sprites;
  for (uint32_t id = 1; id <= 40; ++id) {
    data.push_back(grfw::V2Ref(id));
    sprites.push_back(grfw::V2Sprite(id, grfw::RandomImage(4, 0, 8, 8, 0, 0, id)));
  }
  const Bytes whole = grfw::V2File(data, sprites);
  const auto clean = Check(grfw::WriteTemp("check-v2.grf", whole));
  for (const Finding& f : clean->Findings) EXPECT_NE(f.Level, Severity::Error) << FindingText(f);
  // Cut inside the sprite section, ten entries from its end.
  size_t tail = 4;
  for (size_t k = 30; k < sprites.size(); ++k) tail += sprites[k].size();
  const Bytes cut(whole.begin(), whole.end() - static_cast<std::ptrdiff_t>(tail + 3));
  const auto c = Check(grfw::WriteTemp("check-v2-cut.grf", cut));
  ASSERT_EQ(Codes(c->Findings), std::vector<std::string>{"V107@-"});
  EXPECT_EQ(c->Findings[0].Values[0], static_cast<int64_t>(cut.size()));
  EXPECT_EQ(c->Findings[0].Values[1], 11);
}

TEST(Check, RealFilesGiveNoError) {
  // What each gives, by code: all of it real (see the files' own bytes). The Mars houses draw
  // tubes to their neighbours with boxes wholly beside the tile, four to a layout.
  const std::map<std::string, std::map<std::string, int>> want = {
      {"cargo-payment-randomiser.grf", {{"V303", 1}}},
      {"ekranoplan.grf", {{"V207", 11}, {"V303", 1}}},
      {"ogfx-mars-houses.grf", {{"V206", 103}, {"V405", 24}}},
      {"ogfx-mars-rv.grf", {}},
  };
  for (const auto& [name, codes] : want) {
    SCOPED_TRACE(name);
    const auto c = Check(NewGrfPath(name));
    std::map<std::string, int> got;
    for (const Finding& f : c->Findings) {
      EXPECT_NE(f.Level, Severity::Error) << FindingText(f);
      ++got[CodeText(f.Code)];
    }
    EXPECT_EQ(got, codes);
  }
}

TEST(Check, CodesReadBackAsWritten) {
  for (const CodeRow& row : CheckCodes()) {
    CheckCode code{};
    ASSERT_TRUE(ParseCheckCode(CodeText(row.Code), code));
    EXPECT_EQ(code, row.Code);
  }
  CheckCode code{};
  EXPECT_TRUE(ParseCheckCode("v201", code));
  EXPECT_EQ(code, CheckCode::UndefinedGroup);
  EXPECT_FALSE(ParseCheckCode("V999", code));
  EXPECT_FALSE(ParseCheckCode("V", code));
  EXPECT_FALSE(ParseCheckCode("20x", code));
}
