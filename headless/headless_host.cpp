// SPDX-License-Identifier: MIT
// The headless host: eight off-screen views and records of every frame operation, for tests,
// benchmarks and programs without a display. It has no interface thread of its own; platform
// work runs on the calling thread, one piece at a time. Its frames, menus, text views,
// pasteboard and file panels live in memory.
#include "rvtools/headless.hpp"

#include "headless/sound_file.hpp"

namespace rvtools {

HeadlessHost::HeadlessHost(std::string bundlePath)
    : bundlePath_(bundlePath.empty() ? bundleAroundExecutable() : std::move(bundlePath)) {}

HeadlessHost::~HeadlessHost() = default;

// ---------------------------------------------------------------------------------------------
// What a caller can look at and set

std::vector<HeadlessHost::Menu> HeadlessHost::menus() const {
  return menuSet().menus();
}

void HeadlessHost::setMenus(std::vector<Menu> menus) {
  menuSet().setMenus(std::move(menus));
}

void HeadlessHost::setTextViewPresent(UInt8 window, bool present) {
  textViews().setPresent(window, present);
}

t_Image HeadlessHost::pasteboardImage() const {
  std::lock_guard lock(mutex_);
  return pasteboardImage_;
}

void HeadlessHost::setFilePanelAnswer(std::string path) {
  std::lock_guard lock(mutex_);
  filePanelAnswer_ = std::move(path);
}

FilePanelRequest HeadlessHost::lastFilePanel() const {
  std::lock_guard lock(mutex_);
  return lastFilePanel_;
}

HeadlessHost::WindowState HeadlessHost::windowState(UInt8 window) const {
  if (window > MainWindowNumber) return {};
  WindowState state;
  state.Title = frames().title(window);
  state.TitleVisible = frames().titleVisible(window);
  state.Frame = frames().frame(window);
  state.Border = frames().borderColor(window);
  std::lock_guard lock(mutex_);
  if (window < views_.size()) {
    state.HasView = views_[window].Present;
    state.Redraws = views_[window].Redraws;
    state.Image = views_[window].Image;
  }
  return state;
}

void HeadlessHost::setViewPresent(UInt8 window, bool present) {
  std::lock_guard lock(mutex_);
  if (window < views_.size()) views_[window].Present = present;
}

int HeadlessHost::beeps() const {
  std::lock_guard lock(mutex_);
  return beeps_;
}

int HeadlessHost::clicks() const {
  std::lock_guard lock(mutex_);
  return clicks_;
}

// ---------------------------------------------------------------------------------------------
// The interface thread and the views

bool HeadlessHost::isInterfaceThread() const {
  return work_.isInterfaceThread();
}

void HeadlessHost::runOnInterfaceThread(const std::function<void()>& work) {
  work_.run(work);
}

// The off-screen view redraws at once: it composes the window's picture into its buffer.
void HeadlessHost::displayView(UInt8 window, bool) {
  if (window >= views_.size()) return;
  const WindowView view(window);
  std::lock_guard lock(mutex_);
  View& shown = views_[window];
  if (!shown.Present) return;
  shown.Image.resize(static_cast<std::size_t>(view.width() * view.height() * 4));
  if (view.composePicture(shown.Image.data(), shown.Image.size(), PixelOrder::AlphaRedGreenBlue)) {
    ++shown.Redraws;
  }
}

// ---------------------------------------------------------------------------------------------
// Window lookup, resources, sounds, pasteboard and file panels

// A view taken away takes its window with it: neither has a handle then.
PlatformHandle HeadlessHost::windowHandle(UInt8 window) {
  if (window < views_.size() && viewHandle(window) == nullptr) return nullptr;
  return Host::windowHandle(window);
}

PlatformHandle HeadlessHost::viewHandle(UInt8 window) {
  std::lock_guard lock(mutex_);
  if (window >= views_.size() || !views_[window].Present) return nullptr;
  return Host::viewHandle(window);
}

std::string HeadlessHost::bundlePath() {
  return bundlePath_;
}

bool HeadlessHost::playSound(Sound sound) {
  std::lock_guard lock(mutex_);
  ++(sound == Sound::Click ? clicks_ : beeps_);
  return true;
}

void HeadlessHost::systemBeep() {
  std::lock_guard lock(mutex_);
  ++beeps_;
}

void HeadlessHost::setSoundFile(std::string path) {
  std::lock_guard lock(mutex_);
  soundPath_ = std::move(path);
}

// The audio output starts when a file was set and can be written.
bool HeadlessHost::startSoundOutput() {
  std::lock_guard lock(mutex_);
  if (soundPath_.empty() || soundFile_) return false;
  auto file = std::make_unique<headless::SoundFile>(soundPath_);
  if (!file->isOpen()) return false;
  soundFile_ = std::move(file);
  soundFile_->start();
  return true;
}

void HeadlessHost::finishSoundOutput() {
  std::lock_guard lock(mutex_);
  if (soundFile_) soundFile_->finish();
}

std::int64_t HeadlessHost::audibleSamplesWritten() const {
  std::lock_guard lock(mutex_);
  return soundFile_ ? soundFile_->audibleSamples() : 0;
}

void HeadlessHost::setPasteboardText(const std::string& text) {
  Host::setPasteboardText(text);
  std::lock_guard lock(mutex_);
  pasteboardImage_ = {};
}

void HeadlessHost::setPasteboardImage(const t_Image& image) {
  Host::setPasteboardText({});
  std::lock_guard lock(mutex_);
  pasteboardImage_ = image;
}

std::string HeadlessHost::runFilePanel(const FilePanelRequest& request) {
  std::lock_guard lock(mutex_);
  lastFilePanel_ = request;
  return filePanelAnswer_;
}

}  // namespace rvtools
