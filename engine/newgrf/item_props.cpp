// The property tables of Action 00: per feature, each property's size and what its value means.
// Rows whose meaning is not confirmed keep their size (so that the rest of a block can be read)
// and are shown raw.
#include <array>
#include <memory>

#include "items.h"

namespace vossel {
namespace {

using S = PropSize;
using U = PropUnit;

constexpr const char* kClimates[16] = {"temperate", "arctic", "tropic", "toyland"};
constexpr const char* kTrainFlags[16] = {
    "tilting",    "2CC",   "multiple unit",      "flip in depot",
    "auto-refit", nullptr, "no breakdown smoke", "sprite stack"};
constexpr const char* kRoadFlags[16] = {"tram", "2CC"};
constexpr const char* kTwoCcFlags[16] = {nullptr, "2CC"};
constexpr const char* kVehicleCallbacks[16] = {"visual effect (10)",     "wagon length (11)",
                                               "load amount (12)",       "refitted capacity (15)",
                                               "articulated parts (16)", "cargo subtype text (19)",
                                               "colour mapping (2D)",    "sound effect (33)"};
constexpr const char* kHouseFlags[16] = {"1x1", "not on slopes", "2x1",    "1x2",
                                         "2x2", "animated",      "church", "stadium"};
constexpr const char* kHouseAvailability[16] = {
    "edge",      "outskirts", "outer suburbs", "inner suburbs", "centre", nullptr,
    nullptr,     nullptr,     nullptr,         nullptr,         nullptr,  "above snow line",
    "temperate", "arctic",    "tropic",        "toyland"};
constexpr const char* kHouseExtraFlags[16] = {"only from south-east", "protected",
                                              "synchronised callback", "random animation"};
constexpr const char* kHouseCallbacks1[16] = {"construction check (17)",
                                              "next frame (1A)",
                                              "animation control (1B)",
                                              nullptr,
                                              "colour (1E)",
                                              nullptr,
                                              "animation speed (20)",
                                              "destruction (21)"};
constexpr const char* kHouseCallbacks2[16] = {nullptr, "cargo production (2E)", "protection (143)",
                                              "foundations (14E)", "autoslope (14F)"};
constexpr const char* kStationCallbacks[16] = {"availability (13)", "layout select (14)",
                                               "next frame (141)", "animation speed (142)",
                                               "slope check (149)"};
constexpr const char* kTileCallbacks[16] = {
    "next frame (26)",  "animation speed (27)", nullptr,         nullptr,
    "shape check (2F)", "foundations (30)",     "autoslope (3C)"};
constexpr const char* kIndustryCallbacks1[16] = {nullptr,
                                                 "production on arrival",
                                                 "production every 256 ticks",
                                                 "location check (28)",
                                                 "random production change (29)",
                                                 "monthly production change (35)",
                                                 "cargo subtype (37)",
                                                 "fund window text (38)"};
constexpr const char* kIndustryCallbacks2[16] = {"industry window text (3A)",
                                                 "special events (3B)",
                                                 "stop accepting (3D)",
                                                 "colour (14A)",
                                                 nullptr,
                                                 nullptr,
                                                 "build-time production (15F)"};
constexpr const char* kIndustryLife[16] = {"extractive", "organic", "processing"};
constexpr const char* kIndustrySpecial[16] = {"plants fields", nullptr, "built on water"};
constexpr const char* kObjectFlags[16] = {nullptr,
                                          nullptr,
                                          "removable by anything",
                                          "on water",
                                          "removal gives income",
                                          "no foundations",
                                          "animated",
                                          "only in game",
                                          "2CC",
                                          "not on land",
                                          "draw water",
                                          "bridge above",
                                          "random animation",
                                          "scale by water"};
constexpr const char* kObjectCallbacks[16] = {"slope check (157)",     "next frame (158)",
                                              "animation speed (15A)", "colour (15B)",
                                              "additional text (15C)", "autoslope (15D)"};
constexpr const char* kRailFlags[16] = {"catenary", "no level crossings", "hidden",
                                        nullptr,    "allow 90 degrees",   "disallow 90 degrees"};
constexpr const char* kRoadTypeFlags[16] = {"catenary", "no level crossing", "no houses", "hidden",
                                            "towns may build"};
constexpr const char* kCargoCallbacks[16] = {"profit (39)", "station rating (145)"};
constexpr const char* kAirportTileCallbacks[16] = {
    "next frame (153)", "animation speed (154)", nullptr, nullptr, nullptr, "foundations (150)"};

struct Table {
  std::vector<PropertyRow> Rows;
  // Per feature (0x00..0x15), per property: 1 + the row's index, 0 for none.
  std::array<std::array<uint16_t, 256>, 0x16> Index{};

