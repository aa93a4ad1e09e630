// Edits of three kinds, by all that can be edited.

#include <memory>
#include <random>

#include "Editors.h"

namespace {

struct Edit {
  std::int32_t at;
  std::int16_t del;  ///< bytes that go out, or
  std::int16_t ins;  ///< bytes that come in
};
using Script = std::vector<Edit>;

/// Inserts and deletes of 16 bytes in turn, each at a place of its own.
Script AtRandom(std::int64_t size, std::int32_t count) {
  Script script;
  std::mt19937 random(1);
  const auto places = static_cast<std::uint32_t>(size - 16);
  for (std::int32_t i = 0; i < count; ++i) {
    const auto at = static_cast<std::int32_t>(random() % places);
    script.push_back(i % 2 == 0 ? Edit{at, 0, 16} : Edit{at, 16, 0});
  }
  return script;
}

/// Inserts and deletes of a byte in turn, each within 32 bytes of a cursor that goes on by a byte for four edits.
Script AtCursor(std::int64_t size, std::int32_t count) {
  Script script;
  std::mt19937 random(2);
  auto cursor = static_cast<std::int32_t>(size / 2);
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t at = cursor + static_cast<std::int32_t>(random() % 64) - 32;
    script.push_back(i % 2 == 0 ? Edit{at, 0, 1} : Edit{at, 1, 0});
    if (i % 4 == 3) ++cursor;
  }
  return script;
}

/// Bursts of 1 to 40 bytes, typed or taken back byte by byte, with a jump of up to ten lines behind each. The length of the text
/// stays about what it was.
Script AsTyped(std::int64_t size, std::int32_t count) {
  Script script;
  std::mt19937 random(3);
  const auto below = [&](std::uint32_t bound) { return static_cast<std::int32_t>(random() % bound); };
  auto length = static_cast<std::int32_t>(size);
  std::int32_t cursor = length / 2;
  while (std::ssize(script) < count) {
    const bool back = below(10) < (length > size ? 6 : 2);
    for (std::int32_t left = 1 + below(40); left > 0 && std::ssize(script) < count; --left) {
      if (back && cursor > 0) {
        script.push_back({--cursor, 1, 0});
        --length;
      } else if (!back) {
        script.push_back({cursor++, 0, 1});
        ++length;
      }
    }
    cursor = std::clamp(cursor + (below(21) - 10) * 80 + below(80), 0, length);
  }
  return script;
}

template <typename Editor>
void Apply(const Script& script, Editor& editor) {
  static constexpr char kNew[] = "the quick brown fox jumps over the lazy dog, 0123456789";
  std::size_t i = 0;
  for (const Edit& edit : script) {
    if (edit.ins > 0) {
      editor.Insert(edit.at, kNew + i++ % 32, edit.ins);
    } else {
      editor.Delete(edit.at, edit.del);
    }
  }
}

/// Each round begins with the content as it was.
template <typename Editor, Script (*kMake)(std::int64_t, std::int32_t)>
class Edits : public Contestant {
 public:
  explicit Edits(const Setting& setting) : setting_(setting), script_(kMake(setting.size, setting.count)) {}
  void Prepare() override {
    editor_.reset();
    editor_ = std::make_unique<Editor>(setting_);
  }
  void Run() override { Apply(script_, *editor_); }
  std::uint64_t Check() override { return editor_->Sum(); }

 private:
  const Setting setting_;
  const Script script_;
  std::unique_ptr<Editor> editor_;
};

/// The library's file behind a million edits. Rounds go on where the one before ended.
class Fragmented : public Contestant {
 public:
  explicit Fragmented(const Setting& setting)
      : setting_(setting),
        before_(AtRandom(setting.size - kPage, 1000000)),
        script_(AtRandom(setting.size, setting.count)),
        file_(setting) {
    Apply(before_, file_);
  }
  void Run() override {
    Apply(script_, file_);
    ++rounds_;
  }
  std::uint64_t Check() override {
    Rope rope(setting_);
    Apply(before_, rope);
    for (int i = 0; i < rounds_; ++i) Apply(script_, rope);
    Expect(file_.Sum() == rope.Sum(), "the content behind many edits");
    return 0;
  }

 private:
  const Setting setting_;
  const Script before_;
  const Script script_;
  VirtualFile file_;
  int rounds_ = 0;
};

/// A load and edits at random, as one round.
class LoadAndEdit : public Edits<VirtualFile, AtRandom> {
 public:
  using Edits::Edits;
  void Prepare() override {}
  void Run() override {
    Edits::Prepare();
    Edits::Run();
  }
};

}  // namespace

std::vector<ContestantEntry> EditContestants() {
  return {
      {"random/vfile", Make<Edits<VirtualFile, AtRandom>>},
      {"random/pages", Make<Edits<PageEdits, AtRandom>>},
      {"random/rope", Make<Edits<Rope, AtRandom>>},
      {"random/gap", Make<Edits<GapBuffer, AtRandom>>},
      {"random/string", Make<Edits<String, AtRandom>>},
      {"random/fragmented", Make<Fragmented>},
      {"random/load", Make<LoadAndEdit>},
      {"cursor/vfile", Make<Edits<VirtualFile, AtCursor>>},
      {"cursor/block", Make<Edits<OneBlock, AtCursor>>},
      {"cursor/gap", Make<Edits<GapBuffer, AtCursor>>},
      {"typing/vfile", Make<Edits<VirtualFile, AsTyped>>},
      {"typing/rope", Make<Edits<Rope, AsTyped>>},
      {"typing/gap", Make<Edits<GapBuffer, AsTyped>>},
      {"typing/string", Make<Edits<String, AsTyped>>},
  };
}
