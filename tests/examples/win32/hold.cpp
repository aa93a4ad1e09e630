// Has a file open as other programs may have it, for reading: makes the file "opened" then, and goes when its standard input ends. The
// file is "keep" in the current directory.

#include <cstdio>

#include "hfile/HFile.h"

int main() {
  HFile file;
  if (!file.OpenSeqRead(TSTR("keep")) || !HFile().Create(TSTR("opened"), false)) return 1;
  while (std::getchar() != EOF) {
  }
  return 0;
}
