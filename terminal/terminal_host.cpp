// SPDX-License-Identifier: MIT
// The terminal host: the Host interface for a terminal, its interface thread's loop and the
// one-line menu. Keys become the key presses the desktop reports (viewKeyDown), each going up
// at once (viewKeyUp). The held keys (viewKeyReleased) follow the terminal's releases where it
// reports them (the kitty keyboard protocol), else they are guessed from the times of the
// presses (GuessedReleases); clicks become clicks at the top left pixel of
// their cell; pasted text goes to the program's paste handler through the runtime's Paste
// action. A frame is drawn when the window in front changed its picture, at most at the
// window's refresh rate, and at least once a second a frame is composed and compared, which
// also catches what a program wrote straight into video memory. Depends on the public host
// seam, the picture library and the terminal host's own parts.
#include "terminal/terminal_host.hpp"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "rvtools/host.hpp"
#include "rvtools/picture.hpp"
#include "terminal/utf8.hpp"

namespace rvtools::terminal {
namespace {

using Clock = std::chrono::steady_clock;

// While the program runs, the loop looks this often whether it has ended.
constexpr int ProgramWatchMilliseconds = 250;
constexpr std::size_t ReadSize = 4096;
// The terminal's clipboard takes text up to this size (OSC 52); larger texts stay here only.
constexpr std::size_t LargestClipboardText = 65536;
constexpr char MenuChord[] = "\x1D";  // Ctrl+]

constexpr std::string_view MenuText =
    "Menu: c copy text \u00B7 s save picture \u00B7 q quit \u00B7 any other key goes back";
constexpr std::string_view HintText = "Ctrl+] menu";
constexpr std::string_view EndedText = "The program has ended: press any key to leave.";

// The menu items that the desktop's Edit menu carries for these actions.
t_MenuItem editItem(const char* title, Int tag, char key) {
  t_MenuItem item;
  item.MenuTitle = "Edit";
  item.ItemTitle = title;
  item.KeyChar = std::string(1, key);
  item.KeyAsc = key;
  item.KeyMods = static_cast<std::uint64_t>(CommandFlag);
  item.Tag = tag;
  return item;
}

std::string base64Of(std::string_view bytes) {
  constexpr char Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = (group << 8) | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      out += k <= count ? Digits[(group >> (18 - 6 * k)) & 0x3F] : '=';
    }
  }
  return out;
}

// A file name in the current folder after the window's title, numbered when that name is taken.
std::string freePictureFileName(const WindowView& view) {
  const std::string title = view.title();
  std::string name = fileNameFromTitle(title, view.number(), ".png");
  for (int number = 2; std::filesystem::exists(name) && number < 1000; ++number) {
    name = fileNameFromTitle(title + " " + std::to_string(number), view.number(), ".png");
  }
  return name;
}

}  // namespace

TerminalHost::TerminalHost(TerminalDevice& device, ColourDepth depth)
    : device_(device), work_([this] { wake(); }), renderer_(depth) {
  if (pipe2(wakePipe_, O_CLOEXEC | O_NONBLOCK) != 0) wakePipe_[0] = wakePipe_[1] = -1;
}

// ---------------------------------------------------------------------------------------------
// The Host interface

bool TerminalHost::isInterfaceThread() const {
  return work_.isInterfaceThread();
}

void TerminalHost::runOnInterfaceThread(const std::function<void()>& work) {
  work_.run(work);
}

// Called by the refresh for every window at its rate: a frame is asked for only when the window
// in front has a picture that the terminal does not show yet.
void TerminalHost::displayView(UInt8 window, bool deferred) {
  if (window >= 8 || window != shownWindow()) return;
  if (!deferred) {
    runOnInterfaceThread([this] { drawFrame(); });
    return;
  }
  if (shown_.isCurrent(WindowView(window))) return;
  requestFrame();
}

void TerminalHost::bringWindowToFront(UInt8 window) {
  InMemoryHost::bringWindowToFront(window);
  {
    std::lock_guard lock(orderMutex_);
    std::erase(frontToBack_, window);
    frontToBack_.push_back(window);
  }
  requestFrame();
}

