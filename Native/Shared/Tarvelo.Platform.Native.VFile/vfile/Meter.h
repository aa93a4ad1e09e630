/// @file
/// How far a long operation of a file is, told to whoever asked.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <utility>

namespace vfile {

/// Counts the bytes of the operation that runs, and calls a procedure with them, no sooner than a mebibyte or 20 ms behind its
/// start or the last call. The procedure may end the operation, whose file then has `resNotDone`.
class Meter {
 public:
  /// Gets the bytes done and those of the whole operation, -1 where nothing tells these. False ends the operation.
  using Procedure = std::function<bool(std::int64_t done, std::int64_t total)>;

  /// `fileRes` is the `res` of the file.
  Meter(Procedure procedure, std::int32_t& fileRes) : procedure_(std::move(procedure)), res_(fileRes) {}
  Meter(const Meter&) = delete;
  Meter& operator=(const Meter&) = delete;

  /// Whether the last operation was ended.
  bool IsCancelled() const { return cancelled_; }

  Meter* before = nullptr;  ///< the one of the same file that this one stands in for, or null

 private:
  friend class Pass;
  using Clock = std::chrono::steady_clock;

  void Start(int parts);
  bool Advance(std::int64_t bytes);
  void Cancel();

  Procedure procedure_;
  std::int32_t& res_;
  std::int64_t done_ = 0;
  std::int64_t told_ = 0;  // of `done_`, at the last call
  std::int64_t total_ = -1;
  Clock::time_point toldAt_;
  int parts_ = 0;          // of the operation that runs, 0 while none does
  bool counting_ = false;  // some pass counts
  bool cancelled_ = false;
};

/// An operation, as long as this lives. Inside another it counts nothing, but inside one of several parts, each of which goes through
/// all the bytes. Without a meter all of this is a look at a pointer.
class Pass {
 public:
  /// Of `total` bytes, or -1. One of more than a part counts nothing itself.
  explicit Pass(Meter* meter, std::int64_t total, int parts = 1) {
    if (meter != nullptr) Begin(meter, total, parts);
  }
  ~Pass() {
    if (meter_ != nullptr) End();
  }
  Pass(const Pass&) = delete;
  Pass& operator=(const Pass&) = delete;

  /// Adds to what is done; false if the operation is to end, which then stands in the file's `res`.
  bool Advance(std::int64_t bytes) { return meter_ == nullptr || meter_->Advance(bytes); }

 private:
  void Begin(Meter* meter, std::int64_t total, int parts);
  void End();

  Meter* meter_ = nullptr;
  bool outer_ = false;
  bool counts_ = false;
};

}  // namespace vfile
