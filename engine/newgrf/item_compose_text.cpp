// The sentences of a composition: branch points, their choices and where the way ended.
#include <string>

#include "item_compose.h"

namespace vossel {
namespace {

std::string HexByte(uint32_t v) {
  const char* digits = "0123456789ABCDEF";
  return {digits[(v >> 4) & 15], digits[v & 15]};
}

}  // namespace

std::string BranchChoiceText(const GrfItems& items, const BranchPoint& b, int32_t pick) {
  const SpriteGroup& g = items.Groups[static_cast<size_t>(b.Group)];
  switch (b.Kind) {
    case BranchKind::Random:
      return "random " + std::to_string(pick + 1) + " of " + std::to_string(b.Choices);
    case BranchKind::Amount:
      return std::string(g.Feature == 0x04 ? "set " : "amount set ") + std::to_string(pick + 1) +
             " of " + std::to_string(b.Choices);
    case BranchKind::SetSprite:
      return "sprite " + std::to_string(pick + 1) + " of " + std::to_string(b.Choices) +
             " in each set";
    case BranchKind::Variational:
      break;
  }
  if (pick < 0 || static_cast<size_t>(pick) >= g.Ranges.size()) return "default";
  const VarRange& r = g.Ranges[static_cast<size_t>(pick)];
  return r.Low == r.High ? std::to_string(r.Low)
                         : std::to_string(r.Low) + "-" + std::to_string(r.High);
}

std::string BranchText(const GrfItems& items, const BranchPoint& b) {
  const SpriteGroup& g = items.Groups[static_cast<size_t>(b.Group)];
  const std::string id =
      "group " + HexByte(g.Id) + " (sprite " + std::to_string(g.Sprite + 1) + ")";
  switch (b.Kind) {
    case BranchKind::Random:
      return "random " + id;
    case BranchKind::Amount:
      return "standard " + id;
    case BranchKind::SetSprite:
      return "layout " + id;
    case BranchKind::Variational:
      break;
  }
  std::string out = "switch " + id;
  if (!g.Adjusts.empty()) out += " on " + AdjustText(g.Adjusts.front(), g.Feature);
  if (g.Adjusts.size() > 1) out += " ...";
  return out;
}

const char* PartRoleWord(PartRole role) {
  switch (role) {
    case PartRole::Ground:
      return "ground";
    case PartRole::Building:
      return "building";
    case PartRole::Child:
      return "child";
  }
  return "";
}

std::string ComposeEndText(const GrfItems& items, const Composition& c) {
  const auto set = [&] {
    const SpriteSetRef& r = items.Sets[static_cast<size_t>(c.Set)];
    std::vector<int32_t> sprites;
    for (uint32_t k = 0; k < r.Count && k < 1024; ++k)
      sprites.push_back(r.First + static_cast<int32_t>(k));
    return "set " + std::to_string(r.Number) + " (sprites " + SpriteRuns(sprites) + ")";
  };
  const auto group = [&] {
    return "group at sprite " +
           std::to_string(items.Groups[static_cast<size_t>(c.Group)].Sprite + 1);
  };
  switch (c.End) {
    case ComposeEnd::Views:
      return std::to_string(c.Views.size()) + " views of " + set();
    case ComposeEnd::Set:
      return set();
    case ComposeEnd::Layout:
      return "sprite layout, " + group();
    case ComposeEnd::Callback:
      return "callback result " + std::to_string(c.Value);
    case ComposeEnd::Undefined:
      return "undefined reference " + std::to_string(c.Value);
    case ComposeEnd::NoEntry:
      return "no graphics for this request";
    case ComposeEnd::Other:
      return "nothing to draw: " + group();
    case ComposeEnd::Loop:
      return "a loop at " + group();
  }
  return "";
}

}  // namespace vossel
