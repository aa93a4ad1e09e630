#include "vfile/VFile.h"

#include <memory>
#include <new>
#include <utility>

#include "host/Host.h"
#include "threads/ThreadSlots.h"
#include "vfile/BlkPool.h"
#include "vfile/Require.h"
#include "vfile/ThreadValues.h"
#include "vmem/VMem.h"

namespace {

/// The block of a file that could not be set up, behind a halt that returned: such a file is empty and belongs to no
/// thread, so that its operations halt and do nothing. Never written.
BlkDesc noBlock = {nullptr, nullptr, 0, -1};

/// On a thread that never had values the settings start its values; a thread that gave them back has none to set.
void StartThreadValues() {
  if (!threads::TlsTableWasCreated()) vfile::CreateThreadValues();
}

}  // namespace

// ---- Life of an object ----

VFile::VFile() { Init(); }

void VFile::Init() {
  res = resDone;
  eof = false;
  radix = 10;
  pos = 0;
  length = 0;
  flags = 0;
  type = 0;
  vm = nullptr;
  pool = nullptr;
  first = last = &noBlock;
  cur = BlkRdr{first, 0, 0};
  buf = nullptr;
  bufValid = false;
  bufDirty = false;
  threadId = 0;
  blockCount = 1;
  index = nullptr;
  held = nullptr;
  dirtyFrom = 0;
  changes = 0;
  meter = nullptr;
  AttachThread();
}

VFile::VFile(VFile&& source) : VFile() {
  ExchangeAll(source);
  type = source.type;
}

/// Exchanges all that two files of the thread are, but their `type`.
void VFile::ExchangeAll(VFile& other) {
  if (!OnOwnerThread() || !vfile::Require(threadId == other.threadId)) return;
  ExchangeChain(other);
  std::swap(flags, other.flags);
  std::swap(res, other.res);
  std::swap(radix, other.radix);
}

/// Exchanges contents with all that speaks of them, positions and `eof` too. Nothing of it can fail.
void VFile::ExchangeChain(VFile& other) {
  std::swap(eof, other.eof);
  std::swap(pos, other.pos);
  std::swap(length, other.length);
  std::swap(first, other.first);
  std::swap(last, other.last);
  std::swap(cur, other.cur);
  std::swap(buf, other.buf);
  std::swap(bufValid, other.bufValid);
  std::swap(bufDirty, other.bufDirty);
  std::swap(blockCount, other.blockCount);
  std::swap(index, other.index);
  std::swap(held, other.held);
  std::swap(dirtyFrom, other.dirtyFrom);
  ++changes;
  ++other.changes;
}

/// Takes the thread's `VMem` and pool, which its first file makes, and the first block. All that can halt comes before
/// anything is published.
void VFile::AttachThread() {
  if (!threads::TlsTableExists()) vfile::CreateThreadValues();
  if (!vfile::Require(threads::TlsTableExists())) return;
  std::unique_ptr<VMem> madeVMem;
  std::unique_ptr<BlkPool> madePool;
  if (vfile::GetOpenFileCount() == 0) {
    if (!vfile::Require(vfile::GetThreadVMem() == nullptr)) return;
    madeVMem.reset(new (std::nothrow) VMem);
    if (!vfile::Require(madeVMem != nullptr)) return;
    madeVMem->SetTempDir(vfile::GetThreadTempDir());
    madeVMem->SetMaxCacheSize(vfile::GetThreadMaxCacheSize());
    if (!vfile::Require(vfile::GetThreadBlkPool() == nullptr)) return;
    madePool.reset(new (std::nothrow) BlkPool(madeVMem.get()));
    if (!vfile::Require(madePool != nullptr)) return;
  }
  vm = madeVMem != nullptr ? madeVMem.get() : vfile::GetThreadVMem();
  pool = madePool != nullptr ? madePool.get() : vfile::GetThreadBlkPool();
  if (!vfile::Require(vm != nullptr) || !vfile::Require(pool != nullptr)) return;
  BlkDesc* block = NewBlkPtr(nullptr, nullptr, 0);
  if (!vfile::Require(TSTR("Init"), block != nullptr, TSTR("first==NIL, heap overflow"))) return;
  if (madeVMem != nullptr) {
    vfile::SetThreadVMem(madeVMem.release());
    vfile::SetThreadBlkPool(madePool.release());
  }
  vfile::IncOpenFileCount();
  first = last = block;
  cur.ptr = block;
  threadId = host::GetCurrentThreadId();
}

VFile::~VFile() noexcept(false) {
  if (!OnOwnerThread() || !vfile::Require(vfile::GetOpenFileCount() > 0)) return;
  // What is in `buf` alone dies with the object.
  pool->DisposeChain(first, last, blockCount);
  delete[] buf;
  buf = nullptr;
  DropIndex();
  threadId = 0;
  vfile::DecOpenFileCount();
  if (vfile::GetOpenFileCount() == 0) DetachThread();
}

/// Destroys what the thread's files shared. The settings stay for the next ones.
void VFile::DetachThread() {
  const std::unique_ptr<BlkPool> oldPool(vfile::GetThreadBlkPool());
  const std::unique_ptr<VMem> oldVMem(vfile::GetThreadVMem());
  if (!vfile::Require(oldPool != nullptr) || !vfile::Require(oldVMem != nullptr)) return;
  vfile::SetThreadBlkPool(nullptr);
  vfile::SetThreadTempDir(oldVMem->GetTempDir());
  vfile::SetThreadMaxCacheSize(oldVMem->GetMaxCacheSize());
  vfile::SetThreadVMem(nullptr);
}

bool VFile::OnOwnerThread(std::int32_t line) const {
  return vfile::Require(threadId == host::GetCurrentThreadId(), line);
}

// ---- Settings of the thread ----

void VFile::ReleaseCache() {
  if (VMem* vm = vfile::GetThreadVMem()) vm->ReleaseCache();
}

std::int16_t VFile::GetCacheSize() {
  VMem* vm = vfile::GetThreadVMem();
  return vm != nullptr ? vm->GetCacheSize() : std::int16_t{0};
}

std::int16_t VFile::GetMaxCacheSize() {
  StartThreadValues();
  VMem* vm = vfile::GetThreadVMem();
  return vm != nullptr ? vm->GetMaxCacheSize() : vfile::GetThreadMaxCacheSize();
}

void VFile::SetMaxCacheSize(std::int16_t kilobytes) {
  StartThreadValues();
  if (VMem* vm = vfile::GetThreadVMem()) {
    vm->SetMaxCacheSize(kilobytes);
  } else {
    vfile::SetThreadMaxCacheSize(kilobytes);
  }
}

const TChar* VFile::GetTempDir() {
  StartThreadValues();
  VMem* vm = vfile::GetThreadVMem();
  return vm != nullptr ? vm->GetTempDir() : vfile::GetThreadTempDir();
}

void VFile::SetTempDir(const TChar* dir) {
  StartThreadValues();
  if (VMem* vm = vfile::GetThreadVMem()) {
    vm->SetTempDir(dir);
  } else {
    vfile::SetThreadTempDir(dir);
  }
}
