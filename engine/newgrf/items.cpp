// The items of a file, read in file order: Action 00 gives properties, Action 04 names, Action 01
// sprite sets, Action 02 groups and Action 03 ties items to the groups their IDs mean at that
// point. A later Action 02 of the same ID changes nothing read before it.
#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_map>

#include "item_read.h"

namespace vossel {
namespace {

uint64_t KeyOf(uint8_t feature, uint32_t id) {
  return (uint64_t{feature} << 32) | id;
}

// 7F stands for every language; then English (01, then 00); then whatever came first.
int NameRank(uint8_t language) {
  const uint8_t l = language & 0x7F;
  return l == 0x7F ? 3 : l == 0x01 ? 2 : l == 0x00 ? 1 : 0;
}

struct Named {
  std::string Text;
  int32_t Sprite = -1;
  uint8_t Language = 0;
};

void KeepName(Named& to, std::string text, int32_t sprite, uint8_t language) {
  if (to.Sprite >= 0 && NameRank(language) <= NameRank(to.Language)) return;
  to = Named{std::move(text), sprite, language};
}

// Names read as a person reads them: the new-line code as {NL}.
std::string ReadableName(const uint8_t* text, size_t size) {
  std::string s = DecodeGrfText(text, size);
  for (size_t at = 0; (at = s.find("{0D}", at)) != std::string::npos;) s.replace(at, 4, "{NL}");
  return s;
}

std::string LabelOf(uint32_t v) {
  std::string s(4, ' ');
  for (int i = 0; i < 4; ++i) s[static_cast<size_t>(i)] = static_cast<char>((v >> (8 * i)) & 0xFF);
  return s;
}

struct State {
  const std::vector<SpriteInput>* Sprites = nullptr;
  GrfItems Out;
  std::unordered_map<uint64_t, size_t> ItemIndex;
  std::unordered_map<uint64_t, Named> ItemNames;  // by feature and ID
  std::unordered_map<uint32_t, Named> TextPool;   // by text ID
  std::array<int32_t, 256> Current{};             // group ID -> group
  std::array<std::vector<int32_t>, 256> SetsOf;   // feature -> set number -> set
  std::array<bool, 256> HasSets{};
  std::array<std::vector<uint32_t>, 256> LastIds;  // the IDs of each feature's last Action 03
  std::vector<std::string> CargoTable;
};

Item& ItemOf(State& s, uint8_t feature, uint32_t id) {
  const auto [at, fresh] = s.ItemIndex.try_emplace(KeyOf(feature, id), s.Out.Items.size());
  if (fresh) {
    Item& item = s.Out.Items.emplace_back();
    item.Feature = feature;
    item.Id = id;
  }
  return s.Out.Items[at->second];
}

std::string CargoLabel(const State& s, uint32_t index) {
  return index < s.CargoTable.size() ? s.CargoTable[index] : std::string();
}

// The value of one property for one ID; false when the rest of the block cannot be read.
bool ReadValue(State& s, ItemCursor& c, ItemProperty& p) {
  const PropertyRow& row = *p.Row;
  const int64_t from = c.At;
  uint32_t v = 0, n = 0;
  const auto number = [&](int size) {
    if (!c.Value(size, v)) return false;
    p.Numbers.push_back(v);
    return true;
  };
  bool ok = true;
  switch (row.Size) {
    case PropSize::Byte:
      ok = number(1);
      break;
    case PropSize::Word:
      ok = number(2);
      break;
    case PropSize::Dword:
      ok = number(4);
      break;
    case PropSize::ExtByte:
      ok = c.Ext(v);
      if (ok) p.Numbers.push_back(v);
      break;
    case PropSize::Fixed: {
      const int each = row.Unit == PropUnit::Years ? 2 : 1;
      for (int i = 0; ok && i < row.Fixed / each; ++i) ok = number(each);
      break;
    }
    case PropSize::ByteList:
    case PropSize::DwordList:
    case PropSize::PairList: {
      if (!c.Value(1, n)) return false;
      const int each = row.Size == PropSize::DwordList ? 4 : 1;
      const uint32_t count = row.Size == PropSize::PairList ? 2 * n : n;
      for (uint32_t i = 0; ok && i < count; ++i) ok = number(each);
      break;
    }
    case PropSize::TileLayouts:
    case PropSize::AirportLayouts: {
      // Per layout: [rotation,] then tiles (x, y, tile; tile FE: a word follows) until 00 80.
      uint32_t total = 0;
      ok = c.Value(1, n) && c.Value(4, total);
      for (uint32_t k = 0; ok && k < n; ++k) {
        if (row.Size == PropSize::AirportLayouts) ok = c.Value(1, v);
        for (uint32_t x = 0, y = 0; ok;) {
          ok = c.Value(1, x) && c.Value(1, y);
          if (!ok || (x == 0 && y == 0x80)) break;
          ok = c.Value(1, v) && (v != 0xFE || c.Value(2, v));
        }
      }
      break;
    }
    case PropSize::MultiplierGrid: {
      uint32_t produced = 0;
      ok = c.Value(1, n) && c.Value(1, produced);
      for (uint32_t i = 0; ok && i < n * produced; ++i) ok = number(2);
      break;
    }
    case PropSize::StationLayouts: {
      // Each layout in the advanced form; the sets its sprites name are the station's own, which
      // its Action 02 tells, so none is looked up here.
      static const std::vector<int32_t> kNoSets;
      GrfItems ignored;
      const GroupContext none{&ignored, s.Current.data(), &kNoSets, false};
      ok = c.Value(1, n);
      for (uint32_t k = 0; ok && k < n; ++k) {
        SpriteGroup layout;
        layout.Feature = 0x04;
        ok = c.Byte(layout.Type);
        if (ok) ReadLayout(c, layout, none);
        ok = ok && !c.Cut;
      }
      break;
    }
    case PropSize::NameTable:
      for (;;) {
        if (!(ok = c.Value(1, v)) || v == 0) break;
        const int64_t at = c.At;
        const auto* zero = static_cast<const uint8_t*>(
            std::memchr(c.Bytes.Data + at, 0, static_cast<size_t>(c.Bytes.End - at)));
        if (!(ok = zero != nullptr && c.Take(zero - (c.Bytes.Data + at) + 1))) break;
      }
      break;
  }
  p.Raw.assign(c.Bytes.Data + from, c.Bytes.Data + std::min(c.At, c.Bytes.End));
  if (!ok || c.Cut) return false;
  const PropUnit u = row.Unit;
  if (u == PropUnit::Cargo || u == PropUnit::CargoList)
    for (int64_t x : p.Numbers) p.Labels.push_back(CargoLabel(s, static_cast<uint32_t>(x)));
  if (u == PropUnit::CargoAmounts)
    for (size_t i = 0; i < p.Numbers.size(); i += 2)
      p.Labels.push_back(CargoLabel(s, static_cast<uint32_t>(p.Numbers[i])));
  if (u == PropUnit::Label || u == PropUnit::LabelList)
    for (int64_t x : p.Numbers) p.Labels.push_back(LabelOf(static_cast<uint32_t>(x)));
  return true;
}

void ReadProperties(State& s, const ActionRecord& a, ItemCursor& c) {
  uint8_t feature = 0, props = 0, ids = 0;
  uint32_t first = 0;
  if (!c.Take(1) || !c.Byte(feature) || !c.Byte(props) || !c.Byte(ids) || !c.Ext(first)) return;
  for (uint32_t k = 0; k < ids; ++k) ItemOf(s, feature, first + k);
  for (uint32_t n = 0; n < props; ++n) {
    uint8_t number = 0;
    if (!c.Byte(number)) return;
    const PropertyRow* row = FindProperty(feature, number);
    for (uint32_t k = 0; k < ids; ++k) {
      Item& item = ItemOf(s, feature, first + k);
      ItemProperty& p = item.Properties.emplace_back();
      p.Sprite = a.Sprite;
      p.Number = number;
      p.Row = row;
      if (row == nullptr) {
        // Without a size nothing after it can be found.
        p.Raw.assign(c.Bytes.Data + c.At, c.Bytes.Data + c.Bytes.End);
        Problem(s.Out, a.Sprite, ItemProblemKind::UnknownProperty, feature, number);
        return;
      }
      if (!ReadValue(s, c, p)) {
        if (p.Raw.empty()) item.Properties.pop_back();  // cut before its first byte
        return;
      }
      if (feature == 0x08 && number == 0x09) {
        const uint32_t id = first + k;
        if (s.CargoTable.size() <= id) s.CargoTable.resize(id + 1);
        s.CargoTable[id] = p.Labels.empty() ? std::string() : p.Labels[0];
      }
    }
  }
}

void ReadTexts(State& s, const ActionRecord& a, ItemCursor& c) {
  uint8_t feature = 0, language = 0, count = 0;
  uint32_t first = 0;
  if (!c.Take(1) || !c.Byte(feature) || !c.Byte(language) || !c.Byte(count)) return;
  const bool wide = (language & 0x80) != 0;
  if (!(wide ? c.Value(2, first) : c.Ext(first))) return;
  // Every ID the header names is an item, its text cut or not.
  if (!wide && feature != 0x48)
    for (uint32_t k = 0; k < count; ++k) ItemOf(s, feature, first + k);
  for (uint32_t k = 0; k < count; ++k) {
    const int64_t at = c.At;
    const auto* zero = static_cast<const uint8_t*>(std::memchr(
        c.Bytes.Data + at, 0, static_cast<size_t>(std::max<int64_t>(c.Bytes.End - at, 0))));
    if (zero == nullptr) return c.Take(c.Bytes.End - at + 1), void();
    const size_t n = static_cast<size_t>(zero - (c.Bytes.Data + at));
    std::string text = ReadableName(c.Bytes.Data + at, n);
    c.Take(static_cast<int64_t>(n) + 1);
    if (wide)
      KeepName(s.TextPool[first + k], std::move(text), a.Sprite, language);
    else if (feature != 0x48) {
      KeepName(s.ItemNames[KeyOf(feature, first + k)], std::move(text), a.Sprite, language);
    }
  }
}

void ReadSets(State& s, const ActionRecord& a) {
  if (IsCut(a)) return;
  std::vector<int32_t>& sets = s.SetsOf[a.Feature];
  if (!a.HasOffset) sets.clear();
  s.HasSets[a.Feature] = true;
  if (a.Number == 0) return;  // sets of no sprites: nothing to draw
  for (uint32_t k = 0; k < a.Count; ++k) {
    const int64_t first = int64_t{a.Sprite} + 1 + int64_t{k} * a.Number;
    if (first >= s.Out.SpriteCount) break;  // the rest lie past the end of the file
    SpriteSetRef r;
    r.Action = a.Sprite;
    r.Feature = a.Feature;
    r.Number = a.First + k;
    r.First = static_cast<int32_t>(first);
    r.Count = static_cast<uint32_t>(std::min<int64_t>(a.Number, s.Out.SpriteCount - first));
    if (r.Count < a.Number)
      Problem(s.Out, a.Sprite, ItemProblemKind::SetOutsideFile, a.Feature, r.Number);
    if (sets.size() <= r.Number) sets.resize(r.Number + 1, -1);
    sets[r.Number] = static_cast<int32_t>(s.Out.Sets.size());
    s.Out.Sets.push_back(r);
  }
}

void ReadGroup(State& s, const ActionRecord& a, ItemCursor& c) {
  SpriteGroup g;
  g.Sprite = a.Sprite;
  if (!c.Take(1) || !c.Byte(g.Feature) || !c.Byte(g.Id) || !c.Byte(g.Type)) return;
  const GroupContext context{&s.Out, s.Current.data(), &s.SetsOf[g.Feature], s.HasSets[g.Feature]};
  ReadGroupBody(c, g, context);
  g.Cut = c.Cut;
  s.Current[g.Id] = static_cast<int32_t>(s.Out.Groups.size());
  s.Out.Groups.push_back(std::move(g));
}

GraphicsEntry Entry(State& s, const ActionRecord& a, uint8_t feature, EntryKind kind, uint8_t cargo,
                    uint32_t word) {
  GraphicsEntry e;
  e.Sprite = a.Sprite;
  e.Kind = kind;
  e.Cargo = cargo;
  if (kind == EntryKind::Cargo || kind == EntryKind::OverrideCargo)
    e.CargoLabel = CargoLabel(s, cargo);
  e.Target = GroupReference(word, s.Current.data());
  if (e.Target.Kind == RefKind::Undefined)
    Problem(s.Out, a.Sprite, ItemProblemKind::UndefinedGroup, feature, word);
  return e;
}

void ReadAssignment(State& s, const ActionRecord& a, ItemCursor& c) {
  uint8_t feature = 0, n = 0, cargos = 0;
  if (!c.Take(1) || !c.Byte(feature) || !c.Byte(n)) return;
  const bool override = (n & 0x80) != 0;
  std::vector<uint32_t> ids;
  for (uint32_t k = 0; k < (n & 0x7Fu); ++k) {
    uint32_t id = 0;
    if (!(HasExtendedIds(feature) ? c.Ext(id) : c.Value(1, id))) return;
    ids.push_back(id);
    if (!override) ItemOf(s, feature, id);  // named, whatever follows
  }
  std::vector<std::pair<uint8_t, uint32_t>> pairs;
  if (!c.Byte(cargos)) return;
  for (uint32_t k = 0; k < cargos; ++k) {
    uint8_t cargo = 0;
    uint32_t word = 0;
    if (!c.Byte(cargo) || !c.Value(2, word)) return;
    pairs.emplace_back(cargo, word);
  }
  uint32_t fallback = 0;
  if (!c.Value(2, fallback)) return;
  std::vector<GraphicsEntry> entries;
  for (const auto& [cargo, word] : pairs) {
    const EntryKind kind = override        ? EntryKind::OverrideCargo
                           : cargo == 0xFF ? EntryKind::Purchase
                           : cargo == 0xFE ? EntryKind::AnyCargo
                                           : EntryKind::Cargo;
    entries.push_back(Entry(s, a, feature, kind, cargo, word));
  }
  entries.push_back(
      Entry(s, a, feature, override ? EntryKind::LiveryOverride : EntryKind::Default, 0, fallback));
  if (ids.empty() && !override) {
    for (GraphicsEntry& e : entries) {
      s.Out.Generic.push_back(std::move(e));
      s.Out.GenericFeatures.push_back(feature);
    }
    return;
  }
  if (!override) {
    for (uint32_t id : ids) {
      Item& item = ItemOf(s, feature, id);
      item.Graphics.insert(item.Graphics.end(), entries.begin(), entries.end());
    }
    s.LastIds[feature] = ids;
    return;
  }
  // An override lists engines; it draws the wagons of the Action 03 before it.
  for (uint32_t wagon : s.LastIds[feature]) {
    Item& item = ItemOf(s, feature, wagon);
    for (uint32_t engine : ids)
      for (GraphicsEntry e : entries) {
        e.Engine = engine;
        item.Graphics.push_back(std::move(e));
      }
  }
}

// The name of each item: its own text, else the text its name property points at (a station's
// C5xx text by its ID).
const Named* FindText(const State& s, uint32_t text) {
  auto it = s.TextPool.find(text);
  // A property may name a D0xx text by D4xx.
  if (it == s.TextPool.end() && (text & 0xFC00) == 0xD400) it = s.TextPool.find(text - 0x400);
  return it == s.TextPool.end() ? nullptr : &it->second;
}

void Name(State& s) {
  for (Item& item : s.Out.Items) {
    // Every text a property points at, as its label.
    for (ItemProperty& p : item.Properties)
      if (p.Row && p.Row->Unit == PropUnit::TextId && !p.Numbers.empty())
        if (const Named* t = FindText(s, static_cast<uint32_t>(p.Numbers[0]))) p.Labels = {t->Text};
    if (const auto it = s.ItemNames.find(KeyOf(item.Feature, item.Id)); it != s.ItemNames.end()) {
      item.Name = it->second.Text;
      item.Source = NameSource::ItemText;
      item.NameSprite = it->second.Sprite;
      item.NameLanguage = it->second.Language;
      continue;
    }
    uint32_t text = 0;
    bool has = false;
    for (const ItemProperty& p : item.Properties)
      if (p.Row && p.Row->Unit == PropUnit::TextId && std::strcmp(p.Row->Name, "name") == 0 &&
          !p.Numbers.empty())
        text = static_cast<uint32_t>(p.Numbers[0]), has = true;
    if (!has && item.Feature == 0x04 && item.Id <= 0xFF) text = 0xC500 + item.Id, has = true;
    if (!has) continue;
    item.NameText = text;
    const Named* t = FindText(s, text);
    if (t == nullptr) continue;
    item.Name = t->Text;
    item.Source = NameSource::TextId;
    item.NameSprite = t->Sprite;
    item.NameLanguage = t->Language;
  }
}

}  // namespace

GrfItems ReadItems(const std::vector<SpriteInput>& sprites, const GrfActions& actions) {
  State s;
  s.Sprites = &sprites;
  s.Out.SpriteCount = static_cast<int32_t>(sprites.size());
  s.Current.fill(-1);
  for (const ActionRecord& a : actions.Actions) {
    if (a.IsSpriteCount || a.Action > 0x04) continue;
    const SpriteInput& in = sprites[static_cast<size_t>(a.Sprite)];
    ItemCursor c{Reader{in.Data, static_cast<int64_t>(in.Data ? in.Size : 0)}};
    switch (a.Action) {
      case 0x00:
        ReadProperties(s, a, c);
        break;
      case 0x01:
        ReadSets(s, a);
        break;
      case 0x02:
        ReadGroup(s, a, c);
        break;
      case 0x03:
        ReadAssignment(s, a, c);
        break;
      case 0x04:
        ReadTexts(s, a, c);
        break;
      default:
        break;
    }
    if (c.Cut && a.Action != 0x01)
      Problem(s.Out, a.Sprite, ItemProblemKind::CutAction, a.Feature,
              static_cast<uint32_t>(c.Bytes.End), static_cast<uint32_t>(c.Need));
  }
  Name(s);
  std::sort(s.Out.Items.begin(), s.Out.Items.end(), [](const Item& x, const Item& y) {
    return KeyOf(x.Feature, x.Id) < KeyOf(y.Feature, y.Id);
  });
  return std::move(s.Out);
}

GrfItems ReadItems(const FileReading& reading) {
  std::vector<SpriteInput> inputs(reading.Bytes.size());
  for (size_t i = 0; i < inputs.size(); ++i) {
    const RoleKind kind =
        i < reading.Actions.Sprites.size() ? reading.Actions.Sprites[i].Kind : RoleKind::BaseSprite;
    inputs[i] = {kind == RoleKind::Action ? SpriteKind::Pseudo : SpriteKind::Picture,
                 reading.Bytes[i].data(), reading.Bytes[i].size()};
  }
  return ReadItems(inputs, reading.Actions);
}

const Item* FindItem(const GrfItems& items, uint8_t feature, uint32_t id) {
  const auto it =
      std::lower_bound(items.Items.begin(), items.Items.end(), KeyOf(feature, id),
                       [](const Item& x, uint64_t key) { return KeyOf(x.Feature, x.Id) < key; });
  return it != items.Items.end() && it->Feature == feature && it->Id == id ? &*it : nullptr;
}

}  // namespace vossel
