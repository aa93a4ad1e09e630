// Edits of three kinds, by all that can be edited.

#include <memory>
#include <optional>
#include <random>
#include <vector>

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
  script.reserve(static_cast<std::size_t>(count));
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
  static constexpr std::string_view kNew = "the quick brown fox jumps over the lazy dog, 0123456789";
  std::size_t i = 0;
  for (const Edit& edit : script) {
    const auto at = static_cast<std::size_t>(edit.at);
    if (edit.ins > 0) {
      editor.Insert(at, kNew.substr(i++ % 32, static_cast<std::size_t>(edit.ins)));
    } else {
      editor.Delete(at, static_cast<std::size_t>(edit.del));
    }
  }
}

using MakeScript = Script(std::int64_t size, std::int32_t count);

/// Each round begins with the content as it was. With `kWithLoad` to load that is part of the round.
template <typename Editor, MakeScript* kScript, bool kWithLoad = false>
Contestant Edits(const Setting& setting) {
  auto editor = std::make_shared<std::optional<Editor>>();
  const auto load = [=] {
    editor->reset();
    editor->emplace(setting);
  };
  const auto run = [=, script = kScript(setting.size, setting.count)] {
    if (kWithLoad) load();
    Apply(script, **editor);
  };
  return {run, [=] { return (*editor)->Sum(); }, kWithLoad ? [] {} : std::function<void()>(load)};
}

/// The library's file behind a million edits. Rounds go on where the one before ended.
Contestant Fragmented(const Setting& setting) {
  const auto file = std::make_shared<VirtualFile>(setting);
  const auto rounds = std::make_shared<int>(0);
  const Script before = AtRandom(setting.size - std::int64_t{kPage}, 1000000);
  const Script script = AtRandom(setting.size, setting.count);
  Apply(before, *file);
  const auto run = [=] {
    Apply(script, *file);
    ++*rounds;
  };
  const auto check = [=] {
    Rope rope(setting);
    Apply(before, rope);
    for (int i = 0; i < *rounds; ++i) Apply(script, rope);
    Expect(file->Sum() == rope.Sum(), "the content behind many edits");
    return 0;
  };
  return {run, check};
}

}  // namespace

std::vector<ContestantEntry> EditContestants() {
  return {
      {"random/vfile", Edits<VirtualFile, AtRandom>},
      {"random/pages", Edits<PageEdits, AtRandom>},
      {"random/rope", Edits<Rope, AtRandom>},
      {"random/gap buffer", Edits<GapBuffer, AtRandom>},
      {"random/string", Edits<String, AtRandom>},
      {"random/fragmented", Fragmented},
      {"random/load", Edits<VirtualFile, AtRandom, true>},
      {"cursor/vfile", Edits<VirtualFile, AtCursor>},
      {"cursor/memmove", Edits<OneBlock, AtCursor>},
      {"cursor/gap buffer", Edits<GapBuffer, AtCursor>},
      {"typing/vfile", Edits<VirtualFile, AsTyped>},
      {"typing/rope", Edits<Rope, AsTyped>},
      {"typing/gap buffer", Edits<GapBuffer, AsTyped>},
      {"typing/string", Edits<String, AsTyped>},
  };
}
