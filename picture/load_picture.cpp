// SPDX-License-Identifier: MIT
// t_LoadPicture: a PNG file as a picture of bytes A, R, G, B, through libpng's own reading
// interface rather than its simplified one, for three reasons: samples are taken as the file
// holds them, where the simplified interface would convert 16-bit and gamma-tagged files
// between colour curves; only the chunks that make the picture are kept; and the declared size
// is checked before the picture is allocated. The file is streamed, never held whole.
//
// Memory beyond the picture itself (Width x Height x 4 bytes) is libpng's: a few rows of the
// file, the inflater's window and the palette. libpng leaves its functions by longjmp on an
// error, so the two steps that call it hold no object that needs destroying.
#include "picture/load_picture.hpp"

#include <fcntl.h>
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csetjmp>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "rvtools/picture.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace picture {
namespace {

constexpr std::uint64_t LargestSide = LargestPictureSide;
// A longer file is refused: even 16-bit RGBA stored without compression needs only half of it
// for the largest picture, which leaves the rest for chunk framing and metadata.
constexpr std::uint64_t LargestPictureFile = 2 * LargestSide * (LargestSide * 8 + 1);
// Deflate shrinks data at most 1032 to 1, so a file too short to hold its rows at that ratio
// is refused before its picture is allocated.
constexpr std::uint64_t BestDeflateRatio = 1032;

// One reading: where libpng takes its bytes from, and why it stopped.
struct Reading {
  std::FILE* stream;
  std::uint64_t left;  // bytes that may still be read
  char failure[160] = "";
};

void readBytes(png_structp png, png_bytep data, std::size_t length) {
  auto* reading = static_cast<Reading*>(png_get_io_ptr(png));
  if (length > reading->left || std::fread(data, 1, length, reading->stream) != length) {
    png_error(png, "the file ends early");
  }
  reading->left -= length;
}

[[noreturn]] void stopReading(png_structp png, png_const_charp message) {
  auto* reading = static_cast<Reading*>(png_get_error_ptr(png));
  std::snprintf(reading->failure, sizeof reading->failure, "%s", message);
  png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

// libpng's read and info structures, destroyed together.
class Decoder {
 public:
  explicit Decoder(Reading& reading)
      : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &reading, stopReading, ignoreWarning)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {
    if (png_ != nullptr) png_set_read_fn(png_, &reading, readBytes);
  }
  ~Decoder() { png_destroy_read_struct(&png_, &info_, nullptr); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  bool ready() const { return info_ != nullptr; }
  png_structp png() const { return png_; }
  png_infop info() const { return info_; }

 private:
  png_structp png_;
  png_infop info_;
};

// Reads the chunks before the image data; false when libpng refuses them.
bool readHeader(png_structp png, png_infop info) {
  if (setjmp(png_jmpbuf(png))) return false;
  // Text, colour profiles and unknown chunks are skipped unread: only IHDR, PLTE, tRNS, IDAT
  // and IEND are kept.
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
  // Mutated chunks keep their old checksums; the fuzzer reaches past them only if they pass.
  png_set_crc_action(png, PNG_CRC_QUIET_USE, PNG_CRC_QUIET_USE);
#endif
  png_read_info(png, info);
  return true;
}

// Asks libpng for 8-bit samples A, R, G, B whatever the file holds: palettes, grey under 8
// bits and tRNS expanded, 16 bits rounded to 8, opaque alpha added where the file has none.
void requestArgb(png_structp png, png_infop info) {
  const bool alpha = (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                     png_get_valid(png, info, PNG_INFO_tRNS) != 0;
  png_set_expand(png);
  png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  if (alpha) {
    png_set_swap_alpha(png);
  } else {
    png_set_filler(png, 0xff, PNG_FILLER_BEFORE);
  }
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
}

// Reads the rows into `rows`, each 4 x width bytes long, and the chunks after them.
bool readRows(png_structp png, png_infop info, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return false;
  requestArgb(png, info);
  // Rows of any other length would overrun the picture.
  if (png_get_rowbytes(png, info) != 4 * std::size_t{png_get_image_width(png, info)}) {
    png_error(png, "libpng gives no 8-bit A, R, G, B rows for it");
  }
  png_read_image(png, rows);
  png_read_end(png, nullptr);
  return true;
}

// Why the declared picture is refused before it is allocated, or nothing.
std::optional<std::string> refusedSize(png_structp png, png_infop info, std::uint64_t size) {
  const std::uint64_t width = png_get_image_width(png, info);
  const std::uint64_t height = png_get_image_height(png, info);
  const std::string sides = std::to_string(width) + " x " + std::to_string(height) + " pixels";
  if (width > LargestSide || height > LargestSide) {
    return "is " + sides + "; a side may have at most " + std::to_string(LargestSide);
  }
  if (size * BestDeflateRatio < height * (png_get_rowbytes(png, info) + 1)) {
    return "is too short for its " + sides;
  }
  return std::nullopt;
}

void refuse(const std::string& name, const std::string& reason) {
  t_Log("t_LoadPicture: „" + name + "“ " + reason + ".");
}

// The picture whose header `decoder` has read; nothing, with a log line, when its rows fail.
std::optional<t_Image> readPixels(Decoder& decoder, const Reading& reading,
                                  const std::string& name) {
  const Int width = png_get_image_width(decoder.png(), decoder.info());
  const Int height = png_get_image_height(decoder.png(), decoder.info());
  t_Image picture{width, height, {}};
  std::vector<png_bytep> rows;
  try {
    picture.Pixels.resize(4 * width * height);
    rows.resize(height);
  } catch (const std::bad_alloc&) {
    refuse(name, "does not fit into memory");
    return std::nullopt;
  }
  for (Int y = 0; y < height; ++y) rows[y] = &picture.Pixels[4 * width * y];
  if (!readRows(decoder.png(), decoder.info(), rows.data())) {
    refuse(name, std::string("is no PNG picture: ") + reading.failure);
    return std::nullopt;
  }
  return picture;
}

// Closes a file opened by openPicture.
struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The regular file at `path` open for reading and its size; no file, with a log line, when it
// cannot be read or is too long.
File openPicture(const std::string& path, std::uint64_t& size) {
  // Non-blocking, so that opening a named pipe without a writer returns at once.
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat status {};
  std::string failure;
  if (descriptor < 0 || fstat(descriptor, &status) != 0) {
    failure = std::strerror(errno);
  } else if (!S_ISREG(status.st_mode)) {
    failure = "it is no file";
  } else if (static_cast<std::uint64_t>(status.st_size) > LargestPictureFile) {
    failure = "it is longer than any picture needs";
  }
  File file(failure.empty() ? fdopen(descriptor, "rb") : nullptr);
  if (file == nullptr && failure.empty()) failure = std::strerror(errno);
  if (!failure.empty()) {
    if (descriptor >= 0) close(descriptor);
    t_Log("t_LoadPicture: Could not read „" + path + "“: " + failure + ".");
    return nullptr;
  }
  size = static_cast<std::uint64_t>(status.st_size);
  return file;
}

}  // namespace

std::optional<t_Image> readPicture(std::FILE* stream, std::uint64_t size, const std::string& name) {
  Reading reading{stream, size};
  Decoder decoder(reading);
  if (!decoder.ready()) {
    refuse(name, "does not fit into memory");
    return std::nullopt;
  }
  if (!readHeader(decoder.png(), decoder.info())) {
    refuse(name, std::string("is no PNG picture: ") + reading.failure);
    return std::nullopt;
  }
  if (const std::optional<std::string> reason = refusedSize(decoder.png(), decoder.info(), size)) {
    refuse(name, *reason);
    return std::nullopt;
  }
  return readPixels(decoder, reading, name);
}

}  // namespace picture

std::optional<t_Image> t_LoadPicture(const std::string& path) {
  std::uint64_t size = 0;
  const picture::File file = picture::openPicture(path, size);
  if (file == nullptr) return std::nullopt;
  return picture::readPicture(file.get(), size, path);
}

}  // namespace rvtools
