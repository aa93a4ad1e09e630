#include "host/win32/Windows.h"

namespace host {
namespace {

/// Whether the name of a file that was refused with ERROR_ACCESS_DENIED belongs to something that stands in the way: a directory, a
/// read-only file, or a file on its way out.
bool IsInTheWay(const wchar_t* name) {
  const DWORD attributes = ::GetFileAttributesW(name);
  return attributes != INVALID_FILE_ATTRIBUTES || ::GetLastError() == ERROR_ACCESS_DENIED;
}

}  // namespace

HANDLE CreateFileW(const TChar* name, std::uint32_t access, std::uint32_t share, std::uint32_t disposition,
                   std::uint32_t flags) {
  const wchar_t* text = win32::NameOf(name);
  const HANDLE file = ::CreateFileW(text, access, share, nullptr, disposition, flags, nullptr);
  const bool forItself = (flags & FILE_FLAG_DELETE_ON_CLOSE) != 0;
  if (file == INVALID_HANDLE_VALUE && forItself && ::GetLastError() == ERROR_ACCESS_DENIED) {
    ::SetLastError(IsInTheWay(text) ? ERROR_FILE_EXISTS : ERROR_ACCESS_DENIED);
  }
  return file;
}

bool CloseHandle(HANDLE file) { return ::CloseHandle(file) != FALSE; }

}  // namespace host
