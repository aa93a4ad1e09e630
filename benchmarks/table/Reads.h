// Reads at places that a generator gives, alike for all contestants.
#pragma once

#include <random>
#include <vector>

#include "Contestant.h"
#include "HostFile.h"
#include "Measuring.h"

/// Places of a content, and the sum of the bytes that were read there against that of the content itself.
class RandomReads : public Contestant {
 public:
  std::uint64_t Check() override {
    const HostFile file = HostFile::Open(content_);
    std::uint64_t sum = 0;
    for (const std::int32_t place : places_) {
      char bytes[kPage];
      file.ReadAt(place, bytes, count_);
      sum += Ends(bytes);
    }
    Expect(sum == sum_, "bytes at random places");
    return 0;
  }

 protected:
  /// Reads of `count` bytes at multiples of `grid`.
  RandomReads(const Setting& setting, std::int64_t grid, std::size_t count) : content_(setting.content), count_(count) {
    std::mt19937 random(4);
    const std::int64_t places = (setting.size - static_cast<std::int64_t>(count)) / grid + 1;
    for (std::int32_t i = 0; i < setting.count; ++i) {
      const std::int64_t place = static_cast<std::int64_t>(random()) % places;
      places_.push_back(static_cast<std::int32_t>(place * grid));
    }
  }
  /// A round: `read` brings the bytes of a place.
  template <typename Read>
  void ReadAll(Read read) {
    sum_ = 0;
    char bytes[kPage];
    for (const std::int32_t place : places_) {
      read(place, bytes);
      sum_ += Ends(bytes);
    }
  }

 private:
  std::uint64_t Ends(const char* bytes) const { return FirstWord(bytes) + 3 * FirstWord(bytes + count_ - 8); }

  const std::string content_;
  const std::size_t count_;
  std::vector<std::int32_t> places_;
  std::uint64_t sum_ = 0;
};
