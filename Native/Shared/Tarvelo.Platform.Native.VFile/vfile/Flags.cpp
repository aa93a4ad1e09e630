#include "vfile/VFile.h"

namespace {

/// The bits that a user can change.
constexpr std::int32_t kUserFlags = 0x1FF;

}  // namespace

std::int32_t VFile::GetFlags() const { return flags; }

bool VFile::FlagOn(std::int32_t mask) const { return (flags & mask) != 0; }

void VFile::ToggleFlag(std::int32_t mask) {
  if (!OnOwnerThread() || res != resDone) return;
  if (FlagOn(vfLocked)) {
    res = resContextError;
    return;
  }
  for (mask &= kUserFlags; mask != 0;) {
    const std::int32_t bit = mask & -mask;
    flags ^= bit;
    PostChangeFlag(bit, FlagOn(bit));
    mask ^= bit;
  }
}

void VFile::SetFlags(std::int32_t flagWord) { ToggleFlag(flagWord ^ flags); }
void VFile::SetFlag(std::int32_t mask, bool on) { return on ? InclFlag(mask) : ExclFlag(mask); }
void VFile::InclFlag(std::int32_t mask) { ToggleFlag(mask & ~flags); }
void VFile::ExclFlag(std::int32_t mask) { ToggleFlag(mask & flags); }

std::int32_t VFile::Type() const { return type; }

// ---- Hooks ----

std::int32_t VFile::PreChange(std::int32_t, std::int32_t, std::int32_t) const { return resDone; }

void VFile::PostChange(std::int32_t, std::int32_t, std::int32_t) {
  if (FlagOn(vfMarkModified)) InclFlag(vfModified);
}

void VFile::PostChangeFlag(std::int32_t, bool) {}
