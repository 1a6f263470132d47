// SPDX-License-Identifier: MIT
// Pictures as PNG files (read back with libpng) and recordings as animated GIF files (read back
// with giflib): frames, delays, refusals, a full disk, and the demo's animation of the README.
#include <gif_lib.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <thread>

#include "common.hpp"
#include "rvtools/picture.hpp"

namespace rvtools::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

struct Animation {
  Int Width = 0;
  Int Height = 0;
  std::vector<std::vector<UInt8>> Pictures;  // after each frame, bytes A, R, G, B
  std::vector<int> Delays;                   // centiseconds
};

// Draws one decoded frame over the picture, leaving its transparent pixels as they were.
void drawFrame(const GifFileType& gif, int frame, std::vector<UInt8>& picture) {
  GraphicsControlBlock control{};
  DGifSavedExtensionToGCB(const_cast<GifFileType*>(&gif), frame, &control);
  const SavedImage& image = gif.SavedImages[frame];
  const GifImageDesc& place = image.ImageDesc;
  const ColorMapObject* table = place.ColorMap ? place.ColorMap : gif.SColorMap;
  for (int y = 0; y < place.Height; ++y) {
    for (int x = 0; x < place.Width; ++x) {
      const int index = image.RasterBits[y * place.Width + x];
      if (index == control.TransparentColor) continue;
      const GifColorType colour = table->Colors[index];
      const UInt8 argb[] = {255, colour.Red, colour.Green, colour.Blue};
      std::copy_n(argb, 4, &picture[4 * ((place.Top + y) * gif.SWidth + place.Left + x)]);
    }
  }
}

Animation decodedAnimation(const std::string& path) {
  Animation animation;
  int error = 0;
  GifFileType* gif = DGifOpenFileName(path.c_str(), &error);
  if (gif == nullptr) return animation;
  if (DGifSlurp(gif) == GIF_OK) {
    animation.Width = gif->SWidth;
    animation.Height = gif->SHeight;
    std::vector<UInt8> picture(4 * animation.Width * animation.Height);
    for (int frame = 0; frame < gif->ImageCount; ++frame) {
      drawFrame(*gif, frame, picture);
      GraphicsControlBlock control{};
      DGifSavedExtensionToGCB(gif, frame, &control);
      animation.Pictures.push_back(picture);
      animation.Delays.push_back(control.DelayTime);
    }
  }
  DGifCloseFile(gif, &error);
  return animation;
}

// The largest and the mean difference of red, green and blue between two pictures of one size.
std::pair<int, double> differences(const std::vector<UInt8>& a, const std::vector<UInt8>& b) {
  int largest = a.size() == b.size() ? 0 : 256;
  double sum = 0;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    largest = std::max(largest, std::abs(a[i] - b[i]));
    sum += std::abs(a[i] - b[i]);
  }
  return {largest, sum / static_cast<double>(a.size() / 4 * 3)};
}

class RecordTest : public RuntimeTest {
 protected:
  void TearDown() override {
    for (UInt8 window = 0; window < 8; ++window) {
      if (t_IsRecording(window)) t_RecordStop(window);
    }
    RuntimeTest::TearDown();
  }
  std::string path(const std::string& name) const { return folder_.path(name); }

  // Shows window `window`'s picture as the refresh does and, when it changed, keeps it as the
  // next frame expected.
  void refresh(UInt8 window, std::vector<std::vector<UInt8>>& expected) {
    t_WindowUpdate(window, true);
    std::vector<UInt8> picture = t_WindowImage(window)->Pixels;
    if (expected.empty() || picture != expected.back()) expected.push_back(std::move(picture));
  }

  TestFolder folder_{"rvtools-recordings-"};
};

