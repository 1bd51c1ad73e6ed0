#include "ImageTags.h"

#include <array>
#include <cstdio>
#include <exiv2/error.hpp>
#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>
#include <mutex>
#include <utility>

#include "Paths.h"
#include "Utf8.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;

/// A file that is read and never mapped: the pages of a mapped one cannot be had any more once its device has
/// been pulled out, and the system ends a program that touches them.
class ReadFile final : public Exiv2::FileIo {
 public:
  explicit ReadFile(const std::string& path) : FileIo(path) {}

  /// What the file was long at first: the size and the bytes must agree, whoever writes to the file.
  size_t size() const override {
    if (!size_) size_ = FileIo::size();
    return *size_;
  }

  Exiv2::byte* mmap(bool) override {
    if (size() > kLargest) throw std::length_error("a picture of this size is not read as a whole");
    bytes_.assign(size(), 0);
    seek(0, beg);
    read(bytes_.data(), static_cast<decltype(tell())>(bytes_.size()));
    return bytes_.data();
  }

  int munmap() override { return 0; }

 private:
  static constexpr size_t kLargest = 64u << 20;

  mutable std::optional<size_t> size_;
  std::vector<Exiv2::byte> bytes_;
};

/// Cameras fill their fields with blanks; a field that is no text is as good as none.
std::string textOf(const Exiv2::ExifData& exif, const char* field) {
  auto found = exif.findKey(Exiv2::ExifKey(field));
  if (found == exif.end()) return "";
  std::string text = found->toString();
  text.erase(std::min(text.find('\0'), text.size()));
  constexpr auto kBlanks = " \t\r\n";
  text.erase(text.find_last_not_of(kBlanks) + 1);
  text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
  return isUtf8(text) ? text : "";
}

/// "2021:06:05 04:31:07" in the file; told as "2021-06-05 04:31:07". A camera whose clock was never set
/// writes zeros or blanks.
std::string dateOf(const Exiv2::ExifData& exif) {
  for (const char* field :
       {"Exif.Photo.DateTimeOriginal", "Exif.Photo.DateTimeDigitized", "Exif.Image.DateTime"}) {
    unsigned year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    const int read = std::sscanf(textOf(exif, field).c_str(), "%4u:%2u:%2u %2u:%2u:%2u", &year, &month, &day,
                                 &hour, &minute, &second);
    bool isDate = read == 6 && year > 0 && month >= 1 && month <= 12 && day >= 1 && day <= 31 && hour < 24 &&
                  minute < 60 && second <= 60;
    if (!isDate) continue;
    std::array<char, 80> text;
    std::snprintf(text.data(), text.size(), "%04u-%02u-%02u %02u:%02u:%02u", year, month, day, hour, minute,
                  second);
    return text.data();
  }
  return "";
}

/// Many models begin with the name of their maker already.
std::string cameraOf(const Exiv2::ExifData& exif) {
  std::string maker = textOf(exif, "Exif.Image.Make");
  std::string model = textOf(exif, "Exif.Image.Model");
  if (maker.empty() || model.starts_with(maker)) return model;
  return model.empty() ? maker : maker + " " + model;
}

/// A camera held upright writes its picture lying down and says so.
bool isTurned(const Exiv2::ExifData& exif) {
  auto found = exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
  if (found == exif.end() || found->count() == 0) return false;
  auto orientation = found->toLong();
  return orientation >= 5 && orientation <= 8;
}

void setText(Dictionary& entries, const char* name, const std::string& text) {
  if (!text.empty()) entries.set(name, text);
}

}  // namespace

bool mayHaveImageTags(const std::string& path) {
  const std::string extension = extensionOf(path);
  for (const char* known : {"jpg", "jpeg", "png", "gif", "bmp"}) {
    if (extension == known) return true;
  }
  return false;
}

bool addImageTags(const std::string& path, Dictionary& entries) {
  // The library's tables of names of other kinds of data are shared and not made for threads.
  static std::mutex reading;
  std::lock_guard lock(reading);
  // What it thinks of a file is told here in one way only: the file has no readable tags.
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
  decltype(Exiv2::ImageFactory::createIo(path)) file(new ReadFile(path));
  auto image = Exiv2::ImageFactory::open(std::move(file));
  if (!image.get()) return false;
  image->readMetadata();
  const Exiv2::ExifData& exif = image->exifData();
  auto width = static_cast<uint32_t>(image->pixelWidth()),
       height = static_cast<uint32_t>(image->pixelHeight());
  if (width == 0 || height == 0) return false;
  if (isTurned(exif)) std::swap(width, height);
  entries.set("Width", width);
  entries.set("Height", height);
  setText(entries, "DateTaken", dateOf(exif));
  setText(entries, "Camera", cameraOf(exif));
  return true;
}

}  // namespace umsctl
