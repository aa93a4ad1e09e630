#include "hfile/HFile.h"
#include "hsys/ResText.h"
#include "hsys/Strings.h"

void HFile::GetResMsg(TChar* buffer, std::uint32_t size, std::int32_t code) {
  AssignStr(buffer, size, code == resHeapOverflow ? TSTR("heap overflow") : hsys::ResText(code));
}

std::int32_t HFile::GetFileRes() { return ::GetFileRes(); }

std::int32_t GetFileRes(const HFile& file) {
  return file.res >= resDone && file.res <= resNetworkError ? file.res : std::int32_t{resNotDone};
}