// Six windows, one per depth, record at once; a refresh without a change adds no frame.
TEST_F(RecordTest, FramesEqualThePicturesTakenInEveryWindowAtEveryDepth) {
  const std::vector<Int> depths = {1, 4, 8, 16, 24, 32};
  std::vector<std::vector<std::vector<UInt8>>> expected(depths.size());
  for (UInt8 w = 0; w < depths.size(); ++w) {
    initTextWindow(w, depths[w], 6, 2);
    t_WindowVisible(w, true);
    ASSERT_TRUE(t_RecordStart(w, path("window" + std::to_string(w) + ".gif")));
    expected[w].push_back(t_WindowImage(w)->Pixels);
  }
  for (int step = 0; step < 3; ++step) {
    std::this_thread::sleep_for(30ms);
    for (UInt8 w = 0; w < depths.size(); ++w) {
      t_Color(w, 3 + 4 * step + w);
      t_Print(w, step == 1 ? "\x1b@Zz" : "Ab" + std::to_string(step));
      t_Plot(w, 5 - step, 3);
      refresh(w, expected[w]);
    }
  }
  std::this_thread::sleep_for(30ms);
  for (UInt8 w = 0; w < depths.size(); ++w) t_WindowUpdate(w, true);
  for (UInt8 w = 0; w < depths.size(); ++w) {
    ASSERT_TRUE(t_RecordStop(w));
    const Animation animation = decodedAnimation(path("window" + std::to_string(w) + ".gif"));
    EXPECT_EQ(animation.Width, Windows[w].Width);
    EXPECT_EQ(expected[w].size(), 4u);
    EXPECT_EQ(animation.Pictures, expected[w]) << "depth " << depths[w];
  }
  EXPECT_TRUE(logLines().empty());
}

// A gradient of 4096 colours must be quantised: the median cut keeps every colour within 16
// levels, on average within 4. The dots drawn on it later come out exact again.
TEST_F(RecordTest, FramesOfMoreThan256ColoursAreCloseAndDelaysAddUpToTheTimeRecorded) {
  initTextWindow(0, 24, 4, 2);
  t_WindowVisible(0, true);
  for (Int y = 0; y < 64; ++y) {
    for (Int x = 0; x < 64; ++x) {
      UInt8* pixel = &VideoMemory[Windows[0].MemoryStart + 3 * (y * Windows[0].Width + x)];
      pixel[0] = static_cast<UInt8>(4 * x);
      pixel[1] = static_cast<UInt8>(4 * y);
      pixel[2] = static_cast<UInt8>(2 * (x + y));
    }
  }
  std::vector<std::vector<UInt8>> expected;
  const Clock::time_point started = Clock::now();
  ASSERT_TRUE(t_RecordStart(0, path("gradient.gif")));
  expected.push_back(t_WindowImage(0)->Pixels);
  for (const auto pause : {70ms, 45ms, 120ms}) {
    std::this_thread::sleep_for(pause);
    t_Color(0, static_cast<Int>(expected.size()));
    t_Plot(0, static_cast<Int>(expected.size()), 2);
    refresh(0, expected);
  }
  std::this_thread::sleep_for(50ms);
  // The recording ends when t_RecordStop is called; encoding what is left may take longer.
  const auto recorded =
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started);
  ASSERT_TRUE(t_RecordStop(0));

  const Animation animation = decodedAnimation(path("gradient.gif"));
  ASSERT_EQ(animation.Pictures.size(), expected.size());
  for (std::size_t frame = 0; frame < expected.size(); ++frame) {
    const auto [largest, mean] = differences(animation.Pictures[frame], expected[frame]);
    EXPECT_LE(largest, 16);
    EXPECT_LE(mean, 4.0);
  }
  const int total = std::accumulate(animation.Delays.begin(), animation.Delays.end(), 0);
  EXPECT_NEAR(total * 10, recorded.count(), 1000 / 30);
}

// 320 colours do not fit one GIF colour table; two parts of two centiseconds keep them exact.
TEST_F(RecordTest, APictureOfMoreThan255ColoursIsDrawnExactlyInTwoParts) {
  initTextWindow(0, 24, 4, 2);
  t_WindowVisible(0, true);
  ASSERT_TRUE(t_RecordStart(0, path("parts.gif")));
  std::this_thread::sleep_for(50ms);
  for (Int i = 0; i < 320; ++i) {
    UInt8* pixel = &VideoMemory[Windows[0].MemoryStart + 3 * i];
    pixel[0] = static_cast<UInt8>(i);
    pixel[1] = static_cast<UInt8>(i / 256 + 1);
    pixel[2] = 7;
  }
  t_WindowUpdate(0, true);
  std::this_thread::sleep_for(50ms);
  ASSERT_TRUE(t_RecordStop(0));
  const Animation animation = decodedAnimation(path("parts.gif"));
  ASSERT_EQ(animation.Pictures.size(), 3u);
  EXPECT_EQ(animation.Pictures.back(), t_WindowImage(0)->Pixels);
  EXPECT_EQ(animation.Delays[1], 2);
}

