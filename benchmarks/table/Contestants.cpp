#include <algorithm>
#include <dlfcn.h>
#include <initializer_list>

#include "Contestant.h"
#include "Measuring.h"

namespace {

const std::vector<ContestantEntry>& OwnContestants() {
  static const std::vector<ContestantEntry> entries =
      Joined({EditContestants(), TransferContestants(), ScanContestants(), PageContestants(), LayerContestants()});
  return entries;
}

/// Loads their module.
const std::vector<ContestantEntry>& LoadedPeerContestants() {
  void* module = dlopen(TABLE_PEERS, RTLD_NOW);
  Expect(module != nullptr, TABLE_PEERS ": cannot be loaded");
  return reinterpret_cast<decltype(&PeerContestants)>(dlsym(module, "PeerContestants"))();
}

const ContestantEntry* Find(const std::string& name) {
  const auto findIn = [&](const std::vector<ContestantEntry>& entries) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.name == name; });
    return found == entries.end() ? nullptr : &*found;
  };
  const ContestantEntry* own = findIn(OwnContestants());
  return own != nullptr ? own : findIn(LoadedPeerContestants());
}

}  // namespace

bool Exists(const std::string& name) { return Find(name) != nullptr; }

Contestant MakeContestant(const std::string& name, const Setting& setting) {
  const ContestantEntry* entry = Find(name);
  Expect(entry != nullptr, name + ": no such contestant");
  return entry->make(setting);
}
