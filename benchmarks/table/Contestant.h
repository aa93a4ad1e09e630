// One that does a work of the table: the library, what the machine allows, or a peer. Each runs in a process of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

/// What a contestant is to do.
struct Setting {
  std::string directory;    ///< where swap files, and files like them, lie
  std::string content;      ///< name of the file with the content
  std::int64_t size = 0;    ///< its bytes
  std::int32_t count = 1;   ///< operations in a round
  std::int16_t cache = 70;  ///< bound of the library's cache in kilobytes
};

/// Its three functions share what it works on, which goes with them.
struct Contestant {
  std::function<void()> run;  ///< a round
  /// Looks at what the last round has left, and throws if that is wrong. Those with the same work give the same sum of their
  /// content, or 0 for none.
  std::function<std::uint64_t()> check = [] { return 0; };
  std::function<void()> prepare = [] {};  ///< comes before each round and is not measured
};

struct ContestantEntry {
  const char* name;
  Contestant (*make)(const Setting& setting);
};

/// Whether this build has a contestant of that name.
bool Exists(const std::string& name);
Contestant MakeContestant(const std::string& name, const Setting& setting);

// Those of each file.
std::vector<ContestantEntry> EditContestants();
std::vector<ContestantEntry> TransferContestants();
std::vector<ContestantEntry> LoopContestants();
std::vector<ContestantEntry> ScanContestants();
std::vector<ContestantEntry> PageContestants();
std::vector<ContestantEntry> LayerContestants();
std::vector<ContestantEntry> SqliteContestants();
std::vector<ContestantEntry> LmdbContestants();

inline std::vector<ContestantEntry> Joined(std::initializer_list<std::vector<ContestantEntry>> parts) {
  std::vector<ContestantEntry> entries;
  for (const auto& part : parts) entries.insert(entries.end(), part.begin(), part.end());
  return entries;
}

/// Those of the module of peers.
extern "C" const std::vector<ContestantEntry>& PeerContestants();
