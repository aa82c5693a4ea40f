// The items of a NewGRF: real files checked against values decoded here by hand from their bytes,
// case files of groups, properties and damage, and random files whose graph the test knows.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "actions.h"
#include "case_file.h"
#include "grf_writer.h"
#include "grffile.h"
#include "items.h"
#include "nfo_bytes.h"
#include "open_grf.h"
#include "roles.h"

using namespace vossel;
using grfw::Bytes;

namespace {

struct Loaded : OpenedGrf {
  GrfItems Items;
};

std::unique_ptr<Loaded> Load(const std::string& path) {
  auto l = std::make_unique<Loaded>();
  OpenGrf(path, *l);
  l->Items = ReadItems(l->Reading);
  return l;
}

// --- A decoder written here from the documented layouts alone
// ---------------------------------------------

struct HandVehicle {
  std::string Name;
  uint32_t Date = 0, Speed = 0, Capacity = 0;
  bool HasDate = false, HasSpeed = false, HasCapacity = false;
};

// Days since 1 January of year 0 as a calendar date, year by year.
std::string HandDate(uint32_t days) {
  int year = 0;
  auto leap = [](int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; };
  while (days >= (leap(year) ? 366u : 365u)) days -= leap(year) ? 366 : 365, ++year;
  const int months[] = {31, leap(year) ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  int month = 0;
  while (days >= static_cast<uint32_t>(months[month])) days -= months[month++];
  char text[48];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month + 1, int(days) + 1);
  return text;
}

// Property sizes of road vehicles (01) and ships (02): W, D, a counted list (L), an extended byte
// (X); every other property a byte.
char HandSize(uint8_t feature, uint8_t prop) {
  std::istringstream sizes(feature == 1 ? "1D W 1E W 22 W 0A D 16 D 1F D 24 L 25 L 20 X"
                                        : "0D W 18 W 19 W 1D W 11 D 1A D 1E L 1F L 1B X");
  std::string number, size;
  while (sizes >> number >> size)
    if (std::stoul(number, nullptr, 16) == prop) return size[0];
  return 'B';
}

// Pseudo-sprites as the engine reads them, an empty one standing for a picture.
std::vector<SpriteInput> Inputs(const std::vector<Bytes>& own) {
  std::vector<SpriteInput> inputs;
  for (const Bytes& b : own)
    inputs.push_back({b.empty() ? SpriteKind::Picture : SpriteKind::Pseudo, b.data(), b.size()});
  return inputs;
}

// Walks the pseudo-sprites of a file for what its Action 00 and 04 say of vehicles of `feature`.
// Members of Action 01 blocks here are pictures or 257-byte recolour maps, which are passed.
std::map<uint32_t, HandVehicle> HandVehicles(const Loaded& l, uint8_t feature) {
  std::map<uint32_t, HandVehicle> out;
  const uint8_t dateProp = feature == 1 ? 0x1F : 0x1A, speedProp = feature == 1 ? 0x08 : 0x0B,
                capacityProp = feature == 1 ? 0x0F : 0x0D;
  for (const Bytes& b : l.Reading.Bytes) {
    if (b.size() < 5 || b.size() == 257 || b[1] != feature) continue;
    size_t at = 2;
    auto ext = [&] {
      uint32_t v = b[at++];
      if (v == 0xFF) v = b[at] | (b[at + 1] << 8), at += 2;
      return v;
    };
    if (b[0] == 0x04 && !(b[2] & 0x80) && b[3] == 1) {
      at = 4;
      const uint32_t id = ext();
      const size_t end = std::find(b.begin() + long(at), b.end(), 0) - b.begin();
      std::string name(b.begin() + long(at), b.begin() + long(end));
      if (b[2] == 0x7F) out[id].Name = name;
    }
    if (b[0] != 0x00) continue;
    const uint8_t props = b[2], ids = b[3];
    at = 4;
    const uint32_t first = ext();
    for (uint8_t p = 0; p < props && at < b.size(); ++p) {
      const uint8_t prop = b[at++];
      for (uint32_t k = 0; k < ids; ++k) {
        const char size = HandSize(feature, prop);
        uint32_t v = 0;
        if (size == 'L') {
          at += 1 + b[at];
        } else if (size == 'X') {
          v = ext();
        } else {
          const int n = size == 'W' ? 2 : size == 'D' ? 4 : 1;
          for (int i = 0; i < n; ++i) v |= uint32_t(b[at + i]) << (8 * i);
          at += n;
        }
        HandVehicle& h = out[first + k];
        if (prop == dateProp) h.Date = v, h.HasDate = true;
        if (prop == speedProp) h.Speed = v, h.HasSpeed = true;
        if (prop == capacityProp) h.Capacity = v, h.HasCapacity = true;
      }
    }
  }
  return out;
}

const ItemProperty* Last(const Item& item, uint8_t number) {
  const ItemProperty* found = nullptr;
  for (const ItemProperty& p : item.Properties)
    if (p.Number == number) found = &p;
  return found;
}

// --- Case files ----------------------------------------------------------------------------------

// The lines an item is checked by: its properties, its graph indented by depth, the sprites it
// reaches and the problems met.
std::vector<std::string> ItemLines(const GrfItems& items, const Item& item) {
  std::vector<std::string> lines;
  if (!item.Name.empty()) lines.push_back("name " + item.Name);
  for (const ItemProperty& p : item.Properties) {
    char number[8];
    std::snprintf(number, sizeof number, "%02X", p.Number);
    lines.push_back("prop " + std::string(number) + " " + PropertyName(p) + " = " +
                    PropertyValueText(p) + " [" + PropertySizeText(p) + ": " + HexBytes(p.Raw) +
                    "]");
  }
  const ItemGraph graph = GraphOf(items, item);
  for (const GraphNode& n : graph.Nodes)
    lines.push_back(std::string(2 * size_t(n.Depth) + 2, ' ') + NodeText(items, item, n));
  std::string sprites = "sprites";
  for (int32_t s : graph.Sprites) sprites += " " + std::to_string(s);
  lines.push_back(sprites);
  for (const ItemProblem& p : graph.Problems) lines.push_back("problem " + ItemProblemText(p));
  return lines;
}

}  // namespace

