#include <cstring>

#include "hfile/BytesLeft.h"
#include "hfile/HFile.h"
#include "host/Host.h"
#include "hsys/Numbers.h"
#include "hsys/WrapAdd.h"

namespace {

constexpr std::int32_t kChunk = 1024;

/// Whether the host tells the size, or else the result. A size of 2^32-1 looks like none.
bool TellsSize(HANDLE file, std::uint32_t& size, std::int32_t& res) {
  host::SetLastError(host::ERROR_NOT_SUPPORTED);
  size = host::GetFileSize(file);
  if (size != host::INVALID_FILE_SIZE) return true;
  res = GetFileRes();
  return false;
}

}  // namespace

std::int32_t HFile::ReadBytes(void* buffer, std::int32_t count) {
  if (res != resDone || count == 0) return 0;
  if (count < 0 || buffer == nullptr) {
    res = resCallError;
    return 0;
  }
  std::uint32_t done = 0;
  const bool read = host::ReadFile(handle, buffer, Card(count), &done);
  if (!read) res = GetFileRes();
  eof = read && Int(done) < count;
  return Int(done);
}

void HFile::WriteBytes(const void* buffer, std::int32_t count) {
  if (res != resDone || count == 0) return;
  if (count < 0 || buffer == nullptr) {
    res = resCallError;
    return;
  }
  std::uint32_t done = 0;
  if (!host::WriteFile(handle, buffer, Card(count), &done)) {
    res = GetFileRes();
  } else if (Int(done) < count) {
    res = resDiskFull;
  }
}

void HFile::Write(char ch, std::int32_t count) {
  if (res != resDone || count < 1) return;
  char chunk[kChunk];
  std::memset(chunk, ch, static_cast<std::size_t>(MinL(count, kChunk)));
  while (count > 0 && res == resDone) {
    const std::int32_t part = MinL(count, kChunk);
    WriteBytes(chunk, part);
    count -= part;
  }
}

std::int32_t HFile::GetPos() const {
  if (!IsOpen()) return 0;
  const std::uint32_t position = host::SetFilePointer(handle, 0, host::FILE_CURRENT);
  return position == host::INVALID_SET_FILE_POINTER ? 0 : Int(position);
}

void HFile::SetPos(std::int32_t position) {
  eof = false;
  if (!IsOpen() || position < 0) {
    res = resCallError;
    return;
  }
  // Without a size, the start would count as the end, and what is cut there would be all.
  std::uint32_t size = 0;
  if (!TellsSize(handle, size, res)) return;
  const std::uint32_t reached = host::SetFilePointer(handle, MinL(position, Int(size)), host::FILE_BEGIN);
  res = reached == host::INVALID_SET_FILE_POINTER ? GetFileRes() : std::int32_t{resDone};
}

void HFile::SetPos(std::int32_t offset, std::int32_t origin) {
  if (IsOpen() && origin == 0) return SetPos(offset);
  if (IsOpen() && origin == 1) return SetPos(hsys::WrapAdd(GetPos(), offset));
  if (IsOpen() && origin == 2) return SetPos(hsys::WrapAdd(Length(), offset));
  res = resCallError;
  eof = false;
}

void HFile::Reset() { SetPos(0); }

std::int32_t HFile::Length() const {
  if (!IsOpen()) return 0;
  const std::uint32_t size = host::GetFileSize(handle);
  return size == host::INVALID_FILE_SIZE ? 0 : Int(size);
}

std::int64_t hfile::BytesLeft(HANDLE file) {
  std::int64_t size = 0;
  if (host::GetFileType(file) != host::FILE_TYPE_DISK || !host::GetFileSizeEx(file, &size)) return -1;
  const std::uint32_t position = host::SetFilePointer(file, 0, host::FILE_CURRENT);
  return position == host::INVALID_SET_FILE_POINTER ? -1 : size - position;
}

std::int64_t hfile::BytesLeft(const HFile& file) { return BytesLeft(file.handle); }

void HFile::Truncate() {
  if (!IsOpen()) {
    res = resCallError;
    return;
  }
  std::uint32_t size = 0;
  if (TellsSize(handle, size, res)) {
    res = host::SetEndOfFile(handle) ? std::int32_t{resDone} : GetFileRes();
  }
}

void HFile::Flush() {
  if (!IsOpen()) {
    res = resCallError;
  } else {
    res = host::FlushFileBuffers(handle) ? std::int32_t{resDone} : GetFileRes();
  }
}
