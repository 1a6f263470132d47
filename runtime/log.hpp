// SPDX-License-Identifier: MIT
// Internal: the runtime's log, one writer to standard output.
//
// Messages are composed of fixed texts and decimal numbers; each write is flushed at once,
// because some lines are written in pieces. Where the log goes (standard output, or a sink and
// a mirror that a host or a test installs) is set through rvtools/platform.hpp.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include "rvtools/types.hpp"

namespace rvtools {

// Writes text to the log without adding a line end.
void logWrite(std::string_view text);

namespace detail {
inline void appendLogPart(std::string& out, std::string_view text) {
  out += text;
}
inline void appendLogPart(std::string& out, const char* text) {
  out += text;
}
inline void appendLogPart(std::string& out, const std::string& text) {
  out += text;
}
template <std::integral Number>
requires(!std::same_as<Number, bool> &&
         !std::same_as<Number, char>) void appendLogPart(std::string& out, Number number) {
  out += std::to_string(number);
}
template <typename T>
void appendLogPart(std::string& out, const Relaxed<T>& value) {
  appendLogPart(out, value.load());
}
}  // namespace detail

// Writes the parts, texts as they are and numbers in decimal, without a line end: one piece of
// a line that is written in pieces.
template <typename... Parts>
void logPiece(const Parts&... parts) {
  std::string piece;
  (detail::appendLogPart(piece, parts), ...);
  logWrite(piece);
}

// Writes one line made of the parts: texts as they are, numbers in decimal.
template <typename... Parts>
void logLine(const Parts&... parts) {
  logPiece(parts..., "\n");
}

}  // namespace rvtools
