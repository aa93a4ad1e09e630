#include "hsys/TempDirectory.h"

#include <string>

#include "host/Host.h"

bool hsys::IsUsableDirectory(const TChar* name) {
  if (name == nullptr || *name == 0 || std::char_traits<TChar>::length(name) >= kNameSize) return false;
  const std::uint32_t attributes = host::GetFileAttributesW(name);
  const bool directory =
      attributes != host::INVALID_FILE_ATTRIBUTES && (attributes & host::FILE_ATTRIBUTE_DIRECTORY) != 0;
  return directory && host::_waccess(name, 6) == 0;
}

void hsys::FindTempDirectory(TChar (&buffer)[kNameSize]) {
  for (const TChar* variable : {TSTR("TMP"), TSTR("TEMP")}) {
    std::size_t required = 0;
    if (host::_wgetenv_s(&required, buffer, kNameSize, variable) == 0 && IsUsableDirectory(buffer)) return;
  }
  buffer[0] = 0;
  host::GetLastResortTempDirectory(buffer, kNameSize);
}
