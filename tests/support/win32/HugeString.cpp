#include "support/HugeString.h"

#include <cstdlib>
#include <cstring>

#include "host/win32/Windows.h"

support::HugeString::HugeString() {
  // The views and the end come where a room of that size is free.
  void* room = VirtualAlloc(nullptr, kSize, MEM_RESERVE, PAGE_NOACCESS);
  const HANDLE piece = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kPiece, nullptr);
  if (room == nullptr || piece == nullptr) std::abort();
  VirtualFree(room, 0, MEM_RELEASE);
  bytes_ = static_cast<char*>(room);
  for (std::size_t at = 0; at < kRun; at += kPiece) {
    const DWORD access = at == 0 ? FILE_MAP_WRITE : FILE_MAP_READ;
    if (MapViewOfFileEx(piece, access, 0, 0, kPiece, bytes_ + at) == nullptr) std::abort();
  }
  std::memset(bytes_, 'x', kPiece);
  CloseHandle(piece);
  if (VirtualAlloc(bytes_ + kRun, kSize - kRun, MEM_RESERVE | MEM_COMMIT, PAGE_READONLY) == nullptr) std::abort();
}

support::HugeString::~HugeString() {
  for (std::size_t at = 0; at < kRun; at += kPiece) UnmapViewOfFile(bytes_ + at);
  VirtualFree(bytes_ + kRun, 0, MEM_RELEASE);
}
