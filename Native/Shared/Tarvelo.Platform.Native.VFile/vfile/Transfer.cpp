#include <algorithm>

#include "host/Host.h"
#include "vfile/Meter.h"
#include "vfile/VFile.h"

namespace {

constexpr std::uint32_t kStreaming = host::FILE_ATTRIBUTE_NORMAL | host::FILE_FLAG_SEQUENTIAL_SCAN;

/// A file of the host that is open while this lives.
class OpenedFile {
 public:
  OpenedFile(const TChar* name, std::uint32_t access, std::uint32_t share, std::uint32_t disposition)
      : handle_(host::CreateFileW(name, access, share, disposition, kStreaming)) {}
  ~OpenedFile() {
    if (IsOpen()) host::CloseHandle(handle_);
  }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Handle() const { return handle_; }

 private:
  HANDLE handle_;
};

}  // namespace

// ---- Out ----

void VFile::Save(const TChar* name, bool overwrite) {
  SetPos(0);
  WriteFile(name, overwrite);
}

void VFile::WriteFile(const TChar* name, bool overwrite) {
  if (!OnOwnerThread() || res != resDone) return;
  const OpenedFile file(name, host::GENERIC_WRITE, 0, overwrite ? host::CREATE_ALWAYS : host::CREATE_NEW);
  if (!file.IsOpen()) {
    res = GetFileRes();
    return;
  }
  SetPos(0);
  WriteToFile(file.Handle(), MaxLen);
}

void VFile::WriteToFile(HANDLE file, std::int32_t count) {
  WriteByPieces(file != INVALID_HANDLE_VALUE, count, [&](const void* buffer, std::int32_t size) -> std::int32_t {
    const auto wanted = static_cast<std::uint32_t>(size);
    std::uint32_t done = 0;
    if (!host::WriteFile(file, buffer, wanted, &done)) return GetFileRes();
    return done == wanted ? resDone : resDiskFull;
  });
}

void VFile::WriteToFile(HFile& file, std::int32_t count) {
  WriteByPieces(file.IsOpen(), count, [&](const void* buffer, std::int32_t size) -> std::int32_t {
    file.WriteBytes(buffer, size);
    return file.res == resDone ? std::int32_t{resDone} : GetFileRes(file);
  });
}

/// Writes up to `count` bytes from the position on. `writePiece` writes one piece and gives the result.
template <typename WritePiece>
void VFile::WriteByPieces(bool open, std::int32_t count, WritePiece writePiece) {
  if (!OnOwnerThread() || res != resDone) return;
  if (count < 0 || !open) {
    res = resCallError;
    return;
  }
  count = std::min(count, length - pos);
  vfile::Pass pass(meter, count);
  while (count > 0) {
    unsigned char piece[BlkSize];
    const std::int32_t n = ReadBytes(piece, std::min(count, BlkSize));
    if (n == 0) {
      // There is less than the length says only behind a halt that returned.
      if (res == resDone) res = resNotDone;
      return;
    }
    res = writePiece(piece, n);
    if (res != resDone || !pass.Advance(n)) return;
    count -= n;
  }
}

// ---- In ----

void VFile::Load(const TChar* name, std::uint32_t shareMode) {
  SetPos(0);
  ReplaceBuf(0, MaxLen, nullptr, 0);
  ReadFile(name, shareMode);
  if (res == resDone) SetPos(0);
}

void VFile::ReadFile(const TChar* name, std::uint32_t shareMode) {
  if (!OnOwnerThread() || res != resDone || !Admit(true)) return;
  const OpenedFile file(name, host::GENERIC_READ, shareMode, host::OPEN_EXISTING);
  if (!file.IsOpen()) {
    res = GetFileRes();
    return;
  }
  ReplaceFile(pos, WriteDel(SameLen), file.Handle(), MaxLen);
}