void TerminalHost::setWindowVisible(UInt8 window, bool visible) {
  InMemoryHost::setWindowVisible(window, visible);
  {
    std::lock_guard lock(orderMutex_);
    const bool shown =
        std::find(frontToBack_.begin(), frontToBack_.end(), window) != frontToBack_.end();
    if (!visible) std::erase(frontToBack_, window);
    if (visible && !shown) frontToBack_.push_back(window);
  }
  requestFrame();
}

UInt8 TerminalHost::frontWindow() {
  std::lock_guard lock(orderMutex_);
  return frontToBack_.empty() ? NoWindow : frontToBack_.back();
}

// The click is silent; the beep is the terminal's bell.
bool TerminalHost::playSound(Sound sound) {
  if (sound == Sound::Beep) systemBeep();
  return true;
}

void TerminalHost::systemBeep() {
  device_.write("\a");
}

// The runtime starts the output once per host, from the thread that first sounds.
bool TerminalHost::startSoundOutput() {
  return tones_.start();
}

// The text is kept here, for the program's paste, and sent to the terminal's clipboard, for
// other programs (OSC 52; a terminal that does not take it ignores it).
void TerminalHost::setPasteboardText(const std::string& text) {
  Host::setPasteboardText(text);
  if (text.size() <= LargestClipboardText) device_.write("\x1B]52;c;" + base64Of(text) + "\a");
}

void TerminalHost::setPasteboardScreenText(UInt8 window, const std::string&) {
  setPasteboardText(unicodeScreenText(window));
}

// ---------------------------------------------------------------------------------------------
// The interface thread

void TerminalHost::run(std::function<void()> entry) {
  runLaunchSequence(std::move(entry));
  for (;;) {
    std::vector<TerminalInput> inputs;
    waitAndReadInput(inputs);
    for (const TerminalInput& input : inputs) handle(input);
    for (const Int key : guessedReleases_.takeReleased(Clock::now())) viewKeyReleased(key);
    work_.runHandedOver();
    noticeProgramEnd();
    if (frameWanted_.exchange(false)) drawFrame();
  }
}

void TerminalHost::waitAndReadInput(std::vector<TerminalInput>& inputs) {
  pollfd descriptors[3] = {{device_.inputDescriptor(), POLLIN, 0},
                           {wakePipe_[0], POLLIN, 0},
                           {device_.resizeDescriptor(), POLLIN, 0}};
  if (poll(descriptors, 3, pollTimeoutMilliseconds()) < 0) return;
  if (descriptors[0].revents & POLLIN) {
    char bytes[ReadSize];
    const ssize_t count = read(device_.inputDescriptor(), bytes, sizeof bytes);
    if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN)) leave(1);
    if (count > 0) {
      parser_.feed(std::string_view(bytes, static_cast<std::size_t>(count)), inputs);
      lastInput_ = Clock::now();
    }
  } else if (descriptors[0].revents & (POLLHUP | POLLERR | POLLNVAL)) {
    leave(1);  // the terminal is gone
  }
  if (const auto patience = parser_.patience();
      patience && Clock::now() >= lastInput_ + *patience) {
    parser_.timeOut(inputs);
  }
  if (descriptors[1].revents & POLLIN) {
    char bytes[64];
    while (read(wakePipe_[0], bytes, sizeof bytes) > 0) {
    }
  }
  if (descriptors[2].revents & POLLIN) {
    device_.drainResizes();
    renderer_.invalidate();
    frameWanted_ = true;
  }
}

int TerminalHost::pollTimeoutMilliseconds() const {
  const auto millisecondsUntil = [](Clock::time_point moment) {
    return static_cast<int>(std::max<std::int64_t>(
        0, std::chrono::ceil<std::chrono::milliseconds>(moment - Clock::now()).count()));
  };
  int timeout = programEnded_ ? -1 : ProgramWatchMilliseconds;
  if (const auto patience = parser_.patience()) timeout = millisecondsUntil(lastInput_ + *patience);
  if (const auto release = guessedReleases_.nextRelease()) {
    const int untilRelease = millisecondsUntil(*release);
    timeout = timeout < 0 ? untilRelease : std::min(timeout, untilRelease);
  }
  return timeout;
}

void TerminalHost::handle(const TerminalInput& input) {
  if (const auto* key = std::get_if<KeyStroke>(&input)) {
    handleKey(*key);
  } else if (const auto* release = std::get_if<KeyRelease>(&input)) {
    viewKeyReleased(release->KeyNumber);
  } else if (std::holds_alternative<KeyReleasesReported>(input)) {
    releasesReported_ = true;
  } else if (const auto* report = std::get_if<MouseReport>(&input)) {
    handleMouse(*report);
  } else if (const auto* paste = std::get_if<PastedText>(&input)) {
    handlePaste(*paste);
  }
}

