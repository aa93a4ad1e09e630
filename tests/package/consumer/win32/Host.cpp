// The system's header before the library's: its macros change no name of that.

#include "../Host.h"

#include <windows.h>

#include "hfile/HFile.h"
#include "vfile/VFile.h"

namespace {

/// Overrides what a macro of the system is called as.
class ReplacingFile : public VFile {
 public:
  int replaced = 0;

 protected:
  using VFile::ReplaceFile;
  void ReplaceFile(std::int32_t pos, std::int32_t del, HFile& source, std::int32_t count) override {
    VFile::ReplaceFile(pos, del, source, count);
    ++replaced;
  }
};

}  // namespace

bool HostGood() {
  wchar_t name[MAX_PATH];
  if (GetModuleFileNameW(nullptr, name, MAX_PATH) == 0) return false;
  HFile program;
  program.OpenSeqRead(name);
  ReplacingFile file;
  file.Insert(program, 2);
  return file.replaced == 1 && ContentOf(file) == "MZ";
}
