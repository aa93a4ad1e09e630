/// @file
/// Where in a long chain a position lies, without a walk to it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vfile/Blocks.h"

namespace vfile {

/// The blocks of one chain in their order, with their lengths and sums of these: a tree of three levels, which holds as many blocks
/// as a thread's space. A file gets one with its first far move.
///
///     top                              groups, in order, each with the bytes below it
///      |
///     Group [ leaf | leaf | ... ]      up to 104 leaves, each with the bytes below it
///      |
///     Leaf  [ block | block | ... ]    up to 128 blocks, each with its length
///
///   I1  The leaves, from left to right, hold the blocks of the chain, each once, in its order.
///   I2  A length is that of its block, but for the cursor's block, whose changes are settled when the cursor leaves it:
///       `settledLen` is what the index has of that one.
///   I3  A sum is that of the lengths below it.
///   I4  No node is empty, and no length is 0.
///
/// So a block's start finds it (`Locate`) also while its own length is not settled, as everything before it is. Nothing here halts
/// or throws; where the heap is exhausted `Build` and `InsertBehind` give false, and the file goes on without an index.
///
/// Cost: a search looks at up to 128 numbers in each level; a block in or out moves as many. About 12 bytes for each block, up to 20 after many edits.
class PositionIndex {
 public:
  /// The place of a block. Good until the next block goes in or out.
  struct Place {
    std::int32_t group;
    std::int32_t leaf;  // in the group
    std::int32_t slot;  // in the leaf
  };

  PositionIndex() = default;
  ~PositionIndex();
  PositionIndex(const PositionIndex&) = delete;
  PositionIndex& operator=(const PositionIndex&) = delete;

  /// Takes in the chain from `first` on, of `count` blocks, none of them empty. Once only; false leaves this good for the
  /// destructor alone.
  bool Build(BlkDesc* first, std::int32_t count);

  /// Moves `cursor` to the block that holds `position`, which lies before the end of the chain.
  void Find(BlkRdr& cursor, std::int32_t position) const;
  /// The place of the block that starts at `base`.
  Place Locate(std::int32_t base);

  /// Takes in `count` blocks from `head` on, behind the one at `place`.
  bool InsertBehind(const Place& place, BlkDesc* head, std::int32_t count);
  /// Takes out `count` blocks behind the one at `place`.
  void RemoveBehind(const Place& place, std::int32_t count);
  /// Takes out the block at `place`.
  void Remove(const Place& place);
  /// Makes the length of the block at `place` `len`.
  void SetLen(const Place& place, std::int32_t len);
  /// Makes the length of the block behind the one at `place` `len`.
  void SetLenBehind(const Place& place, std::int32_t len);

  /// Whether so few blocks are left in its nodes that it is worth being made anew.
  bool IsSparse(std::int32_t blockCount) const { return leafCount_ > blockCount / (kFanOut / 8) + 8; }

  /// The name of the first rule above that does not hold for the chain from `first` on with that cursor, or null.
  const char* BrokenRule(const BlkDesc* first, const BlkDesc* cursor) const;

  std::int16_t settledLen = 0;  ///< see I2

 private:
  static constexpr std::int32_t kFanOut = 128;
  /// So many that a group takes the room of a leaf.
  static constexpr std::int32_t kGroupFanOut = 104;
  /// How full `Build` makes a node, so that the first blocks that come in do not split it.
  static constexpr std::int32_t kFill = 112;
  static constexpr std::int32_t kGroupFill = 92;

  struct Leaf;
  struct Group;
  union Node;

  Node* NewNode();
  void FreeNode(void* node);
  bool Reserve(std::size_t nodes);
  bool ReserveTop(std::int32_t groups);

  bool Next(Place& place) const;
  bool LocateNearby(std::int32_t base);
  bool SplitLeaf(Place& place);
  bool SplitGroup(Place& place);
  std::int32_t RemoveInLeaf(const Place& place, std::int32_t count);
  void RemoveLeaf(std::int32_t group, std::int32_t leaf);
  Leaf& LeafAt(const Place& place) const;
  void AddToSums(const Place& place, std::int32_t delta);

  struct Chunk;
  Chunk* chunks_ = nullptr;          // owned; all nodes lie in them
  Node* free_ = nullptr;             // nodes that are not in use
  std::size_t nodes_ = 0;            // of all chunks
  Group** top_ = nullptr;            // owned array
  std::int32_t* topSums_ = nullptr;  // owned array, of the same size
  std::int32_t topCount_ = 0;
  std::int32_t topRoom_ = 0;
  std::int32_t leafCount_ = 0;
  // What was located last; a block is often left and entered again. Lengths have changed only there or behind it since, and no
  // block has come or gone, else the base is -1.
  std::int32_t locatedBase_ = -1;
  Place located_ = {};
};

}  // namespace vfile
