// An object of a thread. Its destructor runs before the library takes its values from the thread, which not every host's compiler and
// loader see to.

#include "../Host.h"

#include <thread>

#include "vfile/VFile.h"

bool HostGood() {
  bool good = false;
  std::thread([&] {
    thread_local VFile ofThread("x");
    ofThread << 42;
    good = ContentOf(ofThread) == "x42";
  }).join();
  return good;
}
