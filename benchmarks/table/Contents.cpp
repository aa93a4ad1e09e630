#include "Contents.h"

#include <filesystem>
#include <iterator>
#include <random>

#include "Converters.h"
#include "HostFile.h"
#include "Measuring.h"

namespace {

constexpr const char* kWords[] = {
    "the",  "of",    "and",  "to",     "in",    "is",   "you",   "that",   "it",   "he",    "was",   "for",
    "on",   "are",   "as",   "with",   "his",   "they", "I",     "at",     "be",   "this",  "have",  "from",
    "or",   "one",   "had",  "by",     "word",  "but",  "not",   "what",   "all",  "were",  "we",    "when",
    "your", "can",   "said", "there",  "use",   "an",   "each",  "which",  "she",  "do",    "how",   "their",
    "if",   "will",  "up",   "other",  "about", "out",  "many",  "then",   "them", "these", "so",    "some",
    "her",  "would", "make", "like",   "him",   "into", "time",  "has",    "look", "two",   "more",  "write",
    "go",   "see",   "size", "number", "no",    "way",  "could", "people", "My",   "than",  "first", "water",
    "been", "call",  "who",  "oil",    "its",   "now",  "find",  "long",   "down", "day",   "did",   "get",
};
constexpr const char* kForeign[] = {"größe", "façade", "λόγος", "слово", "日本語", "文字", "한국어", "𝄞𝄢", "😀"};

bool IsMixed(ContentKind kind) {
  return kind == ContentKind::kUtf8 || kind == ContentKind::kUtf16 || kind == ContentKind::kUtf16Be;
}

std::string_view MarkOf(ContentKind kind) {
  switch (kind) {
    case ContentKind::kAsciiUtf8:
    case ContentKind::kUtf8:
      return "\xEF\xBB\xBF";
    case ContentKind::kUnits:
    case ContentKind::kUtf16:
      return "\xFF\xFE";
    case ContentKind::kUtf16Be:
      return "\xFE\xFF";
    default:
      return "";
  }
}

/// Lines of 80 bytes, or longer ones where foreign words are among them.
std::string SomeLines(std::size_t size, bool mixed, std::mt19937& random) {
  std::string lines;
  for (std::size_t line = 0; lines.size() < size; line = lines.size()) {
    while (lines.size() - line < 79) {
      const bool foreign = mixed && random() % 12 == 0;
      lines += foreign ? kForeign[random() % std::size(kForeign)] : kWords[random() % std::size(kWords)];
      lines += ' ';
    }
    if (!mixed) lines.resize(line + 79);
    lines += '\n';
  }
  return lines;
}

std::string InForm(const std::string& text, ContentKind kind) {
  if (kind != ContentKind::kUnits && kind != ContentKind::kUtf16 && kind != ContentKind::kUtf16Be) return text;
  const Converted units = ConvertByIconv(text, ContentKind::kUtf8, Direction::kToUnits);
  if (kind != ContentKind::kUtf16Be) return std::string(units.View());
  return std::string(ConvertByIconv(units.View(), kind, Direction::kFromUnits).View());
}

/// Puts the marks into a piece of the text.
void Mark(std::string& piece) {
  for (std::size_t at = 0; at < piece.size(); at += kMarkDistance) {
    piece.replace(at + at / 4096 * 977 % 4000, sizeof kMark - 1, kMark);
  }
}

}  // namespace

std::string ContentFile(const std::string& directory, ContentKind kind, std::int64_t size) {
  // Whole lines, and whole distances of marks.
  constexpr std::size_t kPiece = 4 * 80 * kMarkDistance;
  const std::string name =
      directory + "/content-" + std::to_string(static_cast<int>(kind)) + "-" + std::to_string(size);
  if (std::filesystem::exists(name)) return name;
  HostFile file = HostFile::Create(name);
  const std::string_view mark = MarkOf(kind);
  file.Write(mark.data(), mark.size());
  std::mt19937 random(5);
  for (std::size_t left = static_cast<std::size_t>(size) - mark.size(); left > 0;) {
    // The end, which may be cut anywhere, is ASCII.
    std::string bytes = InForm(SomeLines(kPiece, IsMixed(kind) && left > 3 * kPiece, random), kind);
    bytes.resize(std::min(bytes.size(), left));
    if (kind == ContentKind::kMarked) Mark(bytes);
    file.Write(bytes.data(), bytes.size());
    left -= bytes.size();
  }
  return name;
}
