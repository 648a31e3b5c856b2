// Replacing in 1 MB of text, with 1,000 and 40,000 places to replace, in Latin-1 text and in text
// with characters beyond it: a text, beside QString::replace of Qt and absl::StrReplaceAll where
// they were installed when this was built, and the characters of a set, beside loops as one writes
// them by hand. All ways must give the same text before anything is timed. Times in microseconds;
// "qt/ours" is how many times longer Qt takes.

#include <memory>

#include <QXFoundation/QXFoundation.h>

#include "bench/ways.h"

#ifdef QX_BENCH_QT
#include <QString>
#endif
#ifdef QX_BENCH_ABSL
#include <absl/strings/str_replace.h>
#endif

namespace bench {
namespace {

constexpr std::size_t kLength = 1 << 20;
constexpr double kMicroseconds = 1000;

// Words of common letters with the mark strewn in; without it, near misses stand there.
std::u16string sample(std::size_t places, const std::u16string& mark, bool wide) {
  std::u16string text;
  text.reserve(kLength + mark.size());
  const std::size_t every = kLength / places;
  std::uint32_t state = 1;
  while (text.size() < kLength) {
    state = state * 1664525 + 1013904223;
    if (text.size() % every < 8 && text.size() / every < places &&
        (text.size() < 8 ||
         text.find(mark, text.size() - text.size() % every) == std::u16string::npos)) {
      text += mark;
      continue;
    }
    text += static_cast<char16_t>(u"etaoin shrdlucmf"[state >> 28]);
    if (wide && state % 64 == 0) text += u'\u2603';
  }
  return text;
}

std::string narrowed(const std::u16string& text) { return {text.begin(), text.end()}; }

const std::u16string kMark = u"the mark";
const std::u16string kWith = u"a replacement";

void replaceText(benchmark::State& state) {
  const bool wide = state.range(1) != 0;
  const std::u16string units = sample(static_cast<std::size_t>(state.range(0)), kMark, wide);
  const auto text = qx::String::fromUtf16(units);
  const auto mark = qx::String::fromUtf16(kMark);
  const auto with = qx::String::fromUtf16(kWith);
  const auto expected = stringByReplacingAllOccurrencesOfString(text, mark, with);
  std::vector<Way> ways;
  ways.push_back({"ours", [&] {
                    benchmark::DoNotOptimize(
                        stringByReplacingAllOccurrencesOfString(text, mark, with));
                  }});
#ifdef QX_BENCH_QT
  const QString qtText = QString::fromUtf16(units.data(), static_cast<int>(units.size()));
  const QString qtMark = QString::fromUtf16(kMark.data(), static_cast<int>(kMark.size()));
  const QString qtWith = QString::fromUtf16(kWith.data(), static_cast<int>(kWith.size()));
  const auto qtReplaced = [&] {
    QString s = qtText;
    s.replace(qtMark, qtWith);
    return s;
  };
  require(qtReplaced().toStdU16String() == expected->utf16(), "Qt");
  ways.push_back({"qt", [&] { benchmark::DoNotOptimize(qtReplaced()); }});
#endif
#ifdef QX_BENCH_ABSL
  const std::string bytes = text->utf8();
  const std::string markBytes = mark->utf8();
  const std::string withBytes = with->utf8();
  const auto abslReplaced = [&] { return absl::StrReplaceAll(bytes, {{markBytes, withBytes}}); };
  require(abslReplaced() == expected->utf8(), "absl");
  ways.push_back({"absl", [&] { benchmark::DoNotOptimize(abslReplaced()); }});
#endif
  compareWays(state, ways, kMicroseconds);
}

template <class Text, class IsMember>
Text byHand(const Text& text, const Text& with, IsMember isMember) {
  Text out;
  out.reserve(text.size());
  for (const auto c : text) {
    if (isMember(c)) {
      out += with;
    } else {
      out.push_back(c);
    }
  }
  return out;
}

void replaceMembers(benchmark::State& state) {
  const bool wide = state.range(1) != 0;
  const std::u16string units = sample(static_cast<std::size_t>(state.range(0)), u"#", wide);
  const auto text = qx::String::fromUtf16(units);
  const auto set = qx::CharacterSet::characterSetWithCharactersInString("#;\n");
  const auto expected = stringByReplacingCharactersInSet(text, set, "--");
  const auto inPlace = qx::MutableString::init();
  std::vector<Way> ways;
  ways.push_back({"ours", [&] {
                    benchmark::DoNotOptimize(stringByReplacingCharactersInSet(text, set, "--"));
                  }});
  bool member[256] = {};
  for (const char c : {'#', ';', '\n'}) member[static_cast<unsigned char>(c)] = true;
  const std::string bytes = narrowed(units);
  const auto wideByHand = [&] {
    return byHand(units, std::u16string(u"--"), [&](char16_t c) { return c < 256 && member[c]; });
  };
  const auto narrowByHand = [&] {
    return byHand(bytes, std::string("--"),
                  [&](char c) { return member[static_cast<unsigned char>(c)]; });
  };
  require(wideByHand() == expected->utf16(), "the loop");
  if (wide) {
    ways.push_back({"loop", [&] { benchmark::DoNotOptimize(wideByHand()); }});
  } else {
    ways.push_back({"loop", [&] { benchmark::DoNotOptimize(narrowByHand()); }});
  }
  compareWays(state, ways, kMicroseconds);
}

void places(benchmark::internal::Benchmark* b) {
  b->ArgNames({"places", "wide"})->Iterations(1);
  for (const int wide : {0, 1}) b->Args({1000, wide})->Args({40000, wide});
}
BENCHMARK(replaceText)->Apply(places);
BENCHMARK(replaceMembers)->Apply(places);

}  // namespace
}  // namespace bench
