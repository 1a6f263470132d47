// Internal: the runtime's log, one writer to standard output.
//
// Messages are composed of fixed texts and decimal numbers; each write is flushed at once,
// because some lines are written in pieces. Tests capture the log through `setLogSink`.
#pragma once

#include <concepts>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

#include "rvtools/types.hpp"

namespace rvtools {

// Writes text to the log without adding a line end.
void logWrite(std::string_view text);

// Sends the log to `sink` instead of standard output; an empty sink restores standard output.
void setLogSink(std::function<void(std::string_view)> sink);

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

// Writes one line made of the parts: texts as they are, numbers in decimal.
template <typename... Parts>
void logLine(const Parts&... parts) {
  std::string line;
  (detail::appendLogPart(line, parts), ...);
  line += '\n';
  logWrite(line);
}

}  // namespace rvtools
