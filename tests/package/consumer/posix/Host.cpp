// An object of a thread, which is destroyed before the library takes its values from the thread.

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
