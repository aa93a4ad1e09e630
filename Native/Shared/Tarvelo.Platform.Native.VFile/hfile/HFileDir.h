/// @file
/// The class HFileDir.

/// @class HFileDir
/// The names in a directory that match a pattern, one at a time.
///
///     HFileDir dir;
///     TChar name[261];
///     for (bool found = dir.FindFirst(name, 261, TSTR("logs/*.txt")); found; found = dir.FindNext(name, 261)) {
///       HFile::SetReadOnly(name, true);
///     }
///
/// A pattern is a name whose last step may hold the wildcards "*", any number of characters, and "?", one character. "*.*" is
/// every name, also one without a dot. A pattern has up to 260 units; what is longer is cut. Each name is handed out as a full
/// path, resolved when it is found; a path of more than 260 units is cut, and so is one that does not fit the buffer. Every name
/// is delivered that the host reports, directories, "." and ".." included, which come out as the directory and its parent. Their order,
/// whether case counts, and whether a name that comes into being during a walk is found, are the host's.
///
/// Failures: a pattern that matches nothing, a directory that does not exist or cannot be read, and a heap that is exhausted all
/// read the same: false, and an empty buffer.
///
/// Thread: no lock and no check. An object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "host/FindData.h"
#include "host/Unit.h"

class VFILE_API HFileDir {
 public:
  /// An object without a pattern.
  HFileDir();
  /// The same, then `Start`.
  explicit HFileDir(const TChar* pattern);
  /// Ends the walk.
  virtual ~HFileDir();

  HFileDir(const HFileDir&) = delete;
  HFileDir& operator=(const HFileDir&) = delete;

  /// Begins a walk over `pattern`, of which it keeps a copy; the disk is first touched by the first `FindNext`. Ends the walk
  /// before it. Null or empty: no walk.
  void Start(const TChar* pattern);
  /// Ends the walk and forgets the pattern.
  void Stop();
  /// `Start`, then `FindNext`. With a null buffer `Stop`, and false.
  bool FindFirst(TChar* buffer, std::uint32_t size, const TChar* pattern);
  /// Puts the next name, as a full path, into `buffer` of `size` units, terminator included; false, and an empty buffer, if
  /// there is none. With a null buffer false, and the walk stands still. Halts with `HaltA` for a size of 0.
  bool FindNext(TChar* buffer, std::uint32_t size);
  /// How many names the walk has delivered. Stays when they have run out; 0 when the first find found none.
  std::int32_t Count() const;

 private:
  /// Left by: dirIdle by Start; dirStarted by the first FindNext, to dirFinding or, with no match, dirIdle; dirFinding at the last
  /// name, to dirFinished; that by Start. Stop leads to dirIdle from everywhere.
  enum State : std::int32_t {
    dirIdle = 0,      // no pattern
    dirStarted = 1,   // a pattern, nothing searched yet
    dirFinding = 2,   // a search of the host is open
    dirFinished = 3,  // it has run out
  };
  static constexpr std::uint32_t kNameSize = 261;

  void Init();
  void ConstructName(TChar* buffer, std::uint32_t size, const TChar* name);

  std::int32_t state;                // a State
  std::int32_t count;                // names delivered in this walk
  TChar pattern[kNameSize];          // cut to fit
  TChar dirPrefix[kNameSize];        // drive and directory of the pattern
  host::_wfinddata64i32_t findData;  // filled by each find
  std::intptr_t findHandle;          // owned search of the host; -1: none
};