TEST_F(RecordTest, StartingTwiceStoppingWhatDoesNotRecordAndWindowsWithoutPicturesAreRefused) {
  std::vector<std::pair<UInt8, bool>> told;
  setRecordingObserver(
      [&told](UInt8 window, bool recording) { told.emplace_back(window, recording); });
  initTextWindow(2, 8, 4, 2);
  EXPECT_TRUE(t_RecordStart(2, path("two.gif")));
  EXPECT_TRUE(t_IsRecording(2));
  EXPECT_FALSE(t_RecordStart(2, path("again.gif")));
  EXPECT_FALSE(t_RecordStart(3, path("three.gif")));
  EXPECT_FALSE(t_RecordStart(9, path("printer.gif")));
  EXPECT_FALSE(t_RecordStop(4));
  EXPECT_FALSE(t_RecordStop(2));  // the window was never visible
  EXPECT_FALSE(t_IsRecording(2));
  EXPECT_FALSE(t_RecordStop(2));
  setRecordingObserver(nullptr);
  EXPECT_EQ(told, (std::vector<std::pair<UInt8, bool>>{{2, true}, {2, false}}));
  EXPECT_EQ(logLines(), (Lines{"t_RecordStart: Window #2 is being recorded already.",
                               "t_RecordStart: Window #3 not initialized.",
                               "t_RecordStart: Window is not a graphic window.",
                               "t_RecordStop: Window #4 is not being recorded.",
                               "t_RecordStop: Window #2 showed no picture, „" + path("two.gif") +
                                   "“ was not written.",
                               "t_RecordStop: Window #2 is not being recorded."}));
  EXPECT_TRUE(folder_.files().empty());
}

// A file size limit stands in for a full disk: the frames no longer fit once the header is out.
TEST_F(RecordTest, AMissingFolderOrAFullDiskLeavesNoFileAndTheEndOfTheApplicationFinishes) {
  initTextWindow(1, 24, 20, 6);
  t_WindowVisible(1, true);
  EXPECT_FALSE(t_RecordStart(1, path("missing/folder/film.gif")));

  withFileSizeLimit(64, [&] {
    EXPECT_TRUE(t_RecordStart(1, path("full.gif")));
    t_Print(1, "A full disk");
    t_WindowUpdate(1, true);
    EXPECT_FALSE(t_RecordStop(1));
  });
  ASSERT_EQ(logLines().size(), 2u);
  EXPECT_EQ(logLines()[0], "t_RecordStart: Could not write „" + path("missing/folder/film.gif") +
                               "“: cannot create it: No such file or directory.");
  EXPECT_TRUE(logLines()[1].starts_with("t_RecordStop: Could not write „" + path("full.gif") +
                                        "“: cannot write it: "));
  EXPECT_TRUE(folder_.files().empty());

  ASSERT_TRUE(t_RecordStart(1, path("ended.gif")));
  runTerminationSequence();
  EXPECT_FALSE(t_IsRecording(1));
  EXPECT_EQ(decodedAnimation(path("ended.gif")).Pictures.size(), 1u);
}

