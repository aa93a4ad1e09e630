#include "vfile/PositionIndex.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace vfile {

struct PositionIndex::Leaf {
  std::int32_t count;
  std::int16_t lens[kFanOut];
  BlkDesc* blocks[kFanOut];
};

struct PositionIndex::Group {
  std::int32_t count;
  std::int32_t sums[kGroupFanOut];
  Leaf* leaves[kGroupFanOut];
};

union PositionIndex::Node {
  Leaf leaf;
  Group group;
  Node* next;  // on the list of free ones
};

/// Nodes that came from the heap together, and go back together.
struct PositionIndex::Chunk {
  Chunk* next;
  alignas(Node) unsigned char nodes[1];
};

namespace {

/// Makes room for `count` elements at `at` in an array of `size`.
template <typename T>
void OpenGap(T* array, std::int32_t size, std::int32_t at, std::int32_t count) {
  std::copy_backward(array + at, array + size, array + size + count);
}

/// Closes the room of `count` elements at `at`.
template <typename T>
void CloseGap(T* array, std::int32_t size, std::int32_t at, std::int32_t count) {
  std::copy(array + at + count, array + size, array + at);
}

/// The index of the number in which `position` falls when they lie one behind the other, and what lies before it. The last one
/// takes what is left.
template <typename Number>
std::int32_t Fall(const Number* numbers, std::int32_t count, std::int32_t position, std::int32_t& before) {
  constexpr std::int32_t kStride = 8;
  std::int32_t i = 0;
  // Strides are added up without a decision for each number.
  for (; i + kStride < count; i += kStride) {
    std::int32_t sum = 0;
    for (std::int32_t k = 0; k < kStride; ++k) sum += numbers[i + k];
    if (position - before < sum) break;
    before += sum;
  }
  for (; i + 1 < count && position - before >= numbers[i]; ++i) before += numbers[i];
  return i;
}

template <typename Number>
std::int32_t Sum(const Number* numbers, std::int32_t count) {
  std::int32_t sum = 0;
  for (std::int32_t i = 0; i < count; ++i) sum += numbers[i];
  return sum;
}

}  // namespace

// ---- Nodes ----

PositionIndex::~PositionIndex() {
  while (chunks_ != nullptr) {
    Chunk* chunk = chunks_;
    chunks_ = chunk->next;
    ::operator delete(chunk);
  }
  delete[] top_;
  delete[] topSums_;
}

/// Brings so many free nodes, in one piece.
bool PositionIndex::Reserve(std::size_t nodes) {
  void* memory = ::operator new(offsetof(Chunk, nodes) + nodes * sizeof(Node), std::nothrow);
  if (memory == nullptr) return false;
  auto* chunk = static_cast<Chunk*>(memory);
  chunk->next = chunks_;
  chunks_ = chunk;
  auto* first = reinterpret_cast<Node*>(chunk->nodes);
  for (std::size_t i = nodes; i > 0; --i) {
    first[i - 1].next = free_;
    free_ = first + i - 1;
  }
  nodes_ += nodes;
  return true;
}

PositionIndex::Node* PositionIndex::NewNode() {
  // A part of what there is, so that the chunks stay few and little of the last one lies idle.
  if (free_ == nullptr) Reserve(nodes_ / 32 + 2);
  Node* node = free_;
  if (node != nullptr) free_ = node->next;
  return node;
}

void PositionIndex::FreeNode(void* node) {
  auto* freed = static_cast<Node*>(node);
  freed->next = free_;
  free_ = freed;
}

bool PositionIndex::ReserveTop(std::int32_t groups) {
  if (groups <= topRoom_) return true;
  const std::int32_t room = groups + groups / 2 + 4;
  auto* top = new (std::nothrow) Group*[static_cast<std::size_t>(room)];
  auto* sums = new (std::nothrow) std::int32_t[static_cast<std::size_t>(room)];
  if (top == nullptr || sums == nullptr) {
    delete[] top;
    delete[] sums;
    return false;
  }
  std::copy(top_, top_ + topCount_, top);
  std::copy(topSums_, topSums_ + topCount_, sums);
  delete[] top_;
  delete[] topSums_;
  top_ = top;
  topSums_ = sums;
  topRoom_ = room;
  return true;
}

// ---- Making ----

