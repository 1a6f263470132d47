// SPDX-License-Identifier: MIT
// Random numbers and text utilities: the mixed random source of t_Random and the seeded one of
// t_Randomize, the conversion of typed input to an integer, searching and cutting texts by
// character position, real numbers with a decimal comma, hexadecimal figures and the Unicode
// scalars of UTF-8 text.
#include "runtime/utilities.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

// ---------------------------------------------------------------------------------------------
// Random numbers

constexpr int MaxDrawsPerByte = 100;

// The clock in nanoseconds since 2001, truncated toward zero; 0 when it does not fit an Int.
Int clockNanoseconds() {
  const double nanoseconds = host().absoluteTime() * 1e9;
  constexpr double Limit = 9223372036854775808.0;  // 2^63
  if (!(nanoseconds > -Limit && nanoseconds < Limit)) return 0;
  return static_cast<Int>(nanoseconds);
}

// The product of a random word and the clock, both cut to 16 bits. A pair with a zero factor
// would give a zero byte, so it is drawn again, though never more than MaxDrawsPerByte times.
std::uint64_t mixedProduct() {
  for (int draw = 1;; ++draw) {
    const std::uint64_t a = host().randomWord() & 0xFFFF;
    const std::uint64_t b = static_cast<std::uint64_t>(clockNanoseconds()) & 0xFFFF;
    if ((a != 0 && b != 0) || draw == MaxDrawsPerByte) return a * b;
  }
}

// Seven bytes and seven bits of mixed products: a non-negative 63-bit value.
Int randomValue() {
  std::uint64_t value = 0;
  for (int byte = 0; byte < 7; ++byte) value = (value << 8) | ((mixedProduct() >> 16) & 0xFF);
  value = (value << 7) | ((mixedProduct() >> 16) & 0x7F);
  return static_cast<Int>(value);
}

// The generator of t_Randomize, splitmix64: a 64-bit counter stepped by the golden ratio and
// mixed, well known and small enough to give the same numbers on every machine. Until a seed
// is given it draws nothing. Threads may draw at the same time, so it keeps its state locked.
class SeededSource {
 public:
  void seed(std::uint64_t seed) {
    std::lock_guard lock(mutex_);
    state_ = seed;
    seeded_ = true;
  }
  void forget() {
    std::lock_guard lock(mutex_);
    seeded_ = false;
  }
  // The next non-negative 63-bit value; nothing before a seed.
  std::optional<Int> next() {
    std::lock_guard lock(mutex_);
    if (!seeded_) return std::nullopt;
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return static_cast<Int>((z ^ (z >> 31)) >> 1);
  }

 private:
  std::mutex mutex_;
  std::uint64_t state_ = 0;
  bool seeded_ = false;
};

SeededSource& seededSource() {
  static auto* source = new SeededSource;
  return *source;
}

// ---------------------------------------------------------------------------------------------
// UTF-8

constexpr char32_t ReplacementCharacter = 0xFFFD;

// The length of the well-formed sequences that start with `lead` (0 for a byte that starts
// none) and the range of their second byte, which rules out overlong forms, surrogates and
// values beyond U+10FFFF.
struct SequenceShape {
  std::size_t length = 0;
  unsigned char lowSecond = 0x80, highSecond = 0xBF;
};

SequenceShape shapeOf(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return {2};
  if (lead == 0xE0) return {3, 0xA0};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3};
  if (lead == 0xF0) return {4, 0x90};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  if (lead >= 0xF1 && lead <= 0xF3) return {4};
  return {};
}

// The bytes a character takes at text[at]: an invalid byte counts as one character.
std::size_t characterLength(std::string_view text, std::size_t at) {
  const Utf8Sequence sequence = decodeUtf8(text.substr(at));
  return sequence.Status == Utf8Status::Scalar ? sequence.Length : 1;
}

// Byte offset of the character with the given 0-based index; the text's size when the text
// has no more characters. An invalid byte counts as one character.
std::size_t byteOffsetOfCharacter(std::string_view text, Int index) {
  std::size_t at = 0;
  for (Int skipped = 0; skipped < index && at < text.size(); ++skipped) {
    at += characterLength(text, at);
  }
  return at;
}

// Up to `count` characters of the text from the 0-based character index `first`, with the
// text's own bytes.
std::string_view characters(std::string_view text, Int first, Int count) {
  const std::size_t begin = byteOffsetOfCharacter(text, first);
  const std::string_view rest = text.substr(begin);
  return rest.substr(0, byteOffsetOfCharacter(rest, count));
}

// ---------------------------------------------------------------------------------------------
// Real numbers

// The decimal exponent of the shortest scientific form, such as 16 in "1e+16".
int decimalExponent(std::string_view scientific) {
  const std::size_t e = scientific.find('e');
  int exponent = 0;
  std::from_chars(scientific.data() + e + 1 + (scientific[e + 1] == '+'),
                  scientific.data() + scientific.size(), exponent);
  return exponent;
}

