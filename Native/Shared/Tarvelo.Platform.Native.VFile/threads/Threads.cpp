#include "threads/Threads.h"

#include "host/Host.h"
#include "threads/ThreadSlots.h"
#include "vfile/VFile.h"
#include "vmem/PageTable.h"

// The functions with internal linkage do the work, so that another module's definition of an exported name cannot come in
// between.
namespace {

bool InitializeThread() {
  if (threads::TlsTableExists()) return true;
  return threads::TlsTableCreate() && VFile::TLS_InitializeThread();
}

bool UninitializeThread() {
  if (threads::TlsTableExists()) {
    VFile::TLS_UninitializeThread();
    threads::TlsTableDelete();
  }
  return true;
}

}  // namespace

std::int32_t host::ModuleEntry(std::uint32_t reason) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      return threads::TlsModuleStart() && VFile::TLS_InitializeProcess() && InitializeThread() ? 1 : 0;
    case DLL_THREAD_ATTACH:
      return InitializeThread() ? 1 : 0;
    case DLL_THREAD_DETACH:
      return UninitializeThread() ? 1 : 0;
    case DLL_PROCESS_DETACH:
      if (!UninitializeThread() || !VFile::TLS_UninitializeProcess()) return 0;
      threads::TlsModuleStop();
      vmem::FreeKeptPageTable();
      return 1;
    default:
      return 1;
  }
}

bool VFile_InitializeThread() { return InitializeThread(); }

bool VFile_IsThreadInitialized() { return threads::TlsTableExists(); }

bool VFile_UninitializeThread() { return UninitializeThread(); }
