#include "host/Host.h"
#include "threads/Threads.h"

host::EntryResult VFILE_ENTRY DllMain(host::Module /*module*/, host::EntryReason reason, void* /*reserved*/) {
  return host::ModuleEntry(static_cast<std::uint32_t>(reason));
}
