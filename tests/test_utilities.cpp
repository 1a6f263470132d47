// Tests of the random numbers and text utilities: t_Random on a scripted random source and on
// the system's, typed input to integers, positions and middles of texts counted in characters,
// real numbers with a decimal comma, hexadecimal and "K" figures, and UTF-8 decoding.
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>

#include "common.hpp"
#include "runtime/utilities.hpp"

namespace rvtools::testing {
namespace {

// A random source and clock that give the same values every time: eight draws of
// 0x100 x 0xCA00 (1e9 ns), so seven bytes 0xCA and seven bits 0x4A. The first `ZeroWords`
// words are 0 in their low 16 bits.
struct ScriptedHost : HeadlessHost {
  int ZeroWords = 0;
  double Time = 1.0;
  int WordDraws = 0;

  std::uint32_t randomWord() override { return WordDraws++ < ZeroWords ? 0x10000 : 0x12340100; }
  double absoluteTime() override { return Time; }
};
constexpr Int ScriptedValue = 0x656565656565654A;

class RandomTest : public ::testing::Test {
 protected:
  // Never destroyed: a refresh thread of an earlier test may still ask the installed host.
  ScriptedHost& scripted = *[] {
    static auto* host = new ScriptedHost;
    return host;
  }();

  void SetUp() override {
    scripted.ZeroWords = scripted.WordDraws = 0;
    scripted.Time = 1.0;
    LastRandom = 0;
    setHost(scripted);
  }
  void TearDown() override { setHost(testHost()); }
};

TEST_F(RandomTest, MixesEightDrawsIntoOneRemainderRedrawingZeroFactors) {
  EXPECT_EQ(t_Random(0), 0);
  EXPECT_EQ(t_Random(-1), ScriptedValue);
  EXPECT_EQ(scripted.WordDraws, 8);
  EXPECT_EQ(t_Random(75), ScriptedValue % 76);
  EXPECT_EQ(t_Random(0), ScriptedValue % 76);
  EXPECT_EQ(t_Random(-5), 2);
  EXPECT_EQ(LastRandom, 2);
  EXPECT_EQ(t_Random(std::numeric_limits<Int>::max()), ScriptedValue);
  EXPECT_EQ(scripted.WordDraws, 32);

  // Zero factors are drawn again, at most a hundred times for each byte.
  scripted.WordDraws = 0;
  scripted.ZeroWords = 3;
  EXPECT_EQ(t_Random(-1), ScriptedValue);
  EXPECT_EQ(scripted.WordDraws, 11);
  scripted.WordDraws = 0;
  scripted.Time = std::nan("");  // a clock that fits no integer counts as 0
  EXPECT_EQ(t_Random(-1), 0);
  EXPECT_EQ(scripted.WordDraws, 800);
}

TEST_F(RandomTest, StaysInRangeOnTheSystemSource) {
  setHost(testHost());
  std::set<Int> coins, fours;
  for (int i = 0; i < 200; ++i) {
    coins.insert(t_Random(1));
    fours.insert(t_Random(-5));
  }
  EXPECT_EQ(coins, (std::set<Int>{0, 1}));
  EXPECT_TRUE(*fours.begin() >= 0 && *fours.rbegin() <= 3);
}

Int integerOf(std::string_view text) {
  return BytesToInteger(TextToBytes(text));
}

TEST(TextConversion, ReadsLeadingBlanksMinusAndDigitsWrappingAround) {
  EXPECT_EQ(TextToBytes("é!"), (std::vector<UInt8>{0xC3, 0xA9, '!'}));
  EXPECT_EQ(integerOf(""), 0);
  EXPECT_EQ(integerOf("-"), 0);
  EXPECT_EQ(integerOf("-  42x"), -42);
  EXPECT_EQ(integerOf(" - 7"), -7);
  EXPECT_EQ(integerOf("4 2"), 4);
  EXPECT_EQ(integerOf("12ab"), 12);
  EXPECT_EQ(integerOf("+5"), 0);
  EXPECT_EQ(integerOf("9223372036854775808"), std::numeric_limits<Int>::min());
  EXPECT_EQ(integerOf("18446744073709551623"), 7);
  EXPECT_EQ(integerOf("-18446744073709551617"), -1);
}

TEST(TextSearch, PositionsAndMiddlesCountCharacters) {
  EXPECT_EQ(TextPosition("abc", "c", 2), 3);
  EXPECT_EQ(TextPosition("abcabc", "a", 2), 4);
  EXPECT_EQ(TextPosition("abc", "c", 4), 0);
  EXPECT_EQ(TextPosition("abc", "", 1), 0);
  EXPECT_EQ(TextPosition("äö€x", "x", 1), 4);
  EXPECT_EQ(TextPosition("€a€a", "a", 3), 4);
  // A start below 1 searches the whole text but is still added.
  EXPECT_EQ(TextPosition("abc", "a", 0), 0);
  EXPECT_EQ(TextPosition("abc", "c", 0), 2);
  EXPECT_EQ(TextPosition("abc", "c", -5), -3);

  // A middle takes up to `length` characters.
  EXPECT_EQ(TextMiddle("Hello", 4, 10), "lo");
  EXPECT_EQ(TextMiddle("Hello", 0, 2), "He");
  EXPECT_EQ(TextMiddle("Hello", 6, 1), "");
  EXPECT_EQ(TextMiddle("Hello", -3, 10), "Hello");
  EXPECT_EQ(TextMiddle("Hello", 3, -1), "");
  EXPECT_EQ(TextMiddle("Hello", 3, std::numeric_limits<Int>::max()), "llo");
  EXPECT_EQ(TextMiddle("äö€x", 2, 2), "ö€");
  EXPECT_EQ(TextMiddle("a\377b", 2, 1), "\377");  // an invalid byte is one character
}

TEST(NumberFigures, RealsWithDecimalCommaHexadecimalAndKilobytes) {
  EXPECT_EQ(RealToText(3.0), "3");
  EXPECT_EQ(RealToText(2.5), "2,5");
  EXPECT_EQ(RealToText(1.0 / 3.0), "0,3333333333333333");
  EXPECT_EQ(RealToText(-2.5), "-2,5");
  EXPECT_EQ(RealToText(0.0001), "0,0001");
  EXPECT_EQ(RealToText(1e-05), "1e-05");
  EXPECT_EQ(RealToText(1e16), "1e+16");
  EXPECT_EQ(RealToText(1.5e20), "1,5e+20");
  EXPECT_EQ(RealToText(0.0), "0");
  EXPECT_EQ(RealToText(-0.0), "-0");
  EXPECT_EQ(RealToText(-std::nan("")), "nan");
  EXPECT_EQ(RealToText(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(RealToText(-std::numeric_limits<double>::infinity()), "-inf");
  EXPECT_EQ(ByteToHex(0x0F), "0F");
  EXPECT_EQ(HexText(0xFFFFFF), "00FFFFFF");
  EXPECT_EQ(HexText(0x123456789AB), "456789AB");
  EXPECT_EQ(HexText(-1), "FFFFFFFF");
  EXPECT_EQ(kilobyteText(3072000), "3000,00");
  EXPECT_EQ(kilobyteText(4000), "3,91");
}

TEST(UnicodeScalars, DecodeReplacesEachBadByteAndEncodeReplacesNonScalars) {
  EXPECT_EQ(scalarsOf("aé€😀"), (std::vector<char32_t>{U'a', 0xE9, 0x20AC, 0x1F600}));
  EXPECT_EQ(characterCount("aé€😀"), 4);
  EXPECT_EQ(scalarsOf("\xC0\xAF").size(), 2u);          // overlong
  EXPECT_EQ(scalarsOf("\xED\xA0\x80").size(), 3u);      // surrogate
  EXPECT_EQ(scalarsOf("\xF4\x90\x80\x80").size(), 4u);  // above U+10FFFF
  const std::string_view cut = std::string_view("😀").substr(0, 3);
  EXPECT_EQ(scalarsOf(cut), (std::vector<char32_t>{0xFFFD, 0xFFFD, 0xFFFD}));
  EXPECT_EQ(characterCount(cut), 3);

  EXPECT_EQ(utf8Of(0x1F600), "😀");
  EXPECT_EQ(utf8Of(0xE9), "é");
  EXPECT_EQ(utf8Of(0xD800), "\uFFFD");
}

}  // namespace
}  // namespace rvtools::testing
