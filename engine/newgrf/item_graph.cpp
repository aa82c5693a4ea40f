// The graph below an item: from its Action 03 entries through the groups to sets and layouts,
// depth first, each group expanded once. A group only names groups read before it, so a reference
// to itself or a later one can only come from damage: it ends its branch as a loop.
#include <algorithm>
#include <unordered_set>

#include "items.h"

namespace vossel {
namespace {

struct Walk {
  const GrfItems& Items;
  ItemGraph Out;
  std::unordered_set<int32_t> Expanded;  // groups shown whole already
  std::unordered_set<int32_t> SetsSeen;
  std::vector<GraphNode> Stack;
};

void ReachSet(Walk& w, int32_t set) {
  if (set < 0 || !w.SetsSeen.insert(set).second) return;
  const SpriteSetRef& r = w.Items.Sets[static_cast<size_t>(set)];
  for (uint32_t k = 0; k < r.Count; ++k) w.Out.Sprites.push_back(r.First + static_cast<int32_t>(k));
}

// A reference as the node it leads to, below `parent` (-1 for an Action 03 entry).
GraphNode NodeOf(const GroupRef& ref, int32_t depth, GraphNode::Via how, int32_t index,
                 int32_t parent) {
  GraphNode n;
  n.Depth = depth;
  n.How = how;
  n.Index = index;
  n.Value = ref.Value;
  n.Parent = parent;
  switch (ref.Kind) {
    case RefKind::Group:
      n.Kind = parent >= 0 && ref.Group >= parent ? NodeKind::Loop : NodeKind::Group;
      n.Group = ref.Group;
      break;
    case RefKind::Callback:
      n.Kind = NodeKind::Callback;
      break;
    case RefKind::Set:
      n.Kind = NodeKind::Set;
      n.Set = ref.Set;
      break;
    case RefKind::Undefined:
      n.Kind = NodeKind::Undefined;
      break;
  }
  return n;
}

// Pushes a group's children in reverse, so that they come off the stack in file order.
void PushChildren(Walk& w, const GraphNode& at) {
  const SpriteGroup& g = w.Items.Groups[static_cast<size_t>(at.Group)];
  const int32_t d = at.Depth + 1;
  std::vector<GraphNode> kids;
  using V = GraphNode::Via;
  for (size_t i = 0; i < g.Loaded.size(); ++i)
    kids.push_back(NodeOf(g.Loaded[i], d, V::Loaded, static_cast<int32_t>(i), at.Group));
  for (size_t i = 0; i < g.Loading.size(); ++i)
    kids.push_back(NodeOf(g.Loading[i], d, V::Loading, static_cast<int32_t>(i), at.Group));
  for (size_t i = 0; i < g.Choices.size(); ++i)
    kids.push_back(NodeOf(g.Choices[i], d, V::Choice, static_cast<int32_t>(i), at.Group));
  for (size_t i = 0; i < g.Ranges.size(); ++i)
    kids.push_back(NodeOf(g.Ranges[i].Target, d, V::Range, static_cast<int32_t>(i), at.Group));
  if (g.HasDefault) kids.push_back(NodeOf(g.Default, d, V::Default, -1, at.Group));
  if (g.Kind == GroupKind::Layout) {
    for (int32_t i = -1; i < static_cast<int32_t>(g.Sprites.size()); ++i) {
      GraphNode n;
      n.Kind = NodeKind::LayoutPart;
      n.Depth = d;
      n.Group = at.Group;
      n.Part = i;
      n.How = V::Sprite;
      n.Index = i;
      const LayoutSprite& s = i < 0 ? g.Ground : g.Sprites[static_cast<size_t>(i)];
      n.Set = s.Set;
      kids.push_back(n);
    }
  }
  for (auto k = kids.rbegin(); k != kids.rend(); ++k) w.Stack.push_back(*k);
}

void Visit(Walk& w, GraphNode n, int32_t entry) {
  n.Entry = entry;
  switch (n.Kind) {
    case NodeKind::Group: {
      if (!w.Expanded.insert(n.Group).second) {
        n.Kind = NodeKind::Seen;
        break;
      }
      w.Out.Nodes.push_back(n);
      PushChildren(w, n);
      return;
    }
    case NodeKind::Loop:
      w.Out.Problems.push_back({w.Items.Groups[static_cast<size_t>(n.Group)].Sprite,
                                ItemProblemKind::Loop, 0, n.Value, 0});
      break;
    case NodeKind::Set:
    case NodeKind::LayoutPart:
      ReachSet(w, n.Set);
      break;
    default:
      break;
  }
  w.Out.Nodes.push_back(n);
}

}  // namespace

ItemGraph GraphOf(const GrfItems& items, const Item& item) {
  Walk w{items, {}, {}, {}, {}};
  for (size_t e = 0; e < item.Graphics.size(); ++e) {
    const auto entry = static_cast<int32_t>(e);
    GraphNode root;
    root.Kind = NodeKind::Entry;
    root.Entry = entry;
    w.Out.Nodes.push_back(root);
    w.Stack.push_back(NodeOf(item.Graphics[e].Target, 1, GraphNode::Via::Root, 0, -1));
    while (!w.Stack.empty()) {
      const GraphNode n = w.Stack.back();
      w.Stack.pop_back();
      Visit(w, n, entry);
    }
  }
  std::sort(w.Out.Sprites.begin(), w.Out.Sprites.end());
  w.Out.Sprites.erase(std::unique(w.Out.Sprites.begin(), w.Out.Sprites.end()), w.Out.Sprites.end());
  return std::move(w.Out);
}

std::vector<std::vector<int32_t>> ItemsBySprite(const GrfItems& items) {
  std::vector<std::vector<int32_t>> by(static_cast<size_t>(std::max(items.SpriteCount, 0)));
  for (size_t i = 0; i < items.Items.size(); ++i)
    for (int32_t s : GraphOf(items, items.Items[i]).Sprites)
      if (s >= 0 && static_cast<size_t>(s) < by.size())
        by[static_cast<size_t>(s)].push_back(static_cast<int32_t>(i));
  return by;
}

}  // namespace vossel
