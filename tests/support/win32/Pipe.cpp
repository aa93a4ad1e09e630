#include "support/Pipe.h"

#include <atomic>
#include <cstdlib>

#include "host/win32/Windows.h"

namespace {

constexpr DWORD kRoom = 65536;

/// A pipe that keeps its writes apart, and is read as `readMode` says.
std::pair<HANDLE, HANDLE> OpenEnds(DWORD readMode) {
  static std::atomic<unsigned> number;
  const std::wstring name =
      L"\\\\.\\pipe\\vfile-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number);
  const HANDLE reader =
      CreateNamedPipeW(name.c_str(), PIPE_ACCESS_INBOUND, PIPE_TYPE_MESSAGE | readMode, 1, kRoom, kRoom, 0, nullptr);
  const HANDLE writer = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (reader == INVALID_HANDLE_VALUE || writer == INVALID_HANDLE_VALUE) std::abort();
  return {reader, writer};
}

}  // namespace

HANDLE support::OpenPipe(const std::string& content) {
  const auto [reader, writer] = OpenEnds(PIPE_READMODE_BYTE);
  // A write of nothing is read as an end. Without it there is an error where the other end is closed.
  const auto size = static_cast<DWORD>(content.size());
  DWORD done = 0;
  const bool written = ::WriteFile(writer, content.data(), size, &done, nullptr) != FALSE &&
                       (size == 0 || ::WriteFile(writer, content.data(), 0, &done, nullptr) != FALSE);
  if (!written) std::abort();
  ::CloseHandle(writer);
  return reader;
}

std::pair<HANDLE, HANDLE> support::OpenChannel() { return OpenEnds(PIPE_READMODE_MESSAGE); }