void TerminalHost::handleKey(const KeyStroke& key) {
  if (menuOpen_) return handleMenuKey(key);
  if (programEnded_) leave(0);
  if (!message_.empty()) {
    message_.clear();
    frameWanted_ = true;
  }
  if (key.Characters == MenuChord) {
    menuOpen_ = true;
    frameWanted_ = true;
    return;
  }
  const UInt8 shown = shownWindow();
  const UInt8 window = shown < 8 ? shown : DefaultWindow.load();
  if (window >= 8) return;
  viewKeyDown(window, key.KeyNumber, key.Characters, key.Flags);
  viewKeyUp();
  viewFlagsChanged(0);
  if (!releasesReported_) guessedReleases_.press(key.KeyNumber, Clock::now());
}

void TerminalHost::handleMenuKey(const KeyStroke& key) {
  menuOpen_ = false;
  frameWanted_ = true;
  const char choice = key.Characters.size() == 1 ? key.Characters[0] : 0;
  switch (choice) {
    case 'c':
    case 'C':
      return copyText();
    case 's':
    case 'S':
      return savePicture();
    case 'q':
    case 'Q':
      leave(0);
    default:
      return;
  }
}

// A click is reported at the top left pixel of its cell, in window coordinates: from the lower
// left of the window's content, border included.
void TerminalHost::handleMouse(const MouseReport& report) {
  if (report.Button == 1 || menuOpen_) return;  // the middle button is not reported
  if (!report.Pressed) {
    viewMouseUp();
    return;
  }
  const WindowPlacement& placement = placement_;
  const int column = report.Column - 1, line = report.Line - 1;
  const bool onWindow = placement.Window < 8 && column >= 0 && line >= 0 &&
                        column < placement.Columns && line < placement.Lines;
  if (!onWindow) return;
  const WindowPoint point = WindowView(placement.Window)
                                .windowPointOf(static_cast<double>(column * placement.CellWidth),
                                               static_cast<double>(line * placement.CellHeight));
  const bool right = report.Button == 2;
  viewMouseDown(placement.Window, {right ? 2 : 1, report.Flags}, point.X, point.Y, right);
}

// As the desktop's Edit > Paste: the text goes onto the pasteboard, then the runtime's Paste
// action gives it to the program's paste handler. It came from the terminal's clipboard, so
// it is not sent back there.
void TerminalHost::handlePaste(const PastedText& paste) {
  Host::setPasteboardText(paste.Text);
  t_MenuEventHandler(editItem("Paste", MenuTag::Paste, 'v'));
}

// Once the program has ended, the terminal keeps its last picture until a key is pressed;
// without any window to look at it is given back at once.
void TerminalHost::noticeProgramEnd() {
  if (programEnded_ || programRunning()) return;
  programEnded_ = true;
  if (shownWindow() >= 8) leave(0);
  frameWanted_ = true;
}

// The terminal is given back before the termination sequence, which may take a while to finish
// files; the program thread is not waited for.
void TerminalHost::leave(int status) {
  device_.giveBack();
  runTerminationSequence();
  std::fflush(nullptr);
  std::quick_exit(status);
}

// ---------------------------------------------------------------------------------------------
// The menu's actions

void TerminalHost::copyText() {
  t_MenuEventHandler(editItem("Copy Text", MenuTag::CopyText, 'c'));
  message_ = "Copied the text of the screen.";
}

void TerminalHost::savePicture() {
  const UInt8 window = shownWindow();
  if (window >= 8) {
    message_ = "There is no picture to save.";
    return;
  }
  const std::string name = freePictureFileName(WindowView(window));
  message_ = t_SavePicture(window, name) ? "Saved the picture as " + name + "."
                                         : "Could not save the picture as " + name + ".";
}

// ---------------------------------------------------------------------------------------------
// Frames

UInt8 TerminalHost::shownWindow() {
  std::lock_guard lock(orderMutex_);
  const auto graphic = std::find_if(frontToBack_.rbegin(), frontToBack_.rend(),
                                    [](UInt8 window) { return window < 8; });
  return graphic == frontToBack_.rend() ? NoWindow : *graphic;
}