  void Add(uint8_t feature, uint8_t number, S size, U unit, const char* name, bool confirmed = true,
           const char* const* bits = nullptr, uint16_t fixed = 0) {
    Rows.push_back({feature, number, size, fixed, unit, name, confirmed, bits});
  }
  void Flags(uint8_t feature, uint8_t number, S size, const char* name, const char* const* bits) {
    Add(feature, number, size, U::Flags, name, true, bits);
  }
  void Fixed(uint8_t feature, uint8_t number, uint16_t bytes, U unit, const char* name,
             bool confirmed = true) {
    Add(feature, number, S::Fixed, unit, name, confirmed, nullptr, bytes);
  }
  // A row common to the four vehicle features, numbered per feature.
  void Vehicles(std::array<uint8_t, 4> numbers, S size, U unit, const char* name,
                bool confirmed = true, const char* const* bits = nullptr) {
    for (uint8_t f = 0; f < 4; ++f) Add(f, numbers[f], size, unit, name, confirmed, bits);
  }
};

void VehicleRows(Table& t) {
  t.Vehicles({0x02, 0x02, 0x02, 0x02}, S::Byte, U::Number, "reliability decay");
  t.Vehicles({0x03, 0x03, 0x03, 0x03}, S::Byte, U::Number, "vehicle life (years)");
  t.Vehicles({0x04, 0x04, 0x04, 0x04}, S::Byte, U::Number, "model life (years)");
  t.Vehicles({0x06, 0x06, 0x06, 0x06}, S::Byte, U::Climates, "climates", true, kClimates);
  t.Vehicles({0x07, 0x07, 0x07, 0x07}, S::Byte, U::Number, "loading speed");
  t.Vehicles({0x00, 0x00, 0x00, 0x00}, S::Word, U::Number, "short introduction date", false);
  t.Vehicles({0x2A, 0x1F, 0x1A, 0x1A}, S::Dword, U::LongDate, "introduction date");
  t.Vehicles({0x26, 0x1B, 0x16, 0x16}, S::Byte, U::SignedNumber, "retire early (years)");
  t.Vehicles({0x28, 0x1D, 0x18, 0x18}, S::Word, U::Hex, "refittable cargo classes");
  t.Vehicles({0x29, 0x1E, 0x19, 0x19}, S::Word, U::Hex, "non-refittable cargo classes");
  t.Vehicles({0x1D, 0x16, 0x11, 0x13}, S::Dword, U::Hex, "refit mask");
  t.Vehicles({0x2C, 0x24, 0x1E, 0x1D}, S::ByteList, U::CargoList, "cargos always refittable");
  t.Vehicles({0x2D, 0x25, 0x1F, 0x1E}, S::ByteList, U::CargoList, "cargos never refittable");
  t.Vehicles({0x2B, 0x22, 0x1D, 0x1C}, S::Word, U::Number, "cargo ageing period");
  t.Vehicles({0x1A, 0x20, 0x1B, 0x1B}, S::ExtByte, U::Number, "sort before vehicle");

  // Trains.
  t.Add(0x00, 0x05, S::Byte, U::Number, "track type");
  t.Add(0x00, 0x08, S::Byte, U::Number, "AI special flag");
  t.Add(0x00, 0x09, S::Word, U::Speed16, "speed");
  t.Add(0x00, 0x0B, S::Word, U::PowerHp, "power");
  t.Add(0x00, 0x0D, S::Byte, U::Number, "running cost factor");
  t.Add(0x00, 0x0E, S::Dword, U::Hex, "running cost base");
  t.Add(0x00, 0x12, S::Byte, U::Hex, "sprite ID");
  t.Add(0x00, 0x13, S::Byte, U::Number, "dual-headed");
  t.Add(0x00, 0x14, S::Byte, U::Number, "capacity");
  t.Add(0x00, 0x15, S::Byte, U::Cargo, "default cargo");
  t.Add(0x00, 0x16, S::Byte, U::Tonnes, "weight (low byte)");
  t.Add(0x00, 0x17, S::Byte, U::Number, "cost factor");
  t.Add(0x00, 0x18, S::Byte, U::Number, "AI engine rank");
  t.Add(0x00, 0x19, S::Byte, U::Hex, "engine class");
  t.Add(0x00, 0x1B, S::Word, U::PowerHp, "extra power per wagon");
  t.Add(0x00, 0x1C, S::Byte, U::Number, "refit cost");
  t.Flags(0x00, 0x1E, S::Byte, "callbacks", kVehicleCallbacks);
  t.Add(0x00, 0x1F, S::Byte, U::Fraction255, "tractive effort coefficient");
  t.Add(0x00, 0x20, S::Byte, U::Fraction255, "air drag coefficient");
  t.Add(0x00, 0x21, S::Byte, U::Number, "shorten by (eighths)");
  t.Add(0x00, 0x22, S::Byte, U::Hex, "visual effect");
  t.Add(0x00, 0x23, S::Byte, U::Tonnes, "extra weight per wagon");
  t.Add(0x00, 0x24, S::Byte, U::WeightHigh, "weight (high byte)");
  t.Add(0x00, 0x25, S::Byte, U::Hex, "user bits");
  t.Flags(0x00, 0x27, S::Byte, "misc flags", kTrainFlags);
  t.Add(0x00, 0x2E, S::Word, U::Number, "curve speed modifier (/256)");

  // Road vehicles.
  t.Add(0x01, 0x05, S::Byte, U::Number, "road or tram type");
  t.Add(0x01, 0x08, S::Byte, U::Speed32, "speed");
  t.Add(0x01, 0x09, S::Byte, U::Number, "running cost factor");
  t.Add(0x01, 0x0A, S::Dword, U::Hex, "running cost base");
  t.Add(0x01, 0x0E, S::Byte, U::Hex, "sprite ID");
  t.Add(0x01, 0x0F, S::Byte, U::Number, "capacity");
  t.Add(0x01, 0x10, S::Byte, U::Cargo, "default cargo");
  t.Add(0x01, 0x11, S::Byte, U::Number, "cost factor");
  t.Add(0x01, 0x12, S::Byte, U::Number, "sound effect");
  t.Add(0x01, 0x13, S::Byte, U::Power10Hp, "power");
  t.Add(0x01, 0x14, S::Byte, U::QuarterTonnes, "weight");
  t.Add(0x01, 0x15, S::Byte, U::Speed08, "speed (large values)");
  t.Flags(0x01, 0x17, S::Byte, "callbacks", kVehicleCallbacks);
  t.Add(0x01, 0x18, S::Byte, U::Fraction255, "tractive effort coefficient");
  t.Add(0x01, 0x19, S::Byte, U::Fraction255, "air drag coefficient");
  t.Add(0x01, 0x1A, S::Byte, U::Number, "refit cost");
  t.Flags(0x01, 0x1C, S::Byte, "misc flags", kRoadFlags);
  t.Add(0x01, 0x21, S::Byte, U::Hex, "visual effect");
  t.Add(0x01, 0x23, S::Byte, U::Number, "shorten by (eighths)");

  // Ships.
  t.Add(0x02, 0x08, S::Byte, U::Hex, "sprite ID");
  t.Add(0x02, 0x09, S::Byte, U::Number, "refittable");
  t.Add(0x02, 0x0A, S::Byte, U::Number, "cost factor");
  t.Add(0x02, 0x0B, S::Byte, U::Speed32, "speed");
  t.Add(0x02, 0x0C, S::Byte, U::Cargo, "default cargo");
  t.Add(0x02, 0x0D, S::Word, U::Number, "capacity");
  t.Add(0x02, 0x0F, S::Byte, U::Number, "running cost factor");
  t.Add(0x02, 0x10, S::Byte, U::Number, "sound effect");
  t.Flags(0x02, 0x12, S::Byte, "callbacks", kVehicleCallbacks);
  t.Add(0x02, 0x13, S::Byte, U::Number, "refit cost");
  t.Add(0x02, 0x14, S::Byte, U::Number, "ocean speed fraction (255 - f x 255)");
  t.Add(0x02, 0x15, S::Byte, U::Number, "canal speed fraction (255 - f x 255)");
  t.Flags(0x02, 0x17, S::Byte, "misc flags", kTwoCcFlags);
  t.Add(0x02, 0x1C, S::Byte, U::Hex, "visual effect");

  // Aircraft.
  t.Add(0x03, 0x08, S::Byte, U::Hex, "sprite ID");
  t.Add(0x03, 0x09, S::Byte, U::Number, "not a helicopter");
  t.Add(0x03, 0x0A, S::Byte, U::Number, "large");
  t.Add(0x03, 0x0B, S::Byte, U::Number, "cost factor");
  t.Add(0x03, 0x0C, S::Byte, U::Speed8Mph, "speed");
  t.Add(0x03, 0x0D, S::Byte, U::Number, "acceleration");
  t.Add(0x03, 0x0E, S::Byte, U::Number, "running cost factor");
  t.Add(0x03, 0x0F, S::Word, U::Number, "passenger capacity");
  t.Add(0x03, 0x11, S::Byte, U::Number, "mail capacity");
  t.Add(0x03, 0x12, S::Byte, U::Number, "sound effect");
  t.Flags(0x03, 0x14, S::Byte, "callbacks", kVehicleCallbacks);
  t.Add(0x03, 0x15, S::Byte, U::Number, "refit cost");
  t.Flags(0x03, 0x17, S::Byte, "misc flags", kTwoCcFlags);
  t.Add(0x03, 0x1F, S::Word, U::Number, "range");
}

void BuildingRows(Table& t) {
  // Stations.
  t.Add(0x04, 0x08, S::Dword, U::Label, "class");
  t.Add(0x04, 0x0A, S::Byte, U::Number, "copy layouts from station");
  t.Flags(0x04, 0x0B, S::Byte, "callbacks", kStationCallbacks);
  t.Add(0x04, 0x0C, S::Byte, U::Hex, "disabled platform counts");
  t.Add(0x04, 0x0D, S::Byte, U::Hex, "disabled lengths");
  t.Add(0x04, 0x0F, S::Byte, U::Number, "copy platform layouts from station", false);
  t.Add(0x04, 0x10, S::Word, U::Number, "little/lots threshold");
  t.Add(0x04, 0x11, S::Byte, U::Hex, "tiles with pylons");
  t.Add(0x04, 0x12, S::Dword, U::Hex, "cargo random triggers");
  t.Add(0x04, 0x13, S::Byte, U::Hex, "general flags");
  t.Add(0x04, 0x14, S::Byte, U::Hex, "tiles without wires");
  t.Add(0x04, 0x15, S::Byte, U::Hex, "tiles not to enter");
  t.Add(0x04, 0x16, S::Word, U::Hex, "animation info");
  t.Add(0x04, 0x17, S::Byte, U::Number, "animation speed");
  t.Add(0x04, 0x18, S::Word, U::Hex, "animation triggers");
  t.Add(0x04, 0x1A, S::StationLayouts, U::Hex, "sprite layouts");

  // Canals.
  t.Add(0x05, 0x08, S::Byte, U::Hex, "callbacks");
  t.Add(0x05, 0x09, S::Byte, U::Hex, "graphics flags");

  // Bridges: documented only.
  t.Add(0x06, 0x08, S::Byte, U::Number, "year available", false);
  t.Add(0x06, 0x09, S::Byte, U::Number, "minimum length", false);
  t.Add(0x06, 0x0A, S::Byte, U::Number, "maximum length", false);
  t.Add(0x06, 0x0B, S::Byte, U::Number, "cost factor", false);
  t.Add(0x06, 0x0C, S::Word, U::Number, "maximum speed", false);
  t.Add(0x06, 0x0E, S::Byte, U::Hex, "flags", false);
  t.Add(0x06, 0x0F, S::Dword, U::Number, "long year available", false);
  t.Add(0x06, 0x10, S::Word, U::TextId, "name", false);
  t.Add(0x06, 0x11, S::Word, U::TextId, "rail text", false);
  t.Add(0x06, 0x12, S::Word, U::TextId, "road text", false);
  t.Add(0x06, 0x13, S::Word, U::Number, "cost factor (word)", false);

  // Houses.
  t.Add(0x07, 0x08, S::Byte, U::Number, "substitute building");
  t.Flags(0x07, 0x09, S::Byte, "flags", kHouseFlags);
  t.Fixed(0x07, 0x0A, 2, U::Years1920, "years available");
  t.Add(0x07, 0x0B, S::Byte, U::Number, "population");
  t.Add(0x07, 0x0C, S::Byte, U::Number, "mail multiplier");
  t.Add(0x07, 0x0D, S::Byte, U::Hex, "acceptance 1 (old)", false);
  t.Add(0x07, 0x0E, S::Byte, U::Hex, "acceptance 2 (old)", false);
  t.Add(0x07, 0x0F, S::Byte, U::Hex, "acceptance 3 (old)", false);
  t.Add(0x07, 0x10, S::Word, U::Number, "local authority impact");
  t.Add(0x07, 0x11, S::Byte, U::Number, "removal cost multiplier");
  t.Add(0x07, 0x12, S::Word, U::TextId, "name");
  t.Flags(0x07, 0x13, S::Word, "availability", kHouseAvailability);
  t.Flags(0x07, 0x14, S::Byte, "callbacks 1", kHouseCallbacks1);
  t.Add(0x07, 0x15, S::Byte, U::Number, "override");
  t.Add(0x07, 0x16, S::Byte, U::Number, "refresh multiplier");
  t.Fixed(0x07, 0x17, 4, U::Number, "random colours");
  t.Add(0x07, 0x18, S::Byte, U::Number, "probability (x16)");
  t.Flags(0x07, 0x19, S::Byte, "extra flags", kHouseExtraFlags);
  t.Add(0x07, 0x1A, S::Byte, U::Hex, "animation info");
  t.Add(0x07, 0x1B, S::Byte, U::Number, "animation speed");
  t.Add(0x07, 0x1C, S::Byte, U::Number, "building class");
  t.Flags(0x07, 0x1D, S::Byte, "callbacks 2", kHouseCallbacks2);
  t.Add(0x07, 0x1E, S::Dword, U::Hex, "accepted cargo types (old)", false);
  t.Add(0x07, 0x1F, S::Byte, U::Number, "minimum life (years)");
  t.Add(0x07, 0x20, S::ByteList, U::CargoList, "watched cargos");
  t.Add(0x07, 0x21, S::Word, U::Years, "first year available");
  t.Add(0x07, 0x22, S::Word, U::Years, "last year available");
  t.Add(0x07, 0x23, S::PairList, U::CargoAmounts, "accepted cargos");

  // Industry tiles.
  t.Add(0x09, 0x08, S::Byte, U::Number, "substitute tile");
  t.Add(0x09, 0x09, S::Byte, U::Number, "override");
  t.Add(0x09, 0x0A, S::Word, U::Hex, "acceptance 1 (old)", false);
  t.Add(0x09, 0x0B, S::Word, U::Hex, "acceptance 2 (old)", false);
  t.Add(0x09, 0x0C, S::Word, U::Hex, "acceptance 3 (old)", false);
  t.Add(0x09, 0x0D, S::Byte, U::Hex, "land shape flags");
  t.Flags(0x09, 0x0E, S::Byte, "callbacks", kTileCallbacks);
  t.Add(0x09, 0x0F, S::Word, U::Hex, "animation info");
  t.Add(0x09, 0x10, S::Byte, U::Number, "animation speed");
  t.Add(0x09, 0x11, S::Byte, U::Hex, "animation triggers");
  t.Add(0x09, 0x12, S::Byte, U::Hex, "special flags");
  t.Add(0x09, 0x13, S::PairList, U::CargoAmounts, "accepted cargos");

  // Industries.
  t.Add(0x0A, 0x08, S::Byte, U::Number, "substitute industry");
  t.Add(0x0A, 0x09, S::Byte, U::Number, "override");
  t.Add(0x0A, 0x0A, S::TileLayouts, U::Hex, "layouts");
  t.Flags(0x0A, 0x0B, S::Byte, "production flags", kIndustryLife);
  t.Add(0x0A, 0x0C, S::Word, U::TextId, "closure message");
  t.Add(0x0A, 0x0D, S::Word, U::TextId, "production up message");
  t.Add(0x0A, 0x0E, S::Word, U::TextId, "production down message");
  t.Add(0x0A, 0x0F, S::Byte, U::Number, "fund cost multiplier");
  t.Add(0x0A, 0x10, S::Word, U::Hex, "produced cargo types (old)", false);
  t.Add(0x0A, 0x11, S::Dword, U::Hex, "accepted cargo types (old)", false);
  t.Add(0x0A, 0x12, S::Byte, U::Number, "production multiplier 1");
  t.Add(0x0A, 0x13, S::Byte, U::Number, "production multiplier 2");
  t.Add(0x0A, 0x14, S::Byte, U::Number, "minimal cargo distributed");
  t.Add(0x0A, 0x15, S::ByteList, U::Number, "random sounds");
  t.Fixed(0x0A, 0x16, 3, U::Number, "conflicting industries");
  t.Add(0x0A, 0x17, S::Byte, U::Number, "probability at map generation");
  t.Add(0x0A, 0x18, S::Byte, U::Number, "probability in game");
  t.Add(0x0A, 0x19, S::Byte, U::Number, "map colour");
  t.Flags(0x0A, 0x1A, S::Dword, "special flags", kIndustrySpecial);
  t.Add(0x0A, 0x1B, S::Word, U::TextId, "new industry message");
  t.Add(0x0A, 0x1C, S::Dword, U::Hex, "input 1 multipliers");
  t.Add(0x0A, 0x1D, S::Dword, U::Hex, "input 2 multipliers");
  t.Add(0x0A, 0x1E, S::Dword, U::Hex, "input 3 multipliers");
  t.Add(0x0A, 0x1F, S::Word, U::TextId, "name");
  t.Add(0x0A, 0x20, S::Dword, U::Hex, "prospecting chance");
  t.Flags(0x0A, 0x21, S::Byte, "callbacks 1", kIndustryCallbacks1);
  t.Flags(0x0A, 0x22, S::Byte, "callbacks 2", kIndustryCallbacks2);
  t.Add(0x0A, 0x23, S::Dword, U::Number, "removal cost multiplier");
  t.Add(0x0A, 0x24, S::Word, U::TextId, "nearby station name");
  t.Add(0x0A, 0x25, S::ByteList, U::CargoList, "produced cargos");
  t.Add(0x0A, 0x26, S::ByteList, U::CargoList, "accepted cargos");
  t.Add(0x0A, 0x27, S::ByteList, U::Number, "production rates");
  t.Add(0x0A, 0x28, S::MultiplierGrid, U::Hex, "input multipliers");
}

void OtherRows(Table& t) {
  // Global settings.
  t.Add(0x08, 0x08, S::Byte, U::SignedNumber, "cost base multiplier (08 = unchanged)");
  t.Add(0x08, 0x09, S::Dword, U::Label, "cargo table label");
  t.Fixed(0x08, 0x10, 12 * 32, U::Hex, "snow line table");
  t.Fixed(0x08, 0x11, 8, U::Hex, "engine override");
  t.Add(0x08, 0x12, S::Dword, U::Label, "railtype table label");
  t.Add(0x08, 0x13, S::NameTable, U::Hex, "gender table");
  t.Add(0x08, 0x14, S::NameTable, U::Hex, "case table");
  t.Add(0x08, 0x15, S::Byte, U::Number, "plural form");
  t.Add(0x08, 0x16, S::Dword, U::Label, "roadtype table label");
  t.Add(0x08, 0x17, S::Dword, U::Label, "tramtype table label");

  // Cargos.
  t.Add(0x0B, 0x08, S::Byte, U::Number, "bit number");
  t.Add(0x0B, 0x09, S::Word, U::TextId, "name");
  t.Add(0x0B, 0x0A, S::Word, U::TextId, "unit name");
  t.Add(0x0B, 0x0B, S::Word, U::TextId, "one unit text", false);
  t.Add(0x0B, 0x0C, S::Word, U::TextId, "several units text", false);
  t.Add(0x0B, 0x0D, S::Word, U::TextId, "abbreviation");
  t.Add(0x0B, 0x0E, S::Word, U::Hex, "icon sprite");
  t.Add(0x0B, 0x0F, S::Byte, U::SixteenthTonnes, "weight of one unit");
  t.Add(0x0B, 0x10, S::Byte, U::Number, "penalty lower bound (days)");
  t.Add(0x0B, 0x11, S::Byte, U::Number, "single penalty length (days)");
  t.Add(0x0B, 0x12, S::Dword, U::Number, "base price");
  t.Add(0x0B, 0x13, S::Byte, U::Number, "station list colour");
  t.Add(0x0B, 0x14, S::Byte, U::Number, "payment list colour");
  t.Add(0x0B, 0x15, S::Byte, U::Number, "freight");
  t.Add(0x0B, 0x16, S::Word, U::Hex, "cargo classes");
  t.Add(0x0B, 0x17, S::Dword, U::Label, "label");
  t.Add(0x0B, 0x18, S::Byte, U::Hex, "town growth effect");
  t.Add(0x0B, 0x19, S::Word, U::Number, "town growth multiplier (/256)");
  t.Flags(0x0B, 0x1A, S::Byte, "callbacks", kCargoCallbacks);
  t.Add(0x0B, 0x1B, S::Word, U::TextId, "units of cargo");
  t.Add(0x0B, 0x1C, S::Word, U::TextId, "items of cargo");
  t.Add(0x0B, 0x1D, S::Word, U::Number, "capacity multiplier (/256)");

  // Sound effects: documented only.
  t.Add(0x0C, 0x08, S::Byte, U::Hex, "relative volume", false);
  t.Add(0x0C, 0x09, S::Byte, U::Number, "priority", false);
  t.Add(0x0C, 0x0A, S::Byte, U::Number, "override sound", false);

  // Airports and airport tiles.
  t.Add(0x0D, 0x08, S::Byte, U::Number, "override");
  t.Add(0x0D, 0x0A, S::AirportLayouts, U::Hex, "layouts");
  t.Fixed(0x0D, 0x0C, 4, U::Years, "years available");
  t.Add(0x0D, 0x0D, S::Byte, U::Number, "compatible original airport");
  t.Add(0x0D, 0x0E, S::Byte, U::Number, "catchment radius");
  t.Add(0x0D, 0x0F, S::Byte, U::Number, "noise level");
  t.Add(0x0D, 0x10, S::Word, U::TextId, "name");
  t.Add(0x0D, 0x11, S::Word, U::Number, "maintenance cost factor");
  t.Add(0x11, 0x08, S::Byte, U::Number, "substitute tile");
  t.Add(0x11, 0x09, S::Byte, U::Number, "override");
  t.Flags(0x11, 0x0E, S::Byte, "callbacks", kAirportTileCallbacks);
  t.Add(0x11, 0x0F, S::Word, U::Hex, "animation info");
  t.Add(0x11, 0x10, S::Byte, U::Number, "animation speed");
  t.Add(0x11, 0x11, S::Byte, U::Hex, "animation triggers");

  // Objects.
  t.Add(0x0F, 0x08, S::Dword, U::Label, "class");
  t.Add(0x0F, 0x09, S::Word, U::TextId, "class name");
  t.Add(0x0F, 0x0A, S::Word, U::TextId, "name");
  t.Flags(0x0F, 0x0B, S::Byte, "climates", kClimates);
  t.Add(0x0F, 0x0C, S::Byte, U::Hex, "size (y, x)");
  t.Add(0x0F, 0x0D, S::Byte, U::Number, "build cost multiplier");
  t.Add(0x0F, 0x0E, S::Dword, U::LongDate, "introduction date");
  t.Add(0x0F, 0x0F, S::Dword, U::LongDate, "end of life date");
  t.Flags(0x0F, 0x10, S::Word, "flags", kObjectFlags);
  t.Add(0x0F, 0x11, S::Word, U::Hex, "animation info");
  t.Add(0x0F, 0x12, S::Byte, U::Number, "animation speed");
  t.Add(0x0F, 0x13, S::Word, U::Hex, "animation triggers");
  t.Add(0x0F, 0x14, S::Byte, U::Number, "removal cost multiplier");
  t.Flags(0x0F, 0x15, S::Word, "callbacks", kObjectCallbacks);
  t.Add(0x0F, 0x16, S::Byte, U::Number, "height");
  t.Add(0x0F, 0x17, S::Byte, U::Number, "number of views");
  t.Add(0x0F, 0x18, S::Byte, U::Number, "generation count", false);

  // Railtypes, roadtypes, tramtypes.
  for (uint8_t f : {uint8_t{0x10}, uint8_t{0x12}, uint8_t{0x13}}) {
    const bool rail = f == 0x10;
    t.Add(f, 0x08, S::Dword, U::Label, "label");
    t.Add(f, 0x09, S::Word, U::TextId, "toolbar caption");
    t.Add(f, 0x0A, S::Word, U::TextId, "menu text");
    t.Add(f, 0x0B, S::Word, U::TextId, "build window caption");
    t.Add(f, 0x0C, S::Word, U::TextId, "autoreplace text");
    t.Add(f, 0x0D, S::Word, U::TextId, "new engine text");
    if (rail) t.Add(f, 0x0E, S::DwordList, U::LabelList, "compatible railtypes");
    t.Add(f, 0x0F, S::DwordList, U::LabelList, rail ? "powered railtypes" : "powered types");
    t.Flags(f, 0x10, S::Byte, "flags", rail ? kRailFlags : kRoadTypeFlags);
    if (rail) {
      t.Add(f, 0x11, S::Byte, U::Number, "curve speed multiplier");
      t.Add(f, 0x12, S::Byte, U::Number, "station graphics");
    }
    t.Add(f, 0x13, S::Word, U::Number, "construction cost");
    t.Add(f, 0x14, S::Word, rail ? U::Speed16 : U::Speed32, "speed limit");
    if (rail) t.Add(f, 0x15, S::Byte, U::Number, "acceleration model");
    t.Add(f, 0x16, S::Byte, U::Number, "minimap colour");
    t.Add(f, 0x17, S::Dword, U::LongDate, "introduction date");
    t.Add(f, 0x18, S::DwordList, U::LabelList, "required for introduction");
    t.Add(f, 0x19, S::DwordList, U::LabelList, "introduced together");
    t.Add(f, 0x1A, S::Byte, U::Number, "sort order");
    t.Add(f, 0x1B, S::Word, U::TextId, "name");
    t.Add(f, 0x1C, S::Word, U::Number, "maintenance cost factor");
    t.Add(f, 0x1D, S::DwordList, U::LabelList, "alternative labels");
  }

  // Road stops: documented only.
  t.Add(0x14, 0x08, S::Dword, U::Label, "class", false);
  t.Add(0x14, 0x09, S::Byte, U::Number, "type", false);
  t.Add(0x14, 0x0A, S::Word, U::TextId, "name", false);
  t.Add(0x14, 0x0B, S::Word, U::TextId, "class name", false);
  t.Add(0x14, 0x0C, S::Byte, U::Number, "draw mode", false);
  t.Add(0x14, 0x0D, S::Dword, U::Hex, "random trigger cargos", false);
  t.Add(0x14, 0x0E, S::Word, U::Hex, "animation info", false);
  t.Add(0x14, 0x0F, S::Byte, U::Number, "animation speed", false);
  t.Add(0x14, 0x10, S::Word, U::Hex, "animation triggers", false);
  t.Add(0x14, 0x11, S::Byte, U::Hex, "callbacks", false);
  t.Add(0x14, 0x12, S::Dword, U::Hex, "flags", false);
  t.Add(0x14, 0x15, S::Word, U::Number, "cost multipliers", false);
}

const Table& TheTable() {
  static const std::unique_ptr<Table> table = [] {
    auto t = std::make_unique<Table>();
    VehicleRows(*t);
    BuildingRows(*t);
    OtherRows(*t);
    for (size_t i = 0; i < t->Rows.size(); ++i) {
      const PropertyRow& r = t->Rows[i];
      t->Index[r.Feature][r.Number] = static_cast<uint16_t>(i + 1);
    }
    return t;
  }();
  return *table;
}

}  // namespace

const PropertyRow* FindProperty(uint8_t feature, uint8_t number) {
  const Table& t = TheTable();
  if (feature >= t.Index.size()) return nullptr;
  const uint16_t at = t.Index[feature][number];
  return at == 0 ? nullptr : &t.Rows[at - 1];
}

}  // namespace vossel
