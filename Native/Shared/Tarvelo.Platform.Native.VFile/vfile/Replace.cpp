// The five primitives. Each admits its arguments, gathers the new bytes, changes and finishes; the numbers of the steps are
// those of the contract in VFile.h.

#include <algorithm>
#include <cstring>
#include <utility>

#include "hfile/BytesLeft.h"
#include "host/Host.h"
#include "hsys/Checked.h"
#include "vfile/BlkPool.h"
#include "vfile/ContentSource.h"
#include "vfile/InBlock.h"
#include "vfile/LineEnds.h"
#include "vfile/Meter.h"
#include "vfile/NewChain.h"
#include "vfile/Require.h"
#include "vmem/VMem.h"

// ---- Sources: each gives the next `count` bytes, if need be in `spare`; null if they are refused ----

class VFile::BufferSource {
 public:
  explicit BufferSource(const void* buffer) : next_(static_cast<const unsigned char*>(buffer)) {}

  const void* Take(void* /*spare*/, std::int32_t count) {
    const unsigned char* bytes = next_;
    next_ += count;
    return bytes;
  }

 private:
  const unsigned char* next_;
};

class VFile::FileSource {
 public:
  FileSource(const VFile& file, std::int32_t position) : file_(file), position_(position) {}

  const void* Take(void* spare, std::int32_t count) {
    if (rd_.ptr == nullptr) file_.SetPosC(rd_, position_);
    return file_.ReadBytesC(rd_, spare, count) ? spare : nullptr;
  }

 private:
  const VFile& file_;
  std::int32_t position_;
  BlkRdr rd_;
};

/// Copies the next `count` bytes of a source to `target`.
template <typename Source>
bool VFile::CopyFrom(Source& source, void* target, std::int32_t count) {
  if (count == 0) return true;
  const void* bytes = source.Take(target, count);
  if (bytes == nullptr) return Refuse();
  if (bytes != target) std::memcpy(target, bytes, static_cast<std::size_t>(count));
  return true;
}

// ---- Steps ----

/// Steps 2 and 3.
bool VFile::Admit(bool argumentsValid) {
  if (!argumentsValid) {
    res = resCallError;
  } else if (FlagOn(vfLocked)) {
    res = resContextError;
  } else if (FlagOn(vfReadOnly)) {
    res = resReadOnly;
  }
  return res == resDone;
}

/// Step 4.
bool VFile::Clamp(std::int32_t& position, std::int32_t& del, std::int32_t count) {
  position = std::min(position, length);
  del = std::min(del, length - position);
  if (length - del > MaxLen - count) res = resTooLong;
  return res == resDone;
}

/// The rest of step 4: whether the thread's space has the pages that a change takes before it gives any back. `ownBlocks` says
/// that all its bytes come in blocks of their own.
bool VFile::SpaceHolds(std::int32_t position, std::int32_t del, std::int32_t count, bool ownBlocks) {
  const std::int32_t left = pool->PagesLeft();
  // The least that a change of so many bytes can do with is not far below the most.
  constexpr std::int32_t kMostBeside = 3;
  if (left >= count / BlkSize + kMostBeside) [[likely]]
    return true;
  BlkRdr target = cur;
  Walk(target, position, true);
  std::int32_t pages = target.ptr->addr == -1 ? 1 : 0;
  if (ownBlocks || !FitsInBlock(target, del, count)) {
    const std::int32_t chained = count - (ownBlocks ? 0 : std::min(count, BlkSize - target.ix));
    const std::int32_t lastLen = chained % BlkSize;
    const std::int32_t tail = target.ptr->len - target.ix - del;
    const bool tailFits = lastLen > 0 && lastLen + tail <= BlkSize;
    pages += chained / BlkSize + (lastLen > 0 ? 1 : 0) + (tail > 0 && !tailFits ? 1 : 0);
  }
  if (pages > left) res = resTooLong;
  return pages <= left;
}

/// Brings the cursor and the buffer to a change whose arguments are settled.
bool VFile::Prepare(std::int32_t position, std::int32_t del, std::int32_t count) {
  if (del == 0 && count == 0) return true;
  if (bufValid && StaysForChange(position)) {
    const BlkRdr here = {cur.ptr, cur.base, static_cast<std::int16_t>(position - cur.base)};
    // Such a change takes no page, and nothing is to be loaded.
    if (FitsInBlock(here, del, count)) [[likely]]
      return MoveWithin(here.ix);
  }
  if (!SpaceHolds(position, del, count, false)) return false;
  InitChange(position);
  return res == resDone;
}

/// The question of step 5.
bool VFile::Allow(std::int32_t position, std::int32_t del, std::int32_t ins) {
  res = PreChange(position, del, ins);
  return res == resDone;
}

/// Step 6.
void VFile::Finish(std::int32_t position) {
  res = resDone;
  if (!MoveInBlock(position)) MoveOn(position);
  if constexpr (hsys::kChecked) CheckInvariants();
}

// ---- The change of a buffer or a file, whose arguments are settled ----

