#include "support/Pipe.h"

#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

HANDLE support::OpenPipe(const std::string& content) {
  int ends[2];
  if (pipe(ends) != 0 || write(ends[1], content.data(), content.size()) < 0) std::abort();
  close(ends[1]);
  return host::HandleFromDescriptor(ends[0]);
}

std::pair<HANDLE, HANDLE> support::OpenChannel() {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) std::abort();
  return {host::HandleFromDescriptor(ends[0]), host::HandleFromDescriptor(ends[1])};
}
