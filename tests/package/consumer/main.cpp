// Uses a bit of each layer, with static objects that are made before `main` and destroyed after it.

#include <cstdio>
#include <string>
#include <thread>

#include "hfile/HFile.h"
#include "hsys/HSys.h"
#include "threads/Threads.h"
#include "vfile/VFile.h"
#include "vmem/VMem.h"

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

  VMem space;
  std::int32_t addr = -1;
  space.Alloc(addr, 8);
  space.Set(addr, 7LL);
  long long value = 0;
  space.Get(addr, value);
  HFile closed;
  closed.Close();
  good = good && addr == 0 && value == 7 && GetFileRes(closed) == resCallError && VFile_IsThreadInitialized();
  std::puts(good ? "good" : "bad");
  return good ? 0 : 1;
}