void TerminalHost::requestFrame() {
  if (!frameWanted_.exchange(true)) wake();
}

void TerminalHost::wake() {
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(wakePipe_[1], &byte, 1);
}

// The window in front at the top left; below it, or over its last line when there is no
// line to spare, the host's line. A window without text memory leaves that line free.
void TerminalHost::drawFrame() {
  const TerminalSize size = device_.size();
  CellGrid grid(size.Columns, size.Lines);
  const UInt8 window = shownWindow();
  const WindowView view(window);
  const std::uint64_t version = view.pictureVersion();
  WindowPlacement placement =
      drawWindow(view, grid, view.hasText() ? size.Lines : size.Lines - 1, picture_);
  shown_.noteShown(view, version);
  const bool spareLine = placement.Window < 8 && placement.Lines < size.Lines;
  std::string text = hostLineText(placement, size);
  if (text.empty() && spareLine) {
    const std::string title = view.title();
    const int gap = size.Columns - static_cast<int>(charactersOf(title).size() + HintText.size());
    text = gap >= 2
               ? title + std::string(static_cast<std::size_t>(gap), ' ') + std::string(HintText)
               : std::string(HintText);
  }
  if (!text.empty()) {
    const int line = spareLine ? placement.Lines : size.Lines - 1;
    grid.write(0, line, std::u32string(static_cast<std::size_t>(size.Columns), U' '), DefaultColour,
               DefaultColour);
    grid.write(0, line, charactersOf(text), DefaultColour, DefaultColour);
    placement.Lines = std::min(placement.Lines, line);
  }
  placement_ = placement;
  device_.write(renderer_.render(grid));
}

// What the host has to say, most urgent first; nothing when all is well.
std::string TerminalHost::hostLineText(const WindowPlacement& placement, TerminalSize size) {
  if (menuOpen_) return std::string(MenuText);
  if (!message_.empty()) return message_;
  if (programEnded_) return std::string(EndedText);
  if (placement.Window < 8 && !placement.fitsWhole()) {
    return "Terminal " + std::to_string(size.Columns) + " x " + std::to_string(size.Lines) +
           ", window " + std::to_string(placement.FullColumns) + " x " +
           std::to_string(placement.FullLines) + ": showing what fits.";
  }
  return {};
}

}  // namespace rvtools::terminal

// ---------------------------------------------------------------------------------------------
// The public entry

namespace rvtools {
namespace {

// The path after "--log" or in "--log=<path>"; empty for none.
std::string logPathOf(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--log" && i + 1 < argc) return argv[i + 1];
    if (argument.starts_with("--log=")) return std::string(argument.substr(6));
  }
  return {};
}

terminal::ColourDepth colourDepthOfTerminal() {
  const char* colours = std::getenv("COLORTERM");
  const std::string_view value = colours != nullptr ? colours : "";
  return value == "truecolor" || value == "24bit" ? terminal::ColourDepth::TrueColour
                                                  : terminal::ColourDepth::Indexed256;
}

}  // namespace

int runTerminal(int argc, char** argv, std::function<void()> entry) {
  const std::string logPath = logPathOf(argc, argv);
  std::FILE* log = logPath.empty() ? nullptr : std::fopen(logPath.c_str(), "a");
  if (!logPath.empty() && log == nullptr) {
    std::fprintf(stderr, "Cannot write the log file %s.\n", logPath.c_str());
    return 1;
  }
  static auto* device = new terminal::TerminalDevice;
  if (!device->takeOver()) {
    std::fprintf(stderr, "The terminal host needs standard input and output on a terminal.\n");
    return 1;
  }
  // Standard output is the screen: the log, and whatever else the process writes to standard
  // output or standard error, goes to the log file or nowhere.
  const int target = log != nullptr ? fileno(log) : open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(target, STDOUT_FILENO);
  dup2(target, STDERR_FILENO);
  setLogSink([log](std::string_view text) {
    if (log == nullptr) return;
    std::fwrite(text.data(), 1, text.size(), log);
    std::fflush(log);
  });
  static auto* host = new terminal::TerminalHost(*device, colourDepthOfTerminal());
  setHost(*host);
  host->run(std::move(entry));
}

}  // namespace rvtools
