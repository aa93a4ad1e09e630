// The contestants that need other libraries than ours: a module of its own, so that the process of one that needs none holds none.

#include "Contestant.h"

extern "C" const std::vector<ContestantEntry>& PeerContestants() {
  static const std::vector<ContestantEntry> entries = Joined({
      LoopContestants(),
#ifdef TABLE_HAS_SQLITE
      SqliteContestants(),
#endif
#ifdef TABLE_HAS_LMDB
      LmdbContestants(),
#endif
  });
  return entries;
}
