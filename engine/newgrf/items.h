// What a NewGRF makes: its items (a feature and an ID that an Action 00, 03 or 04 speaks of), their
// names and properties, and the graph of Action 02 groups that leads from each item to the sprites
// it draws. Standard library only; records come out, sentences are made in item_text.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "actions.h"

namespace vossel {

// --- Properties ----------------------------------------------------------------------------------

// How a property's value is laid out in Action 00.
enum class PropSize : uint8_t {
  Byte,
  Word,
  Dword,
  ExtByte,         // B*: a byte, FF and a word
  Fixed,           // Fixed bytes
  ByteList,        // a count byte, then that many bytes
  DwordList,       // a count byte, then that many dwords
  PairList,        // a count byte, then that many pairs of bytes
  TileLayouts,     // count B, total D, then layouts of (x, y, tile[, W]) ended by 00 80
  AirportLayouts,  // the same with a rotation byte before each layout
  MultiplierGrid,  // accepted B, produced B, then accepted x produced words
  StationLayouts,  // count B, then advanced sprite layouts
  NameTable,       // (id B, text S)... ended by 00
};

// What a value means, for showing it.
enum class PropUnit : uint8_t {
  Number,
  SignedNumber,
  Speed16,     // mph x 1.6
  Speed32,     // mph x 3.2
  Speed08,     // mph x 0.8
  Speed8Mph,   // units of 8 mph
  PowerHp,     // horsepower
  Power10Hp,   // units of 10 hp
  Tonnes,      // whole tonnes
  WeightHigh,  // the high byte of a train's weight in tonnes
  QuarterTonnes,
  SixteenthTonnes,
  LongDate,   // days since 1 January of year 0
  Years1920,  // bytes of years after 1920
  Years,      // words of full years
  Climates,
  Cargo,         // an index into the file's cargo table
  CargoList,     // indices into it
  CargoAmounts,  // (cargo, eighths) pairs
  Flags,         // bits by name
  TextId,        // a word naming a text of the file
  Label,         // four characters
  LabelList,
  Fraction255,  // value / 255
  Hex,          // raw value in hex
};

struct PropertyRow {
  uint8_t Feature = 0;
  uint8_t Number = 0;
  PropSize Size = PropSize::Byte;
  uint16_t Fixed = 0;  // bytes of a Fixed value
  PropUnit Unit = PropUnit::Number;
  const char* Name = "";
  bool Confirmed = true;              // false: shown raw with its number, never interpreted
  const char* const* Bits = nullptr;  // 16 names for Flags, nullptr for unnamed bits
};

// The table row for a property of a feature; nullptr when the table has none.
const PropertyRow* FindProperty(uint8_t feature, uint8_t number);

// One value a property was given for one item.
struct ItemProperty {
  int32_t Sprite = 0;  // the Action 00 that gave it
  uint8_t Number = 0;
  const PropertyRow* Row = nullptr;  // nullptr: not in the table (its size unknown)
  std::vector<uint8_t> Raw;
  // The value's numbers in file order (one for B, W, D, B*; the list's for lists); labels where
  // they are cargo-table indices or labels, and the text a text ID names.
  std::vector<int64_t> Numbers;
  std::vector<std::string> Labels;
};

// --- Groups --------------------------------------------------------------------------------------

enum class RefKind : uint8_t {
  Group,      // a group defined earlier: Group
  Callback,   // bit 15: a callback result, Value
  Set,        // a sprite set of the most recent Action 01: Set
  Undefined,  // an ID no group (or set) had at that point: Value
};

struct GroupRef {
  RefKind Kind = RefKind::Undefined;
  uint32_t Value = 0;  // the word as written
  int32_t Group = -1;  // index into GrfItems::Groups
  int32_t Set = -1;    // index into GrfItems::Sets
};

// A sprite set: the sprites an Action 01 gave it.
struct SpriteSetRef {
  int32_t Action = 0;  // the Action 01's sprite number
  uint8_t Feature = 0;
  uint32_t Number = 0;  // the set's number
  int32_t First = 0;    // its first sprite
  uint32_t Count = 0;   // sprites in the set
};

enum class GroupKind : uint8_t { Standard, Random, Variational, Layout, Production, Unknown };

// One adjustment of a variational group: (var >> shift) & mask, then (+add) / div or % mod,
// combined with the running value by Op (none for the first).
struct VarAdjust {
  uint8_t Op = 0;
  uint8_t Variable = 0;
  bool HasParameter = false;
  uint8_t Parameter = 0;
  uint8_t Shift = 0;  // bits 0-4
  uint32_t Mask = 0;
  bool HasDivide = false, HasModulo = false;
  uint32_t Add = 0, Divisor = 0;
};

struct VarRange {
  GroupRef Target;
  uint32_t Low = 0, High = 0;
};

enum class LayoutForm : uint8_t { Basic, Extended, Advanced };

// One sprite of a layout: the ground, a building sprite in its box, or a child sprite.
struct LayoutSprite {
  uint32_t Word = 0;           // sprite and recolour word
  uint16_t Flags = 0;          // advanced form only
  bool Child = false;          // drawn at pixel offsets from its parent
  bool HasBox = false;         // a building sprite with a bounding box
  int8_t X = 0, Y = 0, Z = 0;  // box offset, or pixel offset (X, Y) of a child
  uint8_t XExtent = 0, YExtent = 0, ZExtent = 0;
  std::vector<uint8_t> Registers;  // one per flag bit that takes one, in bit order
  int32_t Set = -1;  // bit 31: the set of this GRF it names (index into GrfItems::Sets)
};

struct SpriteGroup {
  int32_t Sprite = 0;  // the Action 02
  uint8_t Feature = 0;
  uint8_t Id = 0;
  uint8_t Type = 0;
  GroupKind Kind = GroupKind::Unknown;
  bool Cut = false;  // the pseudo-sprite ended inside it: what was read is kept
  // Standard: loaded and loading sets (stations: little and lots).
  std::vector<GroupRef> Loaded, Loading;
  // Random: 80 own bits, 83 related object, 84 with Count (vehicles' consist).
  uint8_t Triggers = 0, RandomBit = 0, Count = 0;
  std::vector<GroupRef> Choices;
  // Variational: value size 1, 2 or 4; Related for 82/86/8A.
  uint8_t ValueSize = 0;
  bool Related = false;
  std::vector<VarAdjust> Adjusts;
  std::vector<VarRange> Ranges;
  GroupRef Default;
  bool HasDefault = false;
  // Layout.
  LayoutForm Form = LayoutForm::Basic;
  LayoutSprite Ground;
  std::vector<LayoutSprite> Sprites;
  // Production (industries): version, then its numbers in file order.
  std::vector<uint32_t> Values;
};

// --- Items ---------------------------------------------------------------------------------------

enum class EntryKind : uint8_t {
  Default,         // the default of an Action 03
  Purchase,        // cargo FF: purchase list or build menu
  AnyCargo,        // cargo FE (stations)
  Cargo,           // a cargo-table index (railtypes and road types: a sprite kind)
  LiveryOverride,  // an override's default, for Engine
  OverrideCargo,   // an override's cargo entry, for Engine
};

// One thing an Action 03 tells an item to draw.
struct GraphicsEntry {
  int32_t Sprite = 0;  // the Action 03
  EntryKind Kind = EntryKind::Default;
  uint8_t Cargo = 0;
  std::string CargoLabel;  // from the cargo table at that point, if it has the index
  uint32_t Engine = 0;
  GroupRef Target;
};

enum class NameSource : uint8_t { None, ItemText, TextId };

struct Item {
  uint8_t Feature = 0;
  uint32_t Id = 0;
  std::string Name;  // decoded, line breaks as {NL}
  NameSource Source = NameSource::None;
  int32_t NameSprite = -1;  // the Action 04 that gave the name
  uint8_t NameLanguage = 0;
  uint32_t NameText = 0;  // the text ID a property named it by
  std::vector<ItemProperty> Properties;
  std::vector<GraphicsEntry> Graphics;
};

enum class ItemProblemKind : uint8_t {
  CutAction,         // an Action 00, 02, 03 or 04 ended early: Value bytes of Need
  UnknownProperty,   // Action 00: property Value of Feature has no known size; the rest unread
  UnknownGroupType,  // Action 02 of type Value
  UndefinedGroup,    // a reference to group ID Value that nothing defined
  UndefinedSet,      // a reference to set Value the latest Action 01 does not have
  NoSets,            // a reference to set Value with no Action 01 of the feature before it
  SetOutsideFile,    // set Value's sprites run past the end of the file
  Loop,              // a group reached again below itself
};

struct ItemProblem {
  int32_t Sprite = 0;
  ItemProblemKind Kind = ItemProblemKind::CutAction;
  uint8_t Feature = 0;
  uint32_t Value = 0;
  uint32_t Need = 0;
};

struct GrfItems {
  std::vector<Item> Items;  // by feature, then ID
  std::vector<SpriteGroup> Groups;
  std::vector<SpriteSetRef> Sets;
  std::vector<GraphicsEntry> Generic;  // Action 03 with no IDs: feature-wide callbacks
  std::vector<uint8_t> GenericFeatures;
  std::vector<ItemProblem> Problems;
  int32_t SpriteCount = 0;
};

// Reads the items of a file whose actions `actions` were read from `sprites`. Linear in the bytes
// of the pseudo-sprites; never reads outside a view.
GrfItems ReadItems(const std::vector<SpriteInput>& sprites, const GrfActions& actions);
GrfItems ReadItems(const FileReading& reading);

// The item of a feature and ID, or nullptr.
const Item* FindItem(const GrfItems& items, uint8_t feature, uint32_t id);

// --- The graph below an item
// ----------------------------------------------------------------------

enum class NodeKind : uint8_t {
  Entry,       // an Action 03 entry: Entry
  Group,       // a group: Group
  Seen,        // a group shown earlier in this tree: Group
  Callback,    // a callback result: Value
  Set,         // a sprite set: Set
  Undefined,   // a reference to nothing: Value (Problem says which)
  Loop,        // a group below itself: Group
  LayoutPart,  // a sprite of a layout: Group, Part (-1 the ground)
};

// One row of an item's graphics tree, depth-first, with its depth. Through tells how the parent
// reached it: the index of the range (Range), the choice (Choice), or -1 for the default.
struct GraphNode {
  NodeKind Kind = NodeKind::Entry;
  int32_t Depth = 0;
  int32_t Entry = -1;
  int32_t Group = -1;
  int32_t Set = -1;
  int32_t Part = -1;
  uint32_t Value = 0;
  // How the parent reached this node.
  enum class Via : uint8_t {
    Root,
    Loaded,
    Loading,
    Choice,
    Range,
    Default,
    Sprite
  } How = Via::Root;
  int32_t Index = 0;    // which loaded set, choice or range
  int32_t Parent = -1;  // the group above, -1 below an entry
  ItemProblemKind Problem = ItemProblemKind::Loop;
};

// An item's graphics as a tree, each group expanded once (later meetings are Seen rows), and the
// sprites it reaches in file order. Linear in the size of the graph below the item.
struct ItemGraph {
  std::vector<GraphNode> Nodes;
  std::vector<int32_t> Sprites;
  std::vector<ItemProblem> Problems;
};
ItemGraph GraphOf(const GrfItems& items, const Item& item);

// The items whose graphics reach each sprite: per sprite, indices into items.Items.
std::vector<std::vector<int32_t>> ItemsBySprite(const GrfItems& items);

// --- Texts (item_text.cpp) -----------------------------------------------------------------------

// A property's name: "speed", "introduction date"; "property 1F" outside the table.
std::string PropertyName(const ItemProperty& p);
// Its value as a person reads it, with units: "160 km/h (100 mph)", "1950-01-01", "temperate,
// arctic"; unconfirmed or unknown rows as their raw hex.
std::string PropertyValueText(const ItemProperty& p);
// "B", "W", "D", "B*", "4 bytes", "list"...
std::string PropertySizeText(const ItemProperty& p);
// "BE 00" style hex.
std::string HexBytes(const std::vector<uint8_t>& bytes);
// "purchase list", "cargo 2 (COAL)", "default", "livery override for engine 300"...
std::string EntryText(const GraphicsEntry& e, uint8_t feature);
// One row of a graphics tree, without its indentation.
std::string NodeText(const GrfItems& items, const Item& item, const GraphNode& n);
// A group in one line: "random group 05 (own bits, 4 choices)".
std::string GroupText(const SpriteGroup& g);
// A variational group's computation: "var 0C (current callback) & FFFF".
std::string AdjustText(const VarAdjust& a, uint8_t feature);
// A layout sprite: "sprite 1420 (base), box at 0,0,0 size 16x16x8".
std::string LayoutSpriteText(const GrfItems& items, const LayoutSprite& s, bool ground);
std::string ItemProblemText(const ItemProblem& p);
// "trains", "road vehicles": the feature as a word in a sentence.
std::string FeatureWord(uint8_t feature);
// Reads a feature given as NFO writes it ("00", "0A") or by name ("trains", any case).
bool ParseFeature(const std::string& text, uint8_t& feature);
// A variable's name for a feature, empty when it has none known.
std::string VariableName(uint8_t variable, uint8_t feature);
// "151-158, 160": runs of sprites as the CLI counts them (from 1); "none" for no sprite.
std::string SpriteRuns(const std::vector<int32_t>& sprites);
// "1950-01-01" from days since 1 January of year 0.
std::string DateText(int64_t days);

}  // namespace vossel
