// The checker of the chain: one test for each rule of VFile.h, in its order. In a checking build alone; it reads descriptors
// only, so that it loads and evicts no page.

#include "hsys/Checked.h"
#include "vfile/PositionIndex.h"
#include "vfile/Require.h"
#include "vfile/VFile.h"

namespace {

[[maybe_unused]] bool Holds(bool rule, const TChar* name) {
  return vfile::Require(TSTR("CheckInvariants"), rule, name);
}

}  // namespace

void VFile::CheckInvariants() const {
  if constexpr (hsys::kChecked) {
    if (!Holds(first != nullptr && last != nullptr && first->prev == nullptr && last->next == nullptr, TSTR("C1")))
      return;
    std::int64_t total = 0;
    const BlkDesc* prev = nullptr;
    bool foundCur = false;
    std::int32_t blocks = 0;
    for (const BlkDesc* p = first; p != nullptr; prev = p, p = p->next) {
      if (!Holds(p->prev == prev && ++blocks <= blockCount, TSTR("C1"))) return;
      if (p == cur.ptr) foundCur = Holds(total == cur.base, TSTR("C3"));
      Holds(p->len > 0 || length == 0, TSTR("C5"));
      Holds(p->len >= 0 && p->len <= BlkSize && (p->len == 0 || (p->addr >= 0 && p->addr % BlkSize == 0)), TSTR("C6"));
      total += p->len;
    }
    Holds(prev == last && blocks == blockCount, TSTR("C1"));
    Holds(total == length, TSTR("C2"));
    Holds(foundCur && cur.ix >= 0 && cur.ix <= cur.ptr->len && cur.base + cur.ix == pos, TSTR("C3"));
    Holds(length > 0 || first == last, TSTR("C4"));
    Holds(index == nullptr || index->BrokenRule(first, cur.ptr) == nullptr, TSTR("I"));
    Holds((!bufDirty || bufValid) && (!bufValid || buf != nullptr), TSTR("C8"));
  }
}

void VFile::Show(const char* /*text*/) const {}

void VFile::Dump() const {}
