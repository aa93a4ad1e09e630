/// @file
/// Pages of a swap file that were read before they were asked for.
#pragma once

#include <cstdint>
#include <memory>

namespace vmem {

/// Watches which pages are read and tells when they follow a run: several at rising addresses, each a little behind the one before.
/// Then one call of the host brings the next 16 pages, from which the run is served. Two runs are watched at a time, as two files
/// that are compared need; a page that belongs to none takes the place of the run that has waited longer.
///
/// A page is held as the file has it: whoever writes to the file tells it first.
class ReadAhead {
 public:
  /// Copies the page at `addr` to `data`, if it is held.
  bool Take(std::int32_t addr, unsigned char* data);

  /// Notes that the page at `addr`, which is not held, has to be read. Gives how many pages are worth reading from there on: one,
  /// or more where it follows a run.
  std::int32_t Miss(std::int32_t addr);
  /// Room for what `Miss` asked for, or null where the heap has none.
  unsigned char* Room();
  /// `pages` pages from `addr` on stand in the room.
  void Hold(std::int32_t addr, std::int32_t pages);

  /// The page at `addr` is about to be written.
  void Forget(std::int32_t addr);

 private:
  static constexpr std::int32_t kRuns = 2;
  static constexpr std::int32_t kPages = 16;

  struct Run {
    std::int32_t next = -1;  // address behind the last page that was asked for
    std::int32_t length = 0;  // pages asked for so far
    std::int32_t begin = 0;  // of the pages that are held
    std::int32_t end = 0;
    std::unique_ptr<unsigned char[]> room;
  };

  Run runs_[kRuns];
  std::int32_t latest_ = 0;  // the run asked last
};

}  // namespace vmem
