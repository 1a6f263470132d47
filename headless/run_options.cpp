// SPDX-License-Identifier: MIT
// The command line of runHeadless: scripted keys, clicks and menu choices, the seed of the
// random numbers, and the files a program leaves: its recording, its sound and, when it has
// ended, its picture and screen. Keys without text are named in braces, as they are printed on
// the keys: {Left}, {Right}, {Up}, {Down}, {Home}, {End}, {PageUp}, {PageDown}, {Delete} (the
// forward delete), {Backspace}, {Return}, {Enter} (the keypad's), {Escape}, {Tab}, {F1}..{F12};
// a pause between keys is {wait <ms>}.
#include "headless/run_options.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "rvtools/input.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools::headless {
namespace {

std::optional<KeyStroke> namedKey(std::string_view name) {
  const std::pair<std::string_view, Int> keysWithoutText[] = {
      {"Left", Key::Left},     {"Right", Key::Right},       {"Up", Key::Up},
      {"Down", Key::Down},     {"Home", Key::Home},         {"End", Key::End},
      {"PageUp", Key::PageUp}, {"PageDown", Key::PageDown}, {"Delete", Key::ForwardDelete},
  };
  for (const auto& [keyName, number] : keysWithoutText) {
    if (keyName == name) return keyStrokeOfKeyWithoutText(number);
  }
  const std::pair<std::string_view, KeyStroke> keysWithText[] = {
      {"Backspace", {Key::Backspace, "\x7F", 0}},
      {"Return", {Key::Return, "\r", 0}},
      {"Enter", {Key::KeypadEnter, "\x03", NumericPadFlag}},
      {"Escape", {Key::Escape, "\x1B", 0}},
      {"Tab", {Key::Tab, "\t", 0}},
  };
  for (const auto& [keyName, stroke] : keysWithText) {
    if (keyName == name) return stroke;
  }
  if (name.size() >= 2 && name[0] == 'F') {
    int n = 0;
    const auto [end, problem] = std::from_chars(name.data() + 1, name.data() + name.size(), n);
    if (problem == std::errc() && end == name.data() + name.size()) {
      return keyStrokeOfKeyWithoutText(functionKeyNumber(n));
    }
  }
  return std::nullopt;
}

// The character of a backslash escape at text[0] (the backslash itself already read); the
// number of characters it took after the backslash.
std::optional<char32_t> escapedCharacter(std::string_view text, std::size_t& length) {
  length = 1;
  if (text.empty()) return std::nullopt;
  switch (text[0]) {
    case 'r':
      return U'\r';
    case 'n':
      return U'\n';
    case 't':
      return U'\t';
    case 'e':
      return 0x1B;
    case '\\':
    case '{':
      return static_cast<char32_t>(text[0]);
    case 'x': {
      unsigned value = 0;
      const auto [end, problem] = std::from_chars(
          text.data() + 1, text.data() + std::min<std::size_t>(text.size(), 3), value, 16);
      if (problem != std::errc() || end != text.data() + 3) return std::nullopt;
      length = 3;
      return value;
    }
    default:
      return std::nullopt;
  }
}

constexpr std::string_view WaitOpening = "{wait ";

// Where the next {wait <ms>} of `text` opens, from `from` on; npos when none follows. Escaped
// characters and the names of keys are passed over whole.
std::size_t nextWait(std::string_view text, std::size_t from) {
  for (std::size_t at = from; at < text.size();) {
    if (text.substr(at).starts_with(WaitOpening)) return at;
    if (text[at] == '\\') {
      at += 2;
    } else if (text[at] == '{') {
      const std::size_t close = text.find('}', at);
      if (close == std::string_view::npos) return std::string_view::npos;
      at = close + 1;
    } else {
      ++at;
    }
  }
  return std::string_view::npos;
}

// A whole number that takes all of `text`.
std::optional<Int> wholeNumber(std::string_view text) {
  Int number = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<Click> clickAt(std::string_view position) {
  const std::size_t comma = position.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  Click click;
  const char* end = position.data() + position.size();
  const auto x = std::from_chars(position.data(), position.data() + comma, click.X);
  const auto y = std::from_chars(position.data() + comma + 1, end, click.Y);
  if (x.ec != std::errc() || x.ptr != position.data() + comma || y.ec != std::errc() ||
      y.ptr != end) {
    return std::nullopt;
  }
  return click;
}

}  // namespace

std::vector<KeyStroke> keyStrokesOf(std::string_view text, std::string& error) {
  std::vector<KeyStroke> strokes;
  for (std::size_t at = 0; at < text.size() && error.empty();) {
    if (text[at] == '{') {
      const std::size_t close = text.find('}', at);
      const std::string_view name =
          text.substr(at + 1, close == std::string_view::npos ? 0 : close - at - 1);
      const std::optional<KeyStroke> key =
          close == std::string_view::npos ? std::nullopt : namedKey(name);
      if (!key) error = "no key named {" + std::string(name) + "}";
      if (key) strokes.push_back(*key);
      at = close == std::string_view::npos ? text.size() : close + 1;
      continue;
    }
    char32_t character = 0;
    if (text[at] == '\\') {
      std::size_t length = 0;
      const std::optional<char32_t> escaped = escapedCharacter(text.substr(at + 1), length);
      if (!escaped) {
        error = "unknown escape \\" + std::string(text.substr(at + 1, 1));
        break;
      }
      character = *escaped;
      at += 1 + length;
    } else {
      // A byte that starts no character is typed as U+FFFD, which no key types.
      const Utf8Sequence sequence = decodeUtf8(text.substr(at));
      const bool valid = sequence.Status == Utf8Status::Scalar;
      character = valid ? sequence.Scalar : 0xFFFD;
      at += valid ? sequence.Length : 1;
    }
    const std::optional<KeyStroke> stroke = keyStrokeOfCharacter(character);
    if (!stroke) {
      error = "no key types U+" + std::to_string(static_cast<unsigned>(character));
      break;
    }
    strokes.push_back(*stroke);
  }
  return strokes;
}

std::vector<KeyStep> keyStepsOf(std::string_view text, std::string& error) {
  std::vector<KeyStep> steps;
  for (std::size_t at = 0; error.empty();) {
    const std::size_t wait = nextWait(text, at);
    for (KeyStroke& stroke : keyStrokesOf(text.substr(at, wait - at), error)) {
      steps.emplace_back(std::move(stroke));
    }
    if (wait == std::string_view::npos || !error.empty()) break;
    const std::size_t close = text.find('}', wait);
    const std::size_t first = wait + WaitOpening.size();
    const std::optional<Int> milliseconds = close == std::string_view::npos
                                                ? std::nullopt
                                                : wholeNumber(text.substr(first, close - first));
    if (!milliseconds || *milliseconds < 0) {
      error = "{wait <ms>} takes a number of milliseconds";
      break;
    }
    steps.emplace_back(Pause{*milliseconds});
    at = close + 1;
  }
  return steps;
}

RunOptions parseRunOptions(int argc, char** argv) {
  RunOptions options;
  for (int i = 1; i < argc && options.Error.empty(); ++i) {
    const std::string_view option = argv[i];
    const bool known = option == "--keys" || option == "--click" || option == "--menu" ||
                       option == "--record" || option == "--picture" || option == "--screen" ||
                       option == "--sound" || option == "--seed";
    if (!known) continue;
    if (i + 1 >= argc) {
      options.Error = std::string(option) + " needs a value";
      break;
    }
    const std::string_view value = argv[++i];
    if (option == "--keys") {
      options.Inputs.emplace_back(keyStepsOf(value, options.Error));
    } else if (option == "--seed") {
      options.Seed = wholeNumber(value);
      if (!options.Seed) options.Error = "--seed takes a whole number";
    } else if (option == "--click") {
      const std::optional<Click> click = clickAt(value);
      if (!click) options.Error = "--click takes x,y";
      if (click) options.Inputs.emplace_back(*click);
    } else if (option == "--menu") {
      options.Inputs.emplace_back(MenuChoice{std::string(value)});
    } else if (option == "--record") {
      options.RecordPath = value;
    } else if (option == "--sound") {
      options.SoundPath = value;
    } else if (option == "--picture") {
      options.PicturePath = value;
    } else {
      options.ScreenPath = value;
    }
  }
  return options;
}

}  // namespace rvtools::headless
