// Virtual files with every lifetime: static objects made before `main` and destroyed after it, and objects of a thread.

#include <cstdio>
#include <string>
#include <thread>

#include "vfile/VFile.h"

namespace {

VFile atStart("made before main");

std::string ContentOf(VFile& file) {
  std::string content(static_cast<std::size_t>(file.Length()), '\0');
  file.Reset();
  file.ReadBytes(content.data(), file.Length());
  return content;
}

}  // namespace

int main() {
  static VFile inMain("abc");
  inMain.Insert(inMain, 0, MaxLen);
  bool good = ContentOf(inMain) == "abcabc" && ContentOf(atStart) == "made before main";

  std::thread([&] {
    thread_local VFile ofThread("x");
    ofThread << 42;
    good = good && ContentOf(ofThread) == "x42";
  }).join();
  std::puts(good ? "good" : "bad");
  return good ? 0 : 1;
}
