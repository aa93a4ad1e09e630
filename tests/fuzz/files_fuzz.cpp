// Operations on files against strings: an input is a script of the machine.

#include "fuzz/Machine.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  VFile::SetMaxCacheSize(2);
  fuzz::Machine machine;
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  for (std::string line; std::getline(lines, line);) machine.Step(line);
  for (const fuzz::Pair& pair : machine.pairs) pair.Compare();
  return 0;
}