// The README's animation: the demo at no delay, from its prompt to the full tub.
TEST(KessvindRecordingTest, TheDemoRunWithoutADisplayLeavesAnAnimationOfTheTubFilling) {
#ifndef RVTOOLS_KESSVIND
  GTEST_SKIP() << "the demo is built with the desktop host only";
#else
  const fs::path build = RVTOOLS_BUILD_DIR;
  const std::string animation = (build / "kessvind.gif").string();
  const std::string picture = (build / "kessvind-final.png").string();
  const std::string command =
      std::string(RVTOOLS_KESSVIND) +
      " --headless --keys '{Backspace}{Backspace}{Backspace}{Backspace}0\\r'"
      " --record " +
      animation + " --picture " + picture + " > /dev/null";
  const CommandRun run = runCommand(command);
  ASSERT_EQ(run.Status, 0) << run.Errors;

  const Animation recorded = decodedAnimation(animation);
  ASSERT_GT(recorded.Pictures.size(), 1u);
  EXPECT_EQ(recorded.Pictures.back(), readPng(picture));

  if (const char* folder = std::getenv("RVTOOLS_SCREENSHOTS")) {
    const fs::path target = fs::path(RVTOOLS_SOURCE_DIR) / folder / "kessvind.gif";
    fs::copy_file(animation, target, fs::copy_options::overwrite_existing);
  }
#endif
}

class PictureTest : public RuntimeTest {
 protected:
  TestFolder folder_{"rvtools-pictures-"};
};

// Read back with libpng and with t_LoadPicture.
TEST_F(PictureTest, SavedPicturesReadBackAsTheWindowsImageAtEveryDepth) {
  for (const Int depth : {1, 4, 8, 16, 24, 32}) {
    initTextWindow(0, depth, 5, 2);
    t_WindowVisible(0, true);
    t_Print(0, "Ab\x1b@9");
    t_Color(0, 7);
    t_Plot(0, 4, 3);
    const std::string file = folder_.path("depth" + std::to_string(depth) + ".png");
    ASSERT_TRUE(t_SavePicture(0, file));
    Int width = 0, height = 0;
    const std::vector<UInt8> pixels = readPng(file, &width, &height);
    const t_Image image = *t_WindowImage(0);
    EXPECT_EQ(Position(width, height), Position(image.Width, image.Height));
    EXPECT_EQ(pixels, image.Pixels) << "depth " << depth;
    const std::optional<t_Image> loaded = t_LoadPicture(file);
    ASSERT_TRUE(loaded.has_value()) << "depth " << depth;
    EXPECT_EQ(Position(loaded->Width, loaded->Height), Position(width, height));
    EXPECT_EQ(loaded->Pixels, image.Pixels) << "depth " << depth;
  }
  EXPECT_TRUE(logLines().empty());
}

TEST_F(PictureTest, WindowsWithoutAPictureAndUnwritableFilesAreRefused) {
  initTextWindow(1, 24, 4, 2);
  EXPECT_FALSE(t_SavePicture(1, folder_.path("hidden.png")));
  EXPECT_FALSE(t_SavePicture(3, folder_.path("uninitialised.png")));
  EXPECT_FALSE(t_SavePicture(9, folder_.path("printer.png")));
  t_WindowVisible(1, true);
  EXPECT_FALSE(t_SavePicture(1, folder_.path("missing/folder/picture.png")));
  EXPECT_EQ(logLines(),
            (Lines{"t_SavePicture: Window #1 is not visible.",
                   "t_SavePicture: Window #3 not initialized.",
                   "t_SavePicture: Window is not a graphic window.",
                   "t_SavePicture: Could not write „" + folder_.path("missing/folder/picture.png") +
                       "“: cannot create it: No such file or directory."}));
  EXPECT_TRUE(folder_.files().empty());
}

// The write fails half way: the partial file goes and an older file of the same name stays.
TEST_F(PictureTest, AFullDiskLeavesTheOldFileAndNoPartialOne) {
  initTextWindow(2, 24, 20, 6);
  t_WindowVisible(2, true);
  for (Int x = 0; x < 40; ++x) {
    t_Color(2, x % 16);
    t_Plot(2, x, x % 12);
  }
  const std::string file = folder_.path("full.png");
  std::ofstream(file) << "older picture";
  bool saved = true;
  withFileSizeLimit(64, [&] { saved = t_SavePicture(2, file); });
  EXPECT_FALSE(saved);
  ASSERT_EQ(logLines().size(), 1u);
  EXPECT_TRUE(logLines()[0].starts_with("t_SavePicture: Could not write „" + file +
                                        "“: cannot write it: "));
  EXPECT_EQ(folder_.files(), Lines{"full.png"});
  EXPECT_EQ(std::filesystem::file_size(file), std::string("older picture").size());
}

}  // namespace
}  // namespace rvtools::testing