bool PositionIndex::Build(BlkDesc* first, std::int32_t count) {
  const std::int32_t leaves = (count + kFill - 1) / kFill;
  const std::int32_t groups = (leaves + kGroupFill - 1) / kGroupFill;
  if (!ReserveTop(groups) || !Reserve(static_cast<std::size_t>(leaves) + static_cast<std::size_t>(groups)))
    return false;
  Group* group = nullptr;
  Leaf* leaf = nullptr;
  for (BlkDesc* p = first; p != nullptr; p = p->next) {
    if (leaf == nullptr || leaf->count == kFill) {
      if (group == nullptr || group->count == kGroupFill) {
        group = &NewNode()->group;
        group->count = 0;
        topSums_[topCount_] = 0;
        top_[topCount_++] = group;
      }
      leaf = &NewNode()->leaf;
      ++leafCount_;
      leaf->count = 0;
      group->sums[group->count] = 0;
      group->leaves[group->count++] = leaf;
    }
    leaf->lens[leaf->count] = p->len;
    leaf->blocks[leaf->count++] = p;
    group->sums[group->count - 1] += p->len;
    topSums_[topCount_ - 1] += p->len;
  }
  return true;
}

// ---- Searching ----

void PositionIndex::Find(BlkRdr& cursor, std::int32_t position) const {
  std::int32_t base = 0;
  const Group& group = *top_[Fall(topSums_, topCount_, position, base)];
  const Leaf& leaf = *group.leaves[Fall(group.sums, group.count, position, base)];
  cursor.ptr = leaf.blocks[Fall(leaf.lens, leaf.count, position, base)];
  cursor.base = base;
}

PositionIndex::Place PositionIndex::Locate(std::int32_t base) {
  if (locatedBase_ >= 0 && LocateNearby(base)) return located_;
  Place place;
  std::int32_t before = 0;
  place.group = Fall(topSums_, topCount_, base, before);
  const Group& group = *top_[place.group];
  place.leaf = Fall(group.sums, group.count, base, before);
  const Leaf& leaf = *group.leaves[place.leaf];
  place.slot = Fall(leaf.lens, leaf.count, base, before);
  locatedBase_ = base;
  located_ = place;
  return place;
}

/// Goes from the block located last to the one at `base`, if that is the same or one next to it.
bool PositionIndex::LocateNearby(std::int32_t base) {
  const Leaf& leaf = LeafAt(located_);
  const std::int32_t slot = located_.slot;
  if (base != locatedBase_) {
    if (slot + 1 < leaf.count && base == locatedBase_ + leaf.lens[slot]) {
      ++located_.slot;
    } else if (slot > 0 && base == locatedBase_ - leaf.lens[slot - 1]) {
      --located_.slot;
    } else {
      return false;
    }
    locatedBase_ = base;
  }
  return true;
}

PositionIndex::Leaf& PositionIndex::LeafAt(const Place& place) const { return *top_[place.group]->leaves[place.leaf]; }

/// Goes to the next block; false at the end.
bool PositionIndex::Next(Place& place) const {
  if (++place.slot < LeafAt(place).count) return true;
  place.slot = 0;
  if (++place.leaf < top_[place.group]->count) return true;
  place.leaf = 0;
  return ++place.group < topCount_;
}

void PositionIndex::AddToSums(const Place& place, std::int32_t delta) {
  topSums_[place.group] += delta;
  top_[place.group]->sums[place.leaf] += delta;
}

// ---- Changing ----

void PositionIndex::SetLen(const Place& place, std::int32_t len) {
  std::int16_t& held = LeafAt(place).lens[place.slot];
  AddToSums(place, len - held);
  held = static_cast<std::int16_t>(len);
}

void PositionIndex::SetLenBehind(const Place& place, std::int32_t len) {
  Place behind = place;
  if (Next(behind)) SetLen(behind, len);
}

bool PositionIndex::InsertBehind(const Place& place, BlkDesc* head, std::int32_t count) {
  locatedBase_ = -1;
  Place at = place;
  for (BlkDesc* p = head; count > 0; p = p->next, --count) {
    if (LeafAt(at).count == kFanOut && !SplitLeaf(at)) return false;
    ++at.slot;
    Leaf& leaf = LeafAt(at);
    OpenGap(leaf.lens, leaf.count, at.slot, 1);
    OpenGap(leaf.blocks, leaf.count, at.slot, 1);
    leaf.lens[at.slot] = p->len;
    leaf.blocks[at.slot] = p;
    ++leaf.count;
    AddToSums(at, p->len);
  }
  return true;
}