TEST(Items, RealVehiclesAsTheirBytesSay) {
  const std::pair<std::string, uint8_t> files[] = {{"ogfx-mars-rv.grf", 0x01},
                                                   {"ekranoplan.grf", 0x02}};
  for (const auto& [name, feature] : files) {
    SCOPED_TRACE(name);
    const auto l = Load(NewGrfPath(name));
    const auto hand = HandVehicles(*l, feature);
    int named = 0;
    for (const auto& [id, h] : hand) {
      SCOPED_TRACE(id);
      const Item* item = FindItem(l->Items, feature, id);
      ASSERT_NE(item, nullptr);
      EXPECT_EQ(item->Name, h.Name);
      named += !h.Name.empty();
      if (h.HasDate) {
        EXPECT_EQ(PropertyValueText(*Last(*item, feature == 1 ? 0x1F : 0x1A)), HandDate(h.Date));
      }
      if (h.HasSpeed) {
        // mph x 3.2 for both; km/h as the author wrote them, rounded down.
        const double mph = h.Speed / 3.2;
        const std::string want = std::to_string(int(std::floor(mph * 1.609344 + 1e-9))) +
                                 " km/h (" + std::to_string(int(std::lround(mph))) + " mph)";
        EXPECT_EQ(PropertyValueText(*Last(*item, feature == 1 ? 0x08 : 0x0B)), want);
      }
      if (h.HasCapacity) {
        EXPECT_EQ(PropertyValueText(*Last(*item, feature == 1 ? 0x0F : 0x0D)),
                  std::to_string(h.Capacity));
      }
    }
    EXPECT_EQ(named, feature == 1 ? 35 : 11);
    size_t vehicles = 0;
    for (const Item& item : l->Items.Items) vehicles += item.Feature == feature;
    EXPECT_EQ(vehicles, hand.size());
  }
  // Values read off the files by eye, against a slip shared by both decoders, are in the CLI's
  // transcript (item ekranoplan.grf ships 11).
}

