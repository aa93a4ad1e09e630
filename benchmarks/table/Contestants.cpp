#include "Contestant.h"
#include "Measuring.h"

namespace {

const std::vector<ContestantEntry>& All() {
  static const std::vector<ContestantEntry> all = [] {
    std::vector<ContestantEntry> entries;
    for (const auto& part : {
             EditContestants(),
             TransferContestants(),
             LoopContestants(),
             ScanContestants(),
             PageContestants(),
#ifdef TABLE_HAS_SQLITE
             SqliteContestants(),
#endif
#ifdef TABLE_HAS_LMDB
             LmdbContestants(),
#endif
         }) {
      entries.insert(entries.end(), part.begin(), part.end());
    }
    return entries;
  }();
  return all;
}

auto Find(const std::string& name) {
  return std::find_if(All().begin(), All().end(), [&](const ContestantEntry& entry) { return entry.name == name; });
}

}  // namespace

bool Exists(const std::string& name) { return Find(name) != All().end(); }

Contestant MakeContestant(const std::string& name, const Setting& setting) {
  Expect(Exists(name), name + ": no such contestant");
  return Find(name)->make(setting);
}
