// Pictures as PNG files: read back with libpng they equal the window's image at every depth;
// a window without a picture, a missing folder and a disk that fills up are refused with one
// log line and leave no file behind.
#include <png.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "common.hpp"
#include "rvtools/picture.hpp"

namespace rvtools::testing {
namespace {

namespace fs = std::filesystem;

class PictureTest : public RuntimeTest {
 protected:
  void SetUp() override {
    RuntimeTest::SetUp();
    // A folder per test, since ctest runs the tests side by side.
    const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    folder_ = fs::path(::testing::TempDir()) / ("rvtools-pictures-" + test);
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  void TearDown() override {
    fs::remove_all(folder_);
    RuntimeTest::TearDown();
  }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  fs::path folder_;
};

// The pixels of a PNG file as bytes A, R, G, B, the order of t_WindowImage.
std::vector<UInt8> decodedPixels(const std::string& path, Int& width, Int& height) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return {};
  image.format = PNG_FORMAT_ARGB;
  std::vector<UInt8> pixels(PNG_IMAGE_SIZE(image));
  if (!png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr)) return {};
  width = image.width;
  height = image.height;
  return pixels;
}

TEST_F(PictureTest, SavedPicturesReadBackAsTheWindowsImageAtEveryDepth) {
  for (const Int depth : {1, 4, 8, 16, 24, 32}) {
    initTextWindow(0, depth, 5, 2);
    t_WindowVisible(0, true);
    t_Print(0, "Ab\x1b@9");
    t_Color(0, 7);
    t_Plot(0, 4, 3);
    const std::string file = path("depth" + std::to_string(depth) + ".png");
    ASSERT_TRUE(t_SavePicture(0, file));
    Int width = 0, height = 0;
    const std::vector<UInt8> pixels = decodedPixels(file, width, height);
    const t_Image image = *t_WindowImage(0);
    EXPECT_EQ(width, image.Width);
    EXPECT_EQ(height, image.Height);
    EXPECT_EQ(pixels, image.Pixels) << "depth " << depth;
  }
  EXPECT_TRUE(logLines().empty());
}

TEST_F(PictureTest, WindowsWithoutAPictureAndUnwritableFilesAreRefused) {
  initTextWindow(1, 24, 4, 2);
  EXPECT_FALSE(t_SavePicture(1, path("hidden.png")));
  EXPECT_FALSE(t_SavePicture(3, path("uninitialised.png")));
  EXPECT_FALSE(t_SavePicture(9, path("printer.png")));
  t_WindowVisible(1, true);
  EXPECT_FALSE(t_SavePicture(1, path("missing/folder/picture.png")));
  EXPECT_EQ(
      logLines(),
      (std::vector<std::string>{
          "t_SavePicture: Window #1 is not visible.", "t_SavePicture: Window #3 not initialized.",
          "t_SavePicture: Window is not a graphic window.",
          "t_SavePicture: Could not write „" + path("missing/folder/picture.png") +
              "“: cannot create it: No such file or directory."}));
  EXPECT_TRUE(files().empty());
}

// A file size limit stands in for a full disk: the write fails half way, the partial file goes
// and an older file of the same name stays as it was.
TEST_F(PictureTest, AFullDiskLeavesTheOldFileAndNoPartialOne) {
  initTextWindow(2, 24, 20, 6);
  t_WindowVisible(2, true);
  for (Int x = 0; x < 40; ++x) {
    t_Color(2, x % 16);
    t_Plot(2, x, x % 12);
  }
  const std::string file = path("full.png");
  { std::ofstream(file) << "older picture"; }
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{64, limit.rlim_max};
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  const bool saved = t_SavePicture(2, file);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, previous);

  EXPECT_FALSE(saved);
  ASSERT_EQ(logLines().size(), 1u);
  EXPECT_TRUE(logLines()[0].starts_with("t_SavePicture: Could not write „" + file +
                                        "“: cannot write it: "));
  EXPECT_EQ(files(), std::vector<std::string>{"full.png"});
  EXPECT_EQ(fs::file_size(file), std::string("older picture").size());
}

}  // namespace
}  // namespace rvtools::testing