TEST(Items, RealFilesCountsAndGraphs) {
  struct Want {
    std::string File;
    std::map<uint8_t, int> PerFeature;
  };
  const Want wants[] = {
      {"ogfx-mars-rv.grf", {{0x01, 112}, {0x08, 16}}},
      {"ekranoplan.grf", {{0x02, 11}, {0x08, 2}}},
      {"ogfx-mars-houses.grf", {{0x07, 110}, {0x08, 18}}},
      {"cargo-payment-randomiser.grf", {{0x0B, 12}}},
  };
  for (const Want& w : wants) {
    SCOPED_TRACE(w.File);
    const auto l = Load(NewGrfPath(w.File));
    std::map<uint8_t, int> counts;
    for (const Item& item : l->Items.Items) ++counts[item.Feature];
    EXPECT_EQ(counts, w.PerFeature);
    EXPECT_TRUE(l->Items.Problems.empty()) << ItemProblemText(l->Items.Problems[0]);
    int drawn = 0;
    for (const Item& item : l->Items.Items) {
      const ItemGraph g = GraphOf(l->Items, item);
      EXPECT_TRUE(g.Problems.empty());
      drawn += !g.Sprites.empty();
      // Only pictures of the file, each of them a member of an Action 01.
      for (int32_t s : g.Sprites) {
        ASSERT_TRUE(s >= 0 && s < SpriteCount(l->File)) << s;
        EXPECT_EQ(l->Reading.Actions.Sprites[size_t(s)].Kind, RoleKind::SetSprite) << s;
        EXPECT_EQ(FactsOf(l->File, s, -1).Kind, SpriteKind::Picture) << s;
      }
    }
    EXPECT_EQ(drawn > 0, w.File != "cargo-payment-randomiser.grf");
  }
}

TEST(Items, CaseFiles) {
  // Blocks start "== title"; sprites as in action_cases.txt; "item FF ID" starts the lines an item
  // gives; "items N" the number of items; "file problem TEXT" a problem of the whole file.
  for (const auto& block : CaseBlocks("engine/newgrf/item_cases.txt")) {
    SCOPED_TRACE(block[0]);
    std::vector<Bytes> own;
    size_t i = 1;
    for (; i < block.size() && block[i].rfind("item ", 0) != 0 &&
           block[i].rfind("items ", 0) != 0 && block[i].rfind("file problem", 0) != 0;
         ++i)
      own.push_back(block[i] == "picture"                     ? Bytes{}
                    : block[i].find('"') != std::string::npos ? ParseNfoBytes(block[i]).value()
                                                              : Hex(block[i]));
    const std::vector<SpriteInput> inputs = Inputs(own);
    const GrfItems items = ReadItems(inputs, ReadActions(inputs));
    std::vector<std::string> fileProblems;
    for (const ItemProblem& p : items.Problems)
      fileProblems.push_back("file problem " + ItemProblemText(p));
    std::vector<std::string> wantProblems;
    const Item* item = nullptr;
    std::vector<std::string> want;
    auto check = [&] {
      if (item != nullptr) {
        EXPECT_EQ(ItemLines(items, *item), want);
      }
      want.clear();
    };
    for (; i < block.size(); ++i) {
      const std::string& line = block[i];
      if (line.rfind("items ", 0) == 0) {
        EXPECT_EQ(std::to_string(items.Items.size()), line.substr(6));
      } else if (line.rfind("file problem", 0) == 0) {
        wantProblems.push_back(line);
      } else if (line.rfind("item ", 0) == 0) {
        check();
        uint8_t feature = 0;
        ASSERT_TRUE(ParseFeature(line.substr(5, 2), feature));
        item = FindItem(items, feature, uint32_t(std::stoul(line.substr(8))));
        EXPECT_NE(item, nullptr) << line;
      } else {
        want.push_back(line);
      }
    }
    check();
    EXPECT_EQ(fileProblems, wantProblems);
  }
}

