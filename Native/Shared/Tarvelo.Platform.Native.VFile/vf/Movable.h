/// @file
/// Files as elements of containers.
///
///     std::vector<vf::Movable<VFile>> parts;
///     for (int i = 0; i < 100; ++i) parts.emplace_back("part");
///     return parts[99] == "part" ? resDone : resNotDone;
///
/// `VFile` and `TCharVFile` can be moved in constant time, returned, and kept in a `std::list`, a `std::deque`, a map or a `std::vector` that
/// does not grow. A `std::vector` that grows copies elements whose destructor may throw, as theirs may, if they can be copied at
/// all; `Movable` cannot, so it moves. A class of one's own does the same by declaring its move constructor alone.
///
/// A moved file keeps its content, position, flags and `res`, and the other is empty: see the move constructor of `VFile`. There is no
/// assignment by moving: `a = b` is a change of `a`, also where `b` is a temporary, and `swap(a, b)` exchanges contents, both as seen by
/// hooks. So what assigns elements (`std::sort`, `std::vector::erase` and `insert` but at its end) does not compile with `Movable`;
/// `std::list` does without.
#pragma once

#include <utility>

#include "tcharvfile/TCharVFile.h"

namespace vf {

template <typename File>
class Movable : public File {
 public:
  using File::File;
  using File::operator=;

  Movable() = default;
  Movable(Movable&& other) = default;
  Movable(File&& file) : File(std::move(file)) {}  // NOLINT(google-explicit-constructor): the same file
};

}  // namespace vf
