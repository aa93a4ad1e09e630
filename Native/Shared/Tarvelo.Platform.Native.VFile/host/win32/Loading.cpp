// A DLL: the loader calls `DllMain`, which does the steps of all four moments.

#include "host/Host.h"

namespace host {

void NotifyThreadEnd() {}

}  // namespace host