TEST(Items, FeaturesByNumberOrName) {
  for (const std::string& line : CaseLines("engine/newgrf/feature_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 2);
    uint8_t feature = 0;
    EXPECT_EQ(ParseFeature(f[0], feature) ? int(feature) : -1, std::stoi(f[1])) << f[0];
  }
  EXPECT_EQ(DateText(0), "0000-01-01");
  EXPECT_EQ(DateText(701265), "1920-01-01");
  EXPECT_EQ(DateText(712282), "1950-03-01");
  EXPECT_EQ(DateText(730485), "2000-01-01");
  for (uint32_t d : {0u, 59u, 60u, 365u, 366u, 701264u, 730544u, 1000000u})
    EXPECT_EQ(DateText(d), HandDate(d)) << d;
}

// Random files: sets, groups that name earlier IDs (IDs reused now and then), items whose Action 03
// names one of them. The test keeps its own map of what each ID means at each point.
TEST(Items, RandomFilesReadBackTheirGraphs) {
  std::mt19937 rng(27);
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(round);
    std::vector<Bytes> records;
    records.push_back(grfw::ActionRecord({0x00, 0x00, 0x00, 0x00}));  // sprite count, not checked
    std::map<uint8_t, std::set<int32_t>> meaning;                     // ID -> sprites it reaches
    std::map<uint32_t, std::set<int32_t>> want;                       // vehicle ID -> sprites
    std::map<uint32_t, uint32_t> speeds;
    int32_t sprite = 1;
    std::vector<std::pair<int32_t, uint32_t>> sets;  // first sprite, count of the latest Action 01
    for (int step = 0; step < 30; ++step) {
      const int what = int(rng() % 4);
      if (what == 0 || sets.empty()) {
        const uint8_t n = uint8_t(1 + rng() % 3), per = uint8_t(1 + rng() % 4);
        records.push_back(grfw::ActionRecord({0x01, 0x01, n, per}));
        ++sprite;
        sets.clear();
        for (int s = 0; s < n; ++s) {
          sets.push_back({sprite, per});
          for (int k = 0; k < per; ++k, ++sprite)
            records.push_back(grfw::PlainSprite(1, 1, {uint8_t(rng())}));
        }
      } else if (what == 1 || meaning.empty()) {
        // A standard group of random sets.
        const uint8_t id = uint8_t(rng() % 6);
        const uint32_t set = rng() % sets.size();
        records.push_back(grfw::ActionRecord({0x02, 0x01, id, 0x01, 0x00, uint8_t(set), 0x00}));
        ++sprite;
        std::set<int32_t> reach;
        for (uint32_t k = 0; k < sets[set].second; ++k) reach.insert(sets[set].first + int32_t(k));
        meaning[id] = reach;
      } else if (what == 2) {
        // A random or variational group over IDs defined already.
        std::vector<uint8_t> known;
        for (const auto& [id, r] : meaning) known.push_back(id);
        const uint8_t a = known[rng() % known.size()], b = known[rng() % known.size()];
        const uint8_t id = uint8_t(rng() % 6);
        Bytes bytes = rng() % 2 ? Bytes{0x02, 0x01, id, 0x80, 0x00, 0x00, 0x02, a, 0x00, b, 0x00}
                                : Bytes{0x02, 0x01, id,   0x81, 0x0C, 0x00, 0xFF,
                                        0x01, a,    0x00, 0x10, 0x10, b,    0x00};
        records.push_back(grfw::ActionRecord(bytes));
        ++sprite;
        std::set<int32_t> reach = meaning[a];
        reach.insert(meaning[b].begin(), meaning[b].end());
        meaning[id] = reach;
      } else {
        const uint32_t vehicle = rng() % 300, speed = rng() % 256;
        const uint8_t id = std::next(meaning.begin(), long(rng() % meaning.size()))->first;
        records.push_back(grfw::ActionRecord({0x00, 0x01, 0x01, 0x01, 0xFF, uint8_t(vehicle),
                                              uint8_t(vehicle >> 8), 0x08, uint8_t(speed)}));
        records.push_back(grfw::ActionRecord(
            {0x03, 0x01, 0x01, 0xFF, uint8_t(vehicle), uint8_t(vehicle >> 8), 0x00, id, 0x00}));
        sprite += 2;
        // Each Action 03 for a vehicle adds what its ID meant then.
        want[vehicle].insert(meaning[id].begin(), meaning[id].end());
        speeds[vehicle] = speed;
      }
    }
    const auto l = Load(grfw::WriteTemp("random-items.grf", grfw::FileOf(records)));
    ASSERT_EQ(SpriteCount(l->File), sprite);
    EXPECT_EQ(l->Items.Items.size(), want.size());
    for (const auto& [vehicle, sprites] : want) {
      const Item* item = FindItem(l->Items, 0x01, vehicle);
      ASSERT_NE(item, nullptr);
      const ItemGraph g = GraphOf(l->Items, *item);
      EXPECT_EQ(std::set<int32_t>(g.Sprites.begin(), g.Sprites.end()), sprites);
      EXPECT_EQ(Last(*item, 0x08)->Numbers.at(0), speeds[vehicle]);
      EXPECT_TRUE(g.Problems.empty());
    }
  }
}

