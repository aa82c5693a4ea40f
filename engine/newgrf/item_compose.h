// What an item draws for one request: the Action 03 entry, the loaded or loading state and a pick
// at each random or variational group lead to a sprite set (a vehicle's views), a sprite layout
// (the parts of a tile) or a callback result. Standard library only; records come out, sentences
// are made in item_compose_text.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "items.h"

namespace vossel {

// One pick: the group given by its Action 02 (sprite number from 0) takes choice `Pick`: a random
// group's choice, a variational group's range (-1 its default), a standard group's set.
struct BranchPick {
  int32_t Sprite = 0;
  int32_t Pick = 0;
};

struct ComposeRequest {
  EntryKind Entry = EntryKind::Default;  // Default, Purchase or Cargo
  uint8_t Cargo = 0;                     // the cargo-table index, for Cargo
  bool Loading = false;
  std::vector<BranchPick> Picks;
};

enum class BranchKind : uint8_t {
  Random,       // Choices: "random k of N"
  Variational,  // Ranges named by their values, and the default (-1)
  Amount,       // a standard group's loaded or loading sets, by amount
  SetSprite,    // a layout: which sprite of each set it names (sets of several sprites)
};

// A group met on the way that could have gone another way.
struct BranchPoint {
  int32_t Group = -1;  // index into GrfItems::Groups
  BranchKind Kind = BranchKind::Random;
  int32_t Choices = 0;      // choices, ranges or sets (a variational default comes on top)
  int32_t DefaultPick = 0;  // what is drawn unless picked otherwise
  // The variational value computed with every game variable read as 0 fell in DefaultPick; false
  // when it fell in no range (DefaultPick -1 then) or could not be computed.
  bool Computed = false;
  uint32_t Value = 0;  // that value
  int32_t Picked = 0;  // what was followed
};

enum class ComposeEnd : uint8_t {
  Views,      // a sprite set of a vehicle: Views
  Layout,     // a sprite layout: Parts
  Set,        // a sprite set of another feature: Views hold its sprites
  Callback,   // a callback result: Value
  Undefined,  // a reference to nothing: Value
  NoEntry,    // the item draws nothing for the request
  Other,      // a production group or a group of unknown type
  Loop,       // the way met a group again
};

enum class PartRole : uint8_t { Ground, Building, Child };
enum class SpriteSource : uint8_t {
  File,  // a sprite of this file: Sprite counts from 0
  Base,  // a base-set sprite: Sprite is its number in the base file
  None,  // a set outside the file or a recolour sprite of a set: cannot be had
};
enum class RecolourMode : uint8_t { None, Remap, Transparent };

// One sprite of a layout as drawn.
struct ComposedPart {
  PartRole Role = PartRole::Ground;
  int32_t Index = -1;  // in the layout's sprites; -1 the ground
  uint32_t Word = 0;
  uint16_t Flags = 0;
  SpriteSource Source = SpriteSource::Base;
  int32_t Sprite = 0;
  bool OutsideSet = false;  // a register took the sprite past its set
  RecolourMode Mode = RecolourMode::None;
  SpriteSource RecolourFrom = SpriteSource::Base;
  int32_t Recolour = 0;  // 0 with Remap: the company colour
  bool AlwaysDraw = false;
  bool Hidden = false;          // advanced flag 0 with a register holding 0
  int32_t X = 0, Y = 0, Z = 0;  // box offset; a child's pixel offset in X, Y
  int32_t XExtent = 0, YExtent = 0, ZExtent = 0;
  int32_t Parent = -1;        // a child's parent: an index into Composition::Parts, -1 the ground
  bool RegisterUsed = false;  // a value came from a register
  bool RegisterKnown = true;  // every register it read was filled on the way
};

struct Composition {
  ComposeEnd End = ComposeEnd::NoEntry;
  int32_t Entry = -1;          // index into Item::Graphics
  bool FellBack = false;       // the entry asked for is missing; the default was taken
  int32_t Group = -1;          // the layout or standard group reached
  int32_t Set = -1;            // the set reached (Views, Set)
  uint32_t Value = 0;          // a callback result or an undefined ID
  std::vector<int32_t> Views;  // Views: set.First + k, those past the file left out
  int32_t MissingViews = 0;    // views past the end of the file
  std::vector<ComposedPart> Parts;
  std::vector<BranchPoint> Branches;
  // A game variable was read (as 0) on the way, so picks and registers assume a state.
  bool VariablesAssumed = false;
  // A layout read a register that nothing filled on the way: taken as 0.
  bool RegistersUnknown = false;
};

// Whether a feature's graphics are vehicle views.
bool IsVehicleFeature(uint8_t feature);
// Whether its graphics are sprite layouts (houses, industry tiles, objects, airport tiles).
bool IsLayoutItem(uint8_t feature);

// Follows the item's graphics for the request. Variational groups are computed with the
// registers stored on the way and every game variable read as 0; a range holding that value is
// their default pick. Never reads outside the records; a loop ends the way.
Composition Compose(const GrfItems& items, const Item& item, const ComposeRequest& request);

// The direction a vehicle's view k faces, as the screen shows it: view 0 heads up the screen,
// then clockwise. The order is inferred, not confirmed: every label says so.
const char* ViewDirection(int32_t view);

// --- Texts (item_compose_text.cpp)
// ---------------------------------------------------------------------

// "random 1 of 4", "0-3", "5", "default", "loaded set 2 of 3".
std::string BranchChoiceText(const GrfItems& items, const BranchPoint& b, int32_t pick);
// "random group (sprite 113)", "switch on var 0C (sprite 115)".
std::string BranchText(const GrfItems& items, const BranchPoint& b);
// "views of set 0 (sprites 49-56)", "layout (sprite 97)", "callback result 7".
std::string ComposeEndText(const GrfItems& items, const Composition& c);
// "ground", "building", "child".
const char* PartRoleWord(PartRole role);

}  // namespace vossel
