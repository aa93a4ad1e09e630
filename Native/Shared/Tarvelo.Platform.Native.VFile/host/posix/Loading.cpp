#include <pthread.h>

#include "host/Host.h"

namespace host {
namespace {

// The loader's notifications, as far as this system has a moment for each. State of the process; written at load, at
// unload and in a forked child, when no other thread is at work here.
bool attached = false;
bool forked = false;
pthread_key_t threadEndKey;
bool threadEndKeyMade = false;

thread_local bool isLoadingThread = false;

// The key's value tells how far the end of the thread has come. It is passed on once, so that the steps come after
// destructors that a program has set on keys of its own.
char watched;
char ending;

void OnThreadEnd(void* stage) {
  if (forked || !attached) return;
  if (stage == &watched) {
    pthread_setspecific(threadEndKey, &ending);
    return;
  }
  ModuleEntry(DLL_THREAD_DETACH);
}

// The lowest priority number that a program may use, so that in a static build the attach comes before every static
// object, and the detach after all.
__attribute__((constructor(101))) void OnLoad() {
  isLoadingThread = true;
  pthread_atfork(nullptr, nullptr, [] { forked = true; });
  threadEndKeyMade = pthread_key_create(&threadEndKey, OnThreadEnd) == 0;
  attached = ModuleEntry(DLL_PROCESS_ATTACH) != 0;
}

__attribute__((destructor(101))) void OnUnload() {
  if (forked) return;
  if (attached) ModuleEntry(DLL_PROCESS_DETACH);
  attached = false;
  if (threadEndKeyMade) pthread_key_delete(threadEndKey);
  threadEndKeyMade = false;
}

}  // namespace

void NotifyThreadEnd() {
  if (isLoadingThread || !threadEndKeyMade) return;
  pthread_setspecific(threadEndKey, &watched);
}

}  // namespace host