// A ladder of groups, each choosing twice the one before it (IDs reused past 256): every group is
// shown once, so the tree grows with the groups, not with the paths through them.
TEST(Items, LongLadderIsWalkedOnce) {
  const int n = 3000;
  std::vector<Bytes> own = {
      {0x10, 0, 0, 0}, {0x01, 0x00, 0x01, 0x01}, {}, {0x02, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00}};
  for (int i = 1; i < n; ++i) {
    const auto id = uint8_t(i % 256), prev = uint8_t((i - 1) % 256);
    own.push_back({0x02, 0x00, id, 0x80, 0x00, 0x00, 0x02, prev, 0x00, prev, 0x00});
  }
  own.push_back({0x03, 0x00, 0x01, 0x01, 0x00, uint8_t((n - 1) % 256), 0x00});
  const std::vector<SpriteInput> inputs = Inputs(own);
  const GrfItems items = ReadItems(inputs, ReadActions(inputs));
  ASSERT_EQ(items.Groups.size(), size_t(n));
  const ItemGraph g = GraphOf(items, *FindItem(items, 0x00, 1));
  EXPECT_EQ(g.Nodes.size(), size_t(1 + n + (n - 1) + 1));
  EXPECT_EQ(g.Sprites, std::vector<int32_t>{2});
  int32_t deepest = 0;
  for (const GraphNode& node : g.Nodes) deepest = std::max(deepest, node.Depth);
  EXPECT_EQ(deepest, n + 1);  // the set below the first group
}

TEST(Items, SheetRolesOfMembersAndMaps) {
  // Recolour maps inside blocks are maps, not the block's sprites; outside blocks too.
  std::vector<Bytes> own = {{0x10, 0, 0, 0},
                            {0x01, 0x00, 0x02, 0x01},
                            {},
                            Bytes(257, 0),
                            {0x05, 0x0A, 0x01},
                            Bytes(257, 0),
                            {},
                            {0x12, 0x01, 0x00, 0x01, 0x41, 0x00},
                            {}};
  FileReading reading;
  reading.Actions = ReadActions(Inputs(own));
  using R = SheetRole;
  EXPECT_EQ(SheetRolesOf(reading),
            (std::vector<R>{R::Action, R::Action, R::ActionSprite, R::RecolourMap, R::Action,
                            R::RecolourMap, R::BaseSprite, R::Action, R::Glyph}));
}
