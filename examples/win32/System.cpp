#include "System.h"

#include <fcntl.h>
#include <io.h>
#include <memory>
#include <string_view>

// The first comes before the others.
// clang-format off
#include <windows.h>
#include <psapi.h>
#include <shellapi.h>
// clang-format on

namespace {

/// The size of the file if it is a swap file.
std::optional<std::uintmax_t> SizeOfSwapFile(HANDLE file) {
  wchar_t name[1024];
  LARGE_INTEGER size;
  if (GetFileType(file) != FILE_TYPE_DISK) return std::nullopt;
  const DWORD length = GetFinalPathNameByHandleW(file, name, 1024, FILE_NAME_OPENED);
  if (length == 0 || length >= 1024) return std::nullopt;
  std::wstring_view last(name, length);
  last.remove_prefix(last.rfind(L'\\') + 1);
  if (!last.starts_with(L"~vmem") || !GetFileSizeEx(file, &size)) return std::nullopt;
  return static_cast<std::uintmax_t>(size.QuadPart);
}

}  // namespace

bool IsLink(const vf::Name& name) {
  const DWORD attributes = GetFileAttributesW(name);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool IsTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

// Another process may have a file of such a name in the same directory, so it is looked for among the own handles, which are
// multiples of 4.
std::optional<std::uintmax_t> SwapFileSize() {
  constexpr std::uintptr_t kHighest = 4096;
  for (std::uintptr_t handle = 4; handle <= kHighest; handle += 4) {
    if (const auto size = SizeOfSwapFile(reinterpret_cast<HANDLE>(handle))) return size;
  }
  return std::nullopt;
}

std::optional<std::uintmax_t> PeakMemory() {
  PROCESS_MEMORY_COUNTERS counters;
  if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return std::nullopt;
  return counters.PeakWorkingSetSize;
}

int main() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  _setmode(_fileno(stdin), _O_BINARY);
  const UINT codePageOfConsole = GetConsoleOutputCP();
  if (codePageOfConsole != 0) SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  // Not the runtime's arguments, which are in the code page, and whose wildcards may be replaced by names.
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
  const int status = words ? Run(Arguments(words.get() + 1, words.get() + count)) : 1;
  if (codePageOfConsole != 0) SetConsoleOutputCP(codePageOfConsole);
  return status;
}