template <typename Source>
void VFile::ChangeFrom(Source& source, std::int32_t position, std::int32_t del, std::int32_t count) {
  if (del > 0 || count > 0) {
    const bool done = FitsInBlock(cur, del, count) ? ChangeInBlock(source, position, del, count)
                                                   : ChangeByChain(source, position, del, count);
    if (!done) return;
    PostChange(position, del, count);
  }
  Finish(position + count);
}

/// Touches the scratch buffer alone.
template <typename Source>
bool VFile::ChangeInBlock(Source& source, std::int32_t position, std::int32_t del, std::int32_t count) {
  if (!Allow(position, del, count)) return false;
  // The source may be this file, so its bytes come before any moves.
  unsigned char spare[BlkSize];
  const void* bytes = count > 0 ? source.Take(spare, count) : nullptr;
  if (count > 0 && bytes == nullptr) return Refuse();
  unsigned char* at = buf + cur.ix;
  const std::int32_t tail = cur.ptr->len - cur.ix - del;
  if (tail > 0 && del != count) std::memmove(at + count, at + del, static_cast<std::size_t>(tail));
  if (count == 1) {
    *at = *static_cast<const unsigned char*>(bytes);
  } else if (count > 0) {
    std::memcpy(at, bytes, static_cast<std::size_t>(count));
  }
  cur.ptr->len = static_cast<std::int16_t>(cur.ptr->len - del + count);
  length = length - del + count;
  ++changes;
  MarkDirty();
  if (cur.ptr->len == 0) CheckCurLen();
  return true;
}

/// Fills the current block and brings the rest of the bytes in blocks of their own, which are ready before the question is
/// asked, so that a refusal can throw them away.
template <typename Source>
bool VFile::ChangeByChain(Source& source, std::int32_t position, std::int32_t del, std::int32_t count) {
  unsigned char head[BlkSize];
  const std::int32_t n = std::min(count, BlkSize - cur.ix);
  if (!CopyFrom(source, head, n)) return false;
  NewChain chain(*this);
  vfile::Pass pass(meter, count);
  for (std::int32_t left = count - n; left > 0;) {
    const std::int32_t part = std::min(left, BlkSize);
    unsigned char spare[BlkSize];
    if (!chain.AddBlock(part)) return false;
    const void* bytes = source.Take(spare, part);
    if (bytes == nullptr) return Refuse();
    if (!chain.Fill(bytes) || !pass.Advance(part)) return false;
    left -= part;
  }
  return Allow(position, del, count) && DoChange(del, head, n, chain, count);
}

// ---- The primitives ----

void VFile::ReplaceBuf(std::int32_t position, std::int32_t del, const void* buffer, std::int32_t count) {
  if (!OnOwnerThread() || res != resDone) return;
  if (del == SameLen) del = count;
  if (!Admit(position >= 0 && del >= 0 && count >= 0 && (buffer != nullptr || count == 0))) return;
  if (!Clamp(position, del, count) || !Prepare(position, del, count)) return;
  if (ScansEol() && count > 0) CheckEOL(buffer, count);
  BufferSource source(buffer);
  ChangeFrom(source, position, del, count);
}

void VFile::ReplaceCh(std::int32_t position, std::int32_t del, char ch, std::int32_t count) {
  if (!OnOwnerThread()) return;
  if (count <= 1) return ReplaceBuf(position, del, &ch, count);
  char bytes[BlkSize];
  std::memset(bytes, ch, static_cast<std::size_t>(std::min(count, BlkSize)));
  while (count > 0) {
    const std::int32_t part = std::min(count, BlkSize);
    ReplaceBuf(position, del, bytes, part);
    if (res != resDone) return;
    del = 0;
    // A position past every end stays there.
    position = std::min(position, MaxLen - part) + part;
    count -= part;
  }
}

void VFile::ReplaceTxt(std::int32_t position, std::int32_t del, const VFile& source, std::int32_t sourcePos,
                       std::int32_t count) {
  if (!OnOwnerThread() || !vfile::Require(source.threadId == threadId) || res != resDone) return;
  const bool sameLen = del == SameLen;
  if (sameLen) del = 0;
  if (!Admit(position >= 0 && del >= 0 && sourcePos >= 0 && count >= 0)) return;
  sourcePos = std::min(sourcePos, source.length);
  count = std::min(count, source.length - sourcePos);
  if (sameLen) del = count;
  if (!Clamp(position, del, count) || !Prepare(position, del, count)) return;
  FileSource bytes(source, sourcePos);
  ChangeFrom(bytes, position, del, count);
}

void VFile::ReplaceFile(std::int32_t position, std::int32_t del, HFile& source, std::int32_t count) {
  const auto bytesLeft = [&] { return hfile::BytesLeft(source); };
  const auto readPiece = [&](void* buffer, std::int32_t size, std::int32_t& failure) {
    const std::int32_t got = source.ReadBytes(buffer, size);
    failure = source.res == resDone ? std::int32_t{resDone} : GetFileRes(source);
    return got;
  };
  ReplaceByReading(position, del, source.IsOpen(), count, bytesLeft, readPiece);
}

