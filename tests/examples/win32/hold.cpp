// Has a file open as other programs may have it, for reading: tells so, and goes when its standard input ends. The file is "keep" in the
// current directory.

#include <cstdio>

#include "hfile/HFile.h"

int main() {
  HFile file;
  if (!file.OpenSeqRead(TSTR("keep"))) return 1;
  std::puts("open");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
}
