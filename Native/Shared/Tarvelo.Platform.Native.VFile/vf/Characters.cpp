#include "vf/Characters.h"

#include <algorithm>

#include "host/Utf8.h"
#include "hsys/Checked.h"
#include "tcharvfile/Inside.h"
#include "vfile/Require.h"

namespace vf {
namespace {

/// Units that are read with those that are wanted, from where the reader comes: it may turn round.
constexpr std::int32_t kBack = 64;

std::uint32_t ChangesOf(const TCharVFile& text) { return vfile::Inside::ChangesOf(vfile::Inside::FileOf(text)); }

}  // namespace

CharacterReader::CharacterReader(const TCharVFile& text, std::int32_t position)
    : text_(&text), changes_(ChangesOf(text)), base_(std::clamp(position, 0, text.TCharLength())) {}

void CharacterReader::SetPosition(std::int32_t position) {
  changes_ = ChangesOf(*text_);
  base_ = std::clamp(position, 0, text_->TCharLength());
  at_ = 0;
  end_ = 0;
}

bool CharacterReader::StepForward(char32_t& character) {
  if (!IsCurrent()) return false;
  // A high surrogate alone may have its other half behind what has been read.
  if (end_ - at_ < 2) Read(Position() - kBack);
  if (at_ == end_) return false;
  std::uint32_t value = 0;
  at_ += static_cast<std::int32_t>(host::DecodeUtf16(units_ + at_, static_cast<std::size_t>(end_ - at_), value));
  character = value;
  Forget();
  return true;
}

bool CharacterReader::StepBackward(char32_t& character) {
  if (!IsCurrent()) return false;
  if (at_ < 2) Read(Position() + kBack - kUnits);
  if (at_ == 0) return false;
  const bool isPair = at_ > 1 && host::IsLowSurrogate(units_[at_ - 1]) && host::IsHighSurrogate(units_[at_ - 2]);
  at_ -= isPair ? 2 : 1;
  std::uint32_t value = units_[at_];
  if (isPair) host::DecodeUtf16(units_ + at_, 2, value);
  character = value;
  Forget();
  return true;
}

/// False behind a halt that returned.
bool CharacterReader::IsCurrent() const {
  if constexpr (!hsys::kChecked) return true;
  return vfile::Require(TSTR("CharacterReader"), changes_ == ChangesOf(*text_), TSTR("the text has changed"));
}

/// Reads units from a place on, or from the start, up to behind the position.
void CharacterReader::Read(std::int32_t from) {
  const std::int32_t position = Position();
  base_ = std::max(from, 0);
  at_ = position - base_;
  end_ = text_->ReadTCharsAt(base_, units_, kUnits);
  if (at_ <= end_) return;
  base_ = position;
  at_ = 0;
  end_ = 0;
}

/// A checking build reads nothing ahead, so that each step comes to where the text is asked for changes.
void CharacterReader::Forget() {
  if constexpr (!hsys::kChecked) return;
  base_ += at_;
  at_ = 0;
  end_ = 0;
}

void AppendCharacter(TString& units, char32_t character) {
  TChar pair[2];
  const bool isCodePoint = character <= 0x10FFFF;
  const std::size_t count = host::EncodeUtf16(pair, isCodePoint ? character : host::kReplacementCharacter);
  units.append(pair, count);
}

}  // namespace vf
