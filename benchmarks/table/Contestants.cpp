#include "Contestant.h"
#include "Measuring.h"

namespace {

const ContestantEntry* Find(const std::string& name) {
  static const std::vector<ContestantEntry> all = [] {
    std::vector<ContestantEntry> entries;
    for (const auto& some : {
             EditContestants(),
             TransferContestants(),
             ScanContestants(),
             PageContestants(),
             TextContestants(),
#ifdef TABLE_HAS_SQLITE
             SqliteContestants(),
#endif
#ifdef TABLE_HAS_LMDB
             LmdbContestants(),
#endif
         }) {
      entries.insert(entries.end(), some.begin(), some.end());
    }
    return entries;
  }();
  for (const ContestantEntry& entry : all) {
    if (name == entry.name) return &entry;
  }
  return nullptr;
}

}  // namespace

bool Exists(const std::string& name) { return Find(name) != nullptr; }

std::unique_ptr<Contestant> MakeContestant(const std::string& name, const Setting& setting) {
  const ContestantEntry* entry = Find(name);
  Expect(entry != nullptr, name + ": no such contestant");
  return entry->make(setting);
}
