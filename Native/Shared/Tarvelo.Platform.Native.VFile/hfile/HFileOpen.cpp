#include <utility>

#include "hfile/HFile.h"
#include "host/Host.h"

namespace {

constexpr std::uint32_t kReadWrite = host::GENERIC_READ | host::GENERIC_WRITE;
constexpr std::uint32_t kExclusive = 0;

constexpr std::uint32_t CreateDisposition(bool overwrite) { return overwrite ? host::CREATE_ALWAYS : host::CREATE_NEW; }

}  // namespace

HFile::HFile() { Init(); }

HFile::HFile(HANDLE ownedHandle) {
  Init();
  handle = ownedHandle;
}

HFile::~HFile() {
  if (IsOpen()) Close();
}

void HFile::Init() {
  res = resDone;
  eof = false;
  radix = 10;
  handle = INVALID_HANDLE_VALUE;
}

bool HFile::OpenWith(const TChar* name, std::uint32_t access, std::uint32_t share, std::uint32_t disposition,
                     std::uint32_t hint) {
  if (IsOpen()) {
    res = resCallError;
    return false;
  }
  handle = host::CreateFileW(name, access, share, disposition, host::FILE_ATTRIBUTE_NORMAL | hint);
  res = IsOpen() ? std::int32_t{resDone} : GetFileRes();
  return IsOpen();
}

bool HFile::Open(const TChar* name) {
  return OpenWith(name, kReadWrite, kExclusive, host::OPEN_EXISTING, host::FILE_FLAG_RANDOM_ACCESS);
}

bool HFile::Create(const TChar* name, bool overwrite) {
  return OpenWith(name, kReadWrite, kExclusive, CreateDisposition(overwrite), host::FILE_FLAG_RANDOM_ACCESS);
}

bool HFile::Lookup(const TChar* name, bool create) {
  if (!create) return Open(name);
  return OpenWith(name, kReadWrite, kExclusive, host::OPEN_ALWAYS, host::FILE_FLAG_RANDOM_ACCESS);
}

bool HFile::OpenSeqRead(const TChar* name) {
  return OpenWith(name, host::GENERIC_READ, FILE_SHARE_READ, host::OPEN_EXISTING, host::FILE_FLAG_SEQUENTIAL_SCAN);
}

bool HFile::CreateSeqWrite(const TChar* name, bool overwrite) {
  return OpenWith(name, host::GENERIC_WRITE, kExclusive, CreateDisposition(overwrite), host::FILE_FLAG_SEQUENTIAL_SCAN);
}

void HFile::Close() {
  if (!IsOpen()) {
    res = resCallError;
    return;
  }
  host::CloseHandle(handle);
  handle = INVALID_HANDLE_VALUE;
  res = resDone;
}

bool HFile::IsOpen() const { return handle != INVALID_HANDLE_VALUE; }

HANDLE hfile::Release(HFile& file) { return std::exchange(file.handle, INVALID_HANDLE_VALUE); }
