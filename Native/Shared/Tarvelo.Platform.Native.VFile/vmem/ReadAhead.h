/// @file
/// Pages of a swap file that were read before they were asked for.
#pragma once

#include <cstdint>
#include <memory>

namespace vmem {

/// Watches which pages are read and tells when they follow a run: several at rising addresses, each a little behind the one before, or
/// at falling ones. Then one call of the host brings the next 16 pages, from which the run is served. Two runs are watched at a
/// time, as two files that are compared need; a page that belongs to none takes the place of the run that has waited longer.
///
/// A page is held as the file has it: whoever writes to the file tells it first.
class ReadAhead {
 public:
  /// Copies the page at `addr` to `data`, if it is held.
  bool Take(std::int32_t addr, unsigned char* data);

  /// Pages that are worth reading at once.
  struct Stretch {
    std::int32_t begin;  ///< Address of the first.
    std::int32_t pages;  ///< How many.
  };
  /// Notes that the page at `addr`, which is not held, has to be read from a file of `fileLen` bytes. Gives the pages to read: this one
  /// alone, or more where it follows a run.
  Stretch Miss(std::int32_t addr, std::int32_t fileLen);
  /// Room for them, or null where the heap has none. What the run held is given up.
  unsigned char* Room();
  /// They stand in the room.
  void Hold(const Stretch& stretch);

  /// The page at `addr` is about to be written.
  void Forget(std::int32_t addr);

 private:
  static constexpr std::int32_t kRuns = 2;
  static constexpr std::int32_t kPages = 16;

  struct Run {
    std::int32_t last = 0;    // address of the page that was asked for last
    std::int32_t length = 0;  // pages asked for so far, up to what makes a run
    bool rises = true;
    std::int32_t begin = 0;  // of the pages that are held
    std::int32_t end = 0;
    std::unique_ptr<unsigned char[]> room;
  };

  Run runs_[kRuns];
  std::int32_t latest_ = 0;  // the run asked last
};

}  // namespace vmem