void VFile::ReplaceFile(std::int32_t position, std::int32_t del, HANDLE source, std::int32_t count) {
  const auto bytesLeft = [&] { return hfile::BytesLeft(source); };
  const auto readPiece = [&](void* buffer, std::int32_t size, std::int32_t& failure) {
    std::uint32_t got = 0;
    const bool read = host::ReadFile(source, buffer, static_cast<std::uint32_t>(size), &got);
    failure = read ? std::int32_t{resDone} : GetFileRes();
    return static_cast<std::int32_t>(got);
  };
  ReplaceByReading(position, del, source != INVALID_HANDLE_VALUE, count, bytesLeft, readPiece);
}

/// The primitive of a source that is read before anything else is looked at, and always comes in as blocks of its own, one
/// for each piece. `bytesLeft` tells what a regular file has, so that one which the space cannot hold is not read at all.
/// `readPiece` reads up to a number of bytes into a buffer, gives how many, and sets the failure.
template <typename BytesLeft, typename ReadPiece>
void VFile::ReplaceByReading(std::int32_t position, std::int32_t del, bool open, std::int32_t count,
                             BytesLeft bytesLeft, ReadPiece readPiece) {
  if (!OnOwnerThread() || res != resDone) return;
  const bool sameLen = del == SameLen;
  if (sameLen) del = 0;
  if (!Admit(position >= 0 && del >= 0 && count >= 0 && open)) return;
  if (pool->PagesLeft() <= count / BlkSize + 1) {
    const auto expected = static_cast<std::int32_t>(std::min<std::int64_t>(bytesLeft(), count));
    const std::int32_t at = std::min(position, length);
    const std::int32_t out = std::min(sameLen ? expected : del, length - at);
    if (expected > 0 && !SpaceHolds(at, out, expected, true)) return;
  }
  NewChain chain(*this);
  vfile::Pass pass(meter, meter != nullptr ? std::min<std::int64_t>(bytesLeft(), count) : -1);
  std::int32_t total = 0;
  while (total < count) {
    unsigned char piece[BlkSize];
    std::int32_t failure = resDone;
    const std::int32_t got = readPiece(piece, std::min(count - total, BlkSize), failure);
    if (failure != resDone) {
      res = failure;
      return;
    }
    if (got == 0) break;
    if (!chain.AddBlock(got) || !chain.Fill(piece) || !pass.Advance(got)) return;
    total += got;
  }
  if (total < count && count != MaxLen) {
    res = resNotDone;
    return;
  }
  if (sameLen) del = total;
  if (!Clamp(position, del, total)) return;
  if (del > 0 || total > 0) {
    InitChange(position);
    if (res != resDone || !Allow(position, del, total)) return;
    if (!DoChange(del, nullptr, 0, chain, total)) return;
    PostChange(position, del, total);
  }
  Finish(position + total);
}

void VFile::ReplaceContent(vfile::ContentSource& source) {
  if (!OnOwnerThread() || res != resDone || !Admit(true)) return;
  const std::int32_t del = length;
  unsigned char head[BlkSize];
  const std::int32_t n = source.Next(head);
  if (n < 0) return;
  bool hasEol = vfile::FindEol(head, n) < n;
  NewChain chain(*this);
  vfile::Pass pass(meter, del);
  std::int32_t told = 0;
  std::int32_t total = n;
  for (std::int32_t part = n; part == BlkSize;) {
    unsigned char piece[BlkSize];
    part = source.Next(piece);
    if (part < 0) return;
    if (part == 0) break;
    if (part > MaxLen - total) {
      res = resTooLong;
      return;
    }
    if (!chain.AddBlock(part) || !chain.Fill(piece)) return;
    if (!hasEol) hasEol = vfile::FindEol(piece, part) < part;
    total += part;
    // The source reads the old content.
    if (!pass.Advance(pos - std::exchange(told, pos))) return;
  }
  if (del > 0 || total > 0) {
    InitChange(0);
    if (res != resDone) return;
    if (ScansEol() && hasEol) flags |= vfHasEol;
    if (!Allow(0, del, total)) return;
    if (!DoChange(del, head, n, chain, total)) return;
    PostChange(0, del, total);
  }
  Finish(total);
}

// ---- The exchange ----

void VFile::Exchange(VFile& other) {
  if (!OnOwnerThread() || !vfile::Require(other.threadId == threadId) || &other == this) return;
  const std::int32_t count = length;
  const std::int32_t otherCount = other.length;
  const bool some = count > 0 || otherCount > 0;
  const bool admitted = res == resDone && other.res == resDone && Admit(true) && other.Admit(true);
  if (!admitted || (some && (!Allow(0, count, otherCount) || !other.Allow(0, otherCount, count)))) {
    if (res == resDone) {
      res = other.res;
    } else if (other.res == resDone) {
      other.res = res;
    }
    return;
  }
  if (some) {
    ExchangeChain(other);
    PostChange(0, count, otherCount);
    other.PostChange(0, otherCount, count);
  }
  Finish(length);
  other.Finish(other.length);
}
