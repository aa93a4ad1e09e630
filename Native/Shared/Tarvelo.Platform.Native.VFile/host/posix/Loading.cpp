// A load cannot be refused here, so a failed attach gets no detach. There is no notice of a thread's start; that of its end
// comes to a thread that asked for it, behind its thread-local objects. In a forked child neither detach comes, but for the
// end of threads that were started there.

#include <atomic>
#include <pthread.h>
#include <sys/single_threaded.h>

#include "host/Host.h"

namespace host {
namespace {

// The loader's notifications, as far as this system has a moment for each. Written at load, at unload and in a forked child;
// read by threads that end, which at an exit others do meanwhile.
std::atomic<bool> attached = false;
std::atomic<bool> forked = false;
std::atomic<bool> threadEndKeyMade = false;
pthread_key_t threadEndKey;

/// Whether this is the thread of a forked child that came from its parent, with whatever it had there.
thread_local bool inherited = false;

// The key's value tells how far the end of the thread has come. It is passed on once, so that the steps come after
// destructors that a program has set on keys of its own.
char watched;
char ending;

void OnThreadEnd(void* stage) {
  if (inherited || !attached) return;
  if (stage == &watched) {
    pthread_setspecific(threadEndKey, &ending);
    return;
  }
  ModuleEntry(DLL_THREAD_DETACH);
}

void OnFork() {
  forked = true;
  inherited = true;
}

// The lowest priority number that a program may use, so that in a static build the attach comes before every static
// object, and the detach after all.
__attribute__((constructor(101))) void OnLoad() {
  pthread_atfork(nullptr, nullptr, OnFork);
  threadEndKeyMade = pthread_key_create(&threadEndKey, OnThreadEnd) == 0;
  attached = ModuleEntry(DLL_PROCESS_ATTACH) != 0;
}

// An exit does not wait for other threads, nor can it end them. So where there are any, what they use stays, and the thread
// that runs the exit gives back its own alone. An unload, which looks the same from here, takes the module with all it has.
__attribute__((destructor(101))) void OnUnload() {
  if (attached.exchange(false) && !forked) ModuleEntry(__libc_single_threaded ? DLL_PROCESS_DETACH : DLL_THREAD_DETACH);
  if (threadEndKeyMade.exchange(false)) pthread_key_delete(threadEndKey);
}

}  // namespace

void NotifyThreadEnd() {
  if (threadEndKeyMade) pthread_setspecific(threadEndKey, &watched);
}

}  // namespace host