/// Moves the upper half of a leaf to a new one behind it. `place` stays that of its block.
bool PositionIndex::SplitLeaf(Place& place) {
  if (top_[place.group]->count == kGroupFanOut && !SplitGroup(place)) return false;
  Node* node = NewNode();
  if (node == nullptr) return false;
  constexpr std::int32_t kHalf = kFanOut / 2;
  Group& group = *top_[place.group];
  Leaf& lower = *group.leaves[place.leaf];
  Leaf& upper = node->leaf;
  upper.count = lower.count - kHalf;
  std::copy(lower.lens + kHalf, lower.lens + lower.count, upper.lens);
  std::copy(lower.blocks + kHalf, lower.blocks + lower.count, upper.blocks);
  lower.count = kHalf;
  const std::int32_t behind = place.leaf + 1;
  OpenGap(group.sums, group.count, behind, 1);
  OpenGap(group.leaves, group.count, behind, 1);
  ++group.count;
  ++leafCount_;
  group.leaves[behind] = &upper;
  group.sums[behind] = Sum(upper.lens, upper.count);
  group.sums[place.leaf] -= group.sums[behind];
  if (place.slot >= kHalf) {
    place.leaf = behind;
    place.slot -= kHalf;
  }
  return true;
}

/// The same with a group.
bool PositionIndex::SplitGroup(Place& place) {
  if (!ReserveTop(topCount_ + 1)) return false;
  Node* node = NewNode();
  if (node == nullptr) return false;
  constexpr std::int32_t kHalf = kGroupFanOut / 2;
  Group& lower = *top_[place.group];
  Group& upper = node->group;
  upper.count = lower.count - kHalf;
  std::copy(lower.sums + kHalf, lower.sums + lower.count, upper.sums);
  std::copy(lower.leaves + kHalf, lower.leaves + lower.count, upper.leaves);
  lower.count = kHalf;
  const std::int32_t behind = place.group + 1;
  OpenGap(top_, topCount_, behind, 1);
  OpenGap(topSums_, topCount_, behind, 1);
  ++topCount_;
  top_[behind] = &upper;
  topSums_[behind] = Sum(upper.sums, upper.count);
  topSums_[place.group] -= topSums_[behind];
  if (place.leaf >= kHalf) {
    place.group = behind;
    place.leaf -= kHalf;
  }
  return true;
}

void PositionIndex::RemoveBehind(const Place& place, std::int32_t count) {
  Place at = place;
  while (count > 0 && Next(at)) {
    count -= RemoveInLeaf(at, count);
    // The rest lies behind the place again.
    at = place;
  }
}

void PositionIndex::Remove(const Place& place) { RemoveInLeaf(place, 1); }

/// Takes out up to `count` blocks from `place` on, as many as its leaf holds; gives how many.
std::int32_t PositionIndex::RemoveInLeaf(const Place& place, std::int32_t count) {
  locatedBase_ = -1;
  Leaf& leaf = LeafAt(place);
  const std::int32_t part = std::min(count, leaf.count - place.slot);
  AddToSums(place, -Sum(leaf.lens + place.slot, part));
  CloseGap(leaf.lens, leaf.count, place.slot, part);
  CloseGap(leaf.blocks, leaf.count, place.slot, part);
  leaf.count -= part;
  if (leaf.count == 0) RemoveLeaf(place.group, place.leaf);
  return part;
}

/// Takes out an empty leaf, and its group where that becomes empty.
void PositionIndex::RemoveLeaf(std::int32_t group, std::int32_t leaf) {
  Group& from = *top_[group];
  FreeNode(from.leaves[leaf]);
  --leafCount_;
  CloseGap(from.sums, from.count, leaf, 1);
  CloseGap(from.leaves, from.count, leaf, 1);
  if (--from.count > 0) return;
  FreeNode(&from);
  CloseGap(top_, topCount_, group, 1);
  CloseGap(topSums_, topCount_, group, 1);
  --topCount_;
}

// ---- Checking ----

const char* PositionIndex::BrokenRule(const BlkDesc* first, const BlkDesc* cursor) const {
  const BlkDesc* p = first;
  for (std::int32_t g = 0; g < topCount_; ++g) {
    const Group& group = *top_[g];
    if (group.count < 1 || group.count > kGroupFanOut) return "I4";
    for (std::int32_t l = 0; l < group.count; ++l) {
      const Leaf& leaf = *group.leaves[l];
      if (leaf.count < 1 || leaf.count > kFanOut) return "I4";
      for (std::int32_t i = 0; i < leaf.count; ++i, p = p->next) {
        if (p == nullptr || leaf.blocks[i] != p) return "I1";
        if (leaf.lens[i] != (p == cursor ? settledLen : p->len)) return "I2";
        if (leaf.lens[i] < 1) return "I4";
      }
      if (group.sums[l] != Sum(leaf.lens, leaf.count)) return "I3";
    }
    if (topSums_[g] != Sum(group.sums, group.count)) return "I3";
  }
  return p == nullptr ? nullptr : "I1";
}

}  // namespace vfile
