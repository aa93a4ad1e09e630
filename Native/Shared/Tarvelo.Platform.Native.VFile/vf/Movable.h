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
/// A moved file keeps its content, position, flags and `res`, and the other is empty: see the move constructor of `VFile`. A `Movable`
/// of these classes is also assigned and swapped whole, which containers and algorithms need: both exchange all that they are, in
/// constant time, and no hook is asked or told. For the classes themselves, and what is derived of them, there is no such assignment:
/// `a = b` is a change of `a`, also where `b` is a temporary, and `swap(a, b)` exchanges contents, both as seen by hooks.
///
/// Halts: on another thread than that of both.
#pragma once

#include <concepts>
#include <utility>

#include "host/Export.h"
#include "tcharvfile/TCharVFile.h"

namespace vf {

/// @{
/// For `Movable`: exchanges contents, positions, flags, `res`, `eof` and `radix`.
VFILE_API void ExchangeAll(VFile& left, VFile& right);
VFILE_API void ExchangeAll(TCharVFile& left, TCharVFile& right);
/// @}

/// A file that moves where the standard library would copy it.
template <typename File>
class Movable : public File {
 public:
  using File::File;
  using File::operator=;

  /// @{
  /// Empty, or all that the other is.
  Movable() = default;
  Movable(Movable&& other) = default;              // NOLINT(performance-noexcept-move-constructor): it may halt
  Movable(File&& file) : File(std::move(file)) {}  // NOLINT(google-explicit-constructor): the same file
  /// @}
  /// @{
  /// Exchange all that both are.
  // A derived class may have more than that.
  Movable& operator=(Movable&& other)  // NOLINT(performance-noexcept-move-constructor): it may halt
      requires(std::same_as<File, VFile> || std::same_as<File, TCharVFile>) {
    ExchangeAll(*this, other);
    return *this;
  }
  friend void swap(Movable& left,
                   Movable& right) requires(std::same_as<File, VFile> || std::same_as<File, TCharVFile>) {
    ExchangeAll(left, right);
  }
  /// @}
};

}  // namespace vf