// The shortest text that reads back as the value: exponent form (1e-05, 1.5e+20) for decimal
// exponents below -4 or from 16 up, plain decimals in between.
std::string shortestText(double value) {
  char buffer[64];
  if (!std::isfinite(value)) {
    if (std::isnan(value)) return "nan";
    return value < 0 ? "-inf" : "inf";
  }
  const auto scientific =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
  const std::string_view scientificText(buffer, scientific.ptr - buffer);
  const int exponent = decimalExponent(scientificText);
  if (exponent < -4 || exponent >= 16) return std::string(scientificText);
  const auto plain = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
  return std::string(buffer, plain.ptr);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Random numbers

Int t_Random(Int n) {
  if (n == 0) return LastRandom;
  const std::optional<Int> seeded = seededSource().next();
  const Int value = seeded ? *seeded : randomValue();
  const Int divisor = static_cast<Int>(static_cast<std::uint64_t>(n) + 1);
  // A divisor of 0 (n = -1) leaves the value whole, as a division that yields 0 would.
  const Int result = divisor == 0 ? value : value % divisor;
  LastRandom = result;
  return result;
}

void t_Randomize(Int seed) {
  seededSource().seed(static_cast<std::uint64_t>(seed));
}

void useMixedRandomSource() {
  seededSource().forget();
}

// ---------------------------------------------------------------------------------------------
// Text conversion

std::vector<UInt8> TextToBytes(std::string_view text) {
  return std::vector<UInt8>(text.begin(), text.end());
}

Int BytesToInteger(const std::vector<UInt8>& bytes) {
  auto next = bytes.begin();
  const auto skipBlanks = [&] {
    while (next != bytes.end() && *next == ' ') ++next;
  };
  skipBlanks();
  const bool negative = next != bytes.end() && *next == '-';
  if (negative) {
    ++next;
    skipBlanks();
  }
  std::uint64_t magnitude = 0;
  for (; next != bytes.end() && *next >= '0' && *next <= '9'; ++next) {
    magnitude = magnitude * 10 + (*next - '0');
  }
  return static_cast<Int>(negative ? 0 - magnitude : magnitude);
}

Int TextPosition(std::string_view text, std::string_view pattern, Int start) {
  const std::vector<char32_t> needle = scalarsOf(pattern);
  if (needle.empty()) return 0;
  const std::string_view part =
      start < 2 ? text : text.substr(byteOffsetOfCharacter(text, start - 1));
  const std::vector<char32_t> haystack = scalarsOf(part);
  const auto match = std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end());
  if (match == haystack.end()) return 0;
  return static_cast<Int>(match - haystack.begin()) + start;
}

std::string TextMiddle(std::string_view text, Int start, Int length) {
  // A start below 1 counts as 1; a start beyond the end and a length past it are cut off at
  // the end of the text.
  if (length < 1) return {};
  return std::string(characters(text, std::max<Int>(start, 1) - 1, length));
}

std::string RealToText(double value) {
  std::string text = shortestText(value);
  std::replace(text.begin(), text.end(), '.', ',');
  if (text.size() >= 3 && text.ends_with(",0")) text.resize(text.size() - 2);
  return text;
}

// ---------------------------------------------------------------------------------------------
// Hexadecimal and "K" figures

std::string ByteToHex(UInt8 value) {
  // The digits of HexDigits, held here too so that addresses can be written before
  // initrvtools has built the tables.
  static constexpr char Digits[] = "0123456789ABCDEF";
  return {Digits[value >> 4], Digits[value & 0xF]};
}

std::string HexText(Int value) {
  const auto low = static_cast<std::uint32_t>(value);
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += ByteToHex(static_cast<UInt8>(low >> shift));
  return text;
}

std::string kilobyteText(Int bytes) {
  char buffer[64];
  const double kilobytes = static_cast<double>(bytes) * 0.0009765625;
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, kilobytes, std::chars_format::fixed, 2);
  std::string text(buffer, end.ptr);
  std::replace(text.begin(), text.end(), '.', ',');
  return text;
}

// ---------------------------------------------------------------------------------------------
// Unicode scalars

Utf8Sequence decodeUtf8(std::string_view bytes) {
  if (bytes.empty()) return {};
  const auto lead = static_cast<unsigned char>(bytes[0]);
  if (lead < 0x80) return {Utf8Status::Scalar, lead, 1};
  const SequenceShape shape = shapeOf(lead);
  if (shape.length == 0) return {Utf8Status::Invalid, 0, 1};
  char32_t scalar = lead & (0x7F >> shape.length);
  for (std::size_t i = 1; i < shape.length; ++i) {
    if (i == bytes.size()) return {};
    const auto byte = static_cast<unsigned char>(bytes[i]);
    const unsigned char low = i == 1 ? shape.lowSecond : 0x80;
    const unsigned char high = i == 1 ? shape.highSecond : 0xBF;
    if (byte < low || byte > high) return {Utf8Status::Invalid, 0, 1};
    scalar = (scalar << 6) | (byte & 0x3F);
  }
  return {Utf8Status::Scalar, scalar, shape.length};
}

std::vector<char32_t> scalarsOf(std::string_view text) {
  std::vector<char32_t> scalars;
  scalars.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Sequence sequence = decodeUtf8(text.substr(at));
    const bool valid = sequence.Status == Utf8Status::Scalar;
    scalars.push_back(valid ? sequence.Scalar : ReplacementCharacter);
    at += valid ? sequence.Length : 1;
  }
  return scalars;
}

Int characterCount(std::string_view text) {
  Int count = 0;
  for (std::size_t at = 0; at < text.size(); ++count) {
    at += characterLength(text, at);
  }
  return count;
}

std::string utf8Of(char32_t scalar) {
  if (scalar > 0x10FFFF || (scalar >= 0xD800 && scalar <= 0xDFFF)) scalar = ReplacementCharacter;
  const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
  if (scalar < 0x80) return {byte(scalar)};
  if (scalar < 0x800) return {byte(0xC0 | scalar >> 6), byte(0x80 | (scalar & 0x3F))};
  if (scalar < 0x10000) {
    return {byte(0xE0 | scalar >> 12), byte(0x80 | (scalar >> 6 & 0x3F)),
            byte(0x80 | (scalar & 0x3F))};
  }
  return {byte(0xF0 | scalar >> 18), byte(0x80 | (scalar >> 12 & 0x3F)),
          byte(0x80 | (scalar >> 6 & 0x3F)), byte(0x80 | (scalar & 0x3F))};
}

}  // namespace rvtools
