#include "support/Disk.h"

namespace {

int transfersLeft = -1;  // -1: the disk works
int failingKinds = 0;
bool hasFailed = false;
HANDLE failingFile = INVALID_HANDLE_VALUE;  // that of the last failure

}  // namespace

support::FailingDisk::FailingDisk(int failing, Kind kind) {
  hasFailed = false;
  failingFile = INVALID_HANDLE_VALUE;
  failingKinds = kind;
  transfersLeft = failing - 1;
}

support::FailingDisk::~FailingDisk() { Repair(); }

bool support::FailingDisk::HasFailed() { return hasFailed; }

void support::FailingDisk::Repair() { transfersLeft = -1; }

bool support::FailingDisk::Allows(HANDLE file, Kind kind, bool positioned) {
  // At the position it is the second try of one that failed, or none of a swap file.
  if (!positioned && (transfersLeft != 0 || file != failingFile)) return true;
  if (transfersLeft < 0 || (failingKinds & kind) == 0) return true;
  if (transfersLeft > 0) {
    --transfersLeft;
    return true;
  }
  hasFailed = true;
  failingFile = file;
  return false;
}
