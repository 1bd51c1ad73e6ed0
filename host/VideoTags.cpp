#include "VideoTags.h"

#include <MediaInfo/MediaInfo.h>
#include <ZenLib/Ztring.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "Paths.h"

namespace umsctl {
namespace {

using MediaInfoLib::MediaInfo;
using umsservice::Dictionary;

/// Enough for every index that a film keeps; a file that leads its reader back and forth ends here.
constexpr uint64_t kMostBytes = 64u << 20;
constexpr size_t kMostJumps = 1000;
constexpr uint64_t kVideoBlock = 256u << 10;

/// Bits of the parser's answer.
constexpr size_t kIsFinished = 1u << 3;

class OpenFilm {
 public:
  explicit OpenFilm(const std::string& path)
      : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    struct stat found {};
    isFile_ = descriptor_ >= 0 && ::fstat(descriptor_, &found) == 0 && S_ISREG(found.st_mode);
    size_ = isFile_ ? static_cast<uint64_t>(found.st_size) : 0;
  }
  ~OpenFilm() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  OpenFilm(const OpenFilm&) = delete;
  OpenFilm& operator=(const OpenFilm&) = delete;

  bool isFile() const { return isFile_; }
  uint64_t size() const { return size_; }
  /// The bytes from there on that could be read; 0 at the end and after a failure.
  size_t read(uint64_t at, std::vector<unsigned char>& buffer) const {
    ssize_t length = ::pread(descriptor_, buffer.data(), buffer.size(), static_cast<off_t>(at));
    return length > 0 ? static_cast<size_t>(length) : 0;
  }

 private:
  const int descriptor_;
  bool isFile_ = false;
  uint64_t size_ = 0;
};

/// Hands the parser the parts of the file that it asks for. It is not given the path: it would take some for
/// addresses of the network, and others for a series of files.
void parse(const OpenFilm& film, MediaInfo& parser) {
  constexpr auto kNowhere = static_cast<uint64_t>(-1);
  std::vector<unsigned char> buffer(kVideoBlock);
  uint64_t at = 0, taken = 0;
  parser.Open_Buffer_Init(film.size(), 0);
  for (size_t jumps = 0; jumps < kMostJumps && taken < kMostBytes;) {
    const size_t length = film.read(at, buffer);
    if (length == 0) break;
    at += length;
    taken += length;
    if (parser.Open_Buffer_Continue(buffer.data(), length) & kIsFinished) break;
    const uint64_t wanted = parser.Open_Buffer_Continue_GoTo_Get();
    if (wanted == kNowhere) continue;
    ++jumps;
    at = wanted;
    parser.Open_Buffer_Init(film.size(), at);
  }
  parser.Open_Buffer_Finalize();
}

class Answers {
 public:
  explicit Answers(MediaInfo& parser) : parser_(parser) {}

  std::string text(MediaInfoLib::stream_t stream, const wchar_t* parameter) {
    return ZenLib::Ztring(parser_.Get(stream, 0, parameter)).To_UTF8();
  }
  /// 0 for what is absent or no number.
  uint32_t number(MediaInfoLib::stream_t stream, const wchar_t* parameter) {
    double number = std::strtod(text(stream, parameter).c_str(), nullptr);
    return std::isfinite(number) && number >= 1 && number < 4e9 ? static_cast<uint32_t>(number + 0.5) : 0;
  }

 private:
  MediaInfo& parser_;
};

void setText(Dictionary& entries, const char* name, const std::string& text) {
  if (!text.empty() && !entries.contains(name)) entries.set(name, text);
}

void setNumber(Dictionary& entries, const char* name, uint32_t number) {
  if (number > 0) entries.set(name, number);
}

}  // namespace

bool mayHaveVideoTags(const std::string& path) {
  constexpr const char* kKnown[] = {"asf", "avi",  "flv", "k3g",  "mkv", "mp4", "m4v", "mov",
                                    "mpg", "mpeg", "rm",  "rmvb", "skm", "svi", "wmv", "3gp"};
  const std::string extension = extensionOf(path);
  return std::any_of(std::begin(kKnown), std::end(kKnown),
                     [&](const char* known) { return extension == known; });
}

bool addVideoTags(const std::string& path, Dictionary& entries) {
  using namespace MediaInfoLib;
  OpenFilm film(path);
  if (!film.isFile()) return false;
  MediaInfo parser;
  parse(film, parser);
  if (parser.Count_Get(Stream_Video) == 0 && parser.Count_Get(Stream_Audio) == 0) return false;

  Answers answers(parser);
  setText(entries, "Title", answers.text(Stream_General, L"Title"));
  setText(entries, "Artist", answers.text(Stream_General, L"Performer"));
  setText(entries, "Album", answers.text(Stream_General, L"Album"));
  setText(entries, "Genre", answers.text(Stream_General, L"Genre"));
  const uint32_t milliseconds = answers.number(Stream_General, L"Duration");
  setNumber(entries, "Duration", static_cast<uint32_t>((uint64_t{milliseconds} + 500) / 1000));
  uint32_t width = answers.number(Stream_Video, L"Width"), height = answers.number(Stream_Video, L"Height");
  const uint32_t turned = answers.number(Stream_Video, L"Rotation");  // as phones held upright film
  if (turned == 90 || turned == 270) std::swap(width, height);
  setNumber(entries, "Width", width);
  setNumber(entries, "Height", height);
  setText(entries, "VideoCodec", answers.text(Stream_Video, L"Format"));
  setText(entries, "AudioCodec", answers.text(Stream_Audio, L"Format"));
  return true;
}

}  // namespace umsctl
