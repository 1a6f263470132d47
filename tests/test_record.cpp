// Recordings as animated GIF files, read back with giflib: the frames, composed as a viewer
// composes them, equal the pictures at the moments they were taken, at every depth and in
// several windows at once (approximately where a frame has more than 256 colours); delays add
// up to the time recorded; refusals and unwritable files get one log line and leave no file.
// The drop demo run without a display leaves the animation that the README shows.
#include <gif_lib.h>
#include <png.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
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
      UInt8* pixel = &picture[4 * ((place.Top + y) * gif.SWidth + place.Left + x)];
      const GifColorType colour = table->Colors[index];
      pixel[0] = 255;
      pixel[1] = colour.Red;
      pixel[2] = colour.Green;
      pixel[3] = colour.Blue;
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

int largestDifference(const std::vector<UInt8>& a, const std::vector<UInt8>& b) {
  int largest = a.size() == b.size() ? 0 : 256;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    largest = std::max(largest, std::abs(a[i] - b[i]));
  }
  return largest;
}

// The mean difference of red, green and blue between two pictures of the same size.
double meanDifference(const std::vector<UInt8>& a, const std::vector<UInt8>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(a.size() / 4 * 3);
}

class RecordTest : public RuntimeTest {
 protected:
  void SetUp() override {
    RuntimeTest::SetUp();
    const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    folder_ = fs::path(::testing::TempDir()) / ("rvtools-recordings-" + test);
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  void TearDown() override {
    for (UInt8 window = 0; window < 8; ++window) {
      if (t_IsRecording(window)) t_RecordStop(window);
    }
    fs::remove_all(folder_);
    RuntimeTest::TearDown();
  }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  bool folderIsEmpty() const { return fs::is_empty(folder_); }

  // Shows window `window`'s picture as the refresh does and, when it changed, keeps it as the
  // next frame expected.
  void refresh(UInt8 window, std::vector<std::vector<UInt8>>& expected) {
    t_WindowUpdate(window, true);
    std::vector<UInt8> picture = t_WindowImage(window)->Pixels;
    if (expected.empty() || picture != expected.back()) expected.push_back(std::move(picture));
  }

  fs::path folder_;
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

// A gradient of 4096 colours must be quantised: giflib's median cut keeps every colour within
// 48 levels, on average within 8. The dots drawn on it later come out exact again.
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
  ASSERT_TRUE(t_RecordStop(0));
  const auto recorded =
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started);

  const Animation animation = decodedAnimation(path("gradient.gif"));
  ASSERT_EQ(animation.Pictures.size(), expected.size());
  for (std::size_t frame = 0; frame < expected.size(); ++frame) {
    EXPECT_LE(largestDifference(animation.Pictures[frame], expected[frame]), 48);
    EXPECT_LE(meanDifference(animation.Pictures[frame], expected[frame]), 8.0);
  }
  int total = 0;
  for (const int delay : animation.Delays) total += delay;
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
  EXPECT_EQ(logLines(),
            (std::vector<std::string>{"t_RecordStart: Window #2 is being recorded already.",
                                      "t_RecordStart: Window #3 not initialized.",
                                      "t_RecordStart: Window is not a graphic window.",
                                      "t_RecordStop: Window #4 is not being recorded.",
                                      "t_RecordStop: Window #2 showed no picture, „" +
                                          path("two.gif") + "“ was not written.",
                                      "t_RecordStop: Window #2 is not being recorded."}));
  EXPECT_TRUE(folderIsEmpty());
}

// A file size limit stands in for a full disk: the frames no longer fit once the header is out.
TEST_F(RecordTest, AMissingFolderOrAFullDiskLeavesNoFileAndTheEndOfTheApplicationFinishes) {
  initTextWindow(1, 24, 20, 6);
  t_WindowVisible(1, true);
  EXPECT_FALSE(t_RecordStart(1, path("missing/folder/film.gif")));

  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{64, limit.rlim_max};
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  const bool started = t_RecordStart(1, path("full.gif"));
  t_Print(1, "A full disk");
  t_WindowUpdate(1, true);
  const bool stopped = t_RecordStop(1);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, previous);
  EXPECT_TRUE(started);
  EXPECT_FALSE(stopped);
  ASSERT_EQ(logLines().size(), 2u);
  EXPECT_EQ(logLines()[0], "t_RecordStart: Could not write „" + path("missing/folder/film.gif") +
                               "“: cannot create it: No such file or directory.");
  EXPECT_TRUE(logLines()[1].starts_with("t_RecordStop: Could not write „" + path("full.gif") +
                                        "“: cannot write it: "));
  EXPECT_TRUE(folderIsEmpty());

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
  ASSERT_EQ(std::system(command.c_str()), 0);

  const Animation recorded = decodedAnimation(animation);
  EXPECT_GT(recorded.Pictures.size(), 1u);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  ASSERT_TRUE(png_image_begin_read_from_file(&image, picture.c_str()));
  image.format = PNG_FORMAT_ARGB;
  std::vector<UInt8> finalPicture(PNG_IMAGE_SIZE(image));
  ASSERT_TRUE(png_image_finish_read(&image, nullptr, finalPicture.data(), 0, nullptr));
  ASSERT_FALSE(recorded.Pictures.empty());
  EXPECT_EQ(recorded.Pictures.back(), finalPicture);

  if (const char* folder = std::getenv("RVTOOLS_SCREENSHOTS")) {
    const fs::path target = fs::path(RVTOOLS_SOURCE_DIR) / folder / "kessvind.gif";
    fs::copy_file(animation, target, fs::copy_options::overwrite_existing);
  }
#endif
}

}  // namespace
}  // namespace rvtools::testing
