#include "DefaultFoldersFile.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>

#include "EscapedName.h"
#include "Paths.h"
#include "Refusal.h"

namespace umsctl {
namespace {

using nlohmann::json;
using umsservice::FileSystem;

constexpr size_t kLargestProfile = 1u << 20;

/// Walks over the bytes and counts the lines, which the parser does not tell of what it has read.
struct LineCounter {
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  reference operator*() const { return *at; }
  LineCounter& operator++() {
    if (*at == '\n') ++*line;
    ++at;
    return *this;
  }
  LineCounter operator++(int) {
    LineCounter before = *this;
    ++*this;
    return before;
  }
  bool operator==(const LineCounter& other) const { return at == other.at; }
  bool operator!=(const LineCounter& other) const { return at != other.at; }

  const char* at;
  size_t* line;
};

/// The folder from the volume on, or nothing for one that is none or leads elsewhere.
std::optional<std::string> folderFrom(const std::string& text) {
  std::string folder;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find('/', at), text.size());
    const std::string component = text.substr(at, end - at);
    at = end + 1;
    if (component.empty()) continue;
    if (component == "." || component == ".." || component.find('\0') != std::string::npos)
      return std::nullopt;
    folder += "/" + component;
  }
  return folder.empty() ? std::nullopt : std::optional(folder);
}

/// Takes the document part by part and stops at the first that has no place in a profile.
class ProfileReader final : public nlohmann::json_sax<json> {
 public:
  ProfileReader(std::map<std::string, DefaultFoldersFile::Folders>& folders, const size_t& line)
      : folders_(folders), lineNow_(line) {}

  const std::string& cause() const { return cause_; }
  size_t line() const { return line_; }

  bool start_object(size_t) override {
    if (depth_ == 2) return wrongValue();
    ++depth_;
    return true;
  }
  bool end_object() override {
    --depth_;
    return true;
  }
  bool key(std::string& name) override {
    line_ = lineNow_;
    auto& seen = depth_ == 1 ? volume_ : kind_;
    seen = name;
    if (depth_ == 1) {
      if (name != DefaultFoldersFile::kInternal && name != DefaultFoldersFile::kCard)
        return fail(quoted(name) + " is none of internal and card");
      return folders_.try_emplace(name).second || fail(quoted(name) + " is there twice");
    }
    for (const char* known : {"music", "image", "video", "podcast"}) {
      if (name == known) return folders_[volume_].count(name) == 0 || fail(quoted(name) + " is there twice");
    }
    return fail(quoted(name) + " is none of music, image, video and podcast");
  }
  bool string(std::string& text) override {
    if (depth_ != 2) return wrongValue();
    auto folder = folderFrom(text);
    if (!folder) return fail(quoted(text) + " is no folder of a volume");
    folders_[volume_][kind_] = *folder;
    return true;
  }
  bool null() override { return wrongValue(); }
  bool boolean(bool) override { return wrongValue(); }
  bool number_integer(json::number_integer_t) override { return wrongValue(); }
  bool number_unsigned(json::number_unsigned_t) override { return wrongValue(); }
  bool number_float(json::number_float_t, const std::string&) override { return wrongValue(); }
  bool binary(json::binary_t&) override { return wrongValue(); }
  bool start_array(size_t) override { return wrongValue(); }
  bool end_array() override { return false; }
  bool parse_error(size_t, const std::string&, const nlohmann::detail::exception& error) override {
    // "[json.exception.parse_error.101] parse error at line 1, column 2: syntax error while ..."
    const std::string words = error.what();
    const size_t colon = words.find(": ");
    line_ = lineNow_;
    return fail("it is no JSON: " + escaped(colon == std::string::npos ? words : words.substr(colon + 2)));
  }

 private:
  static std::string quoted(const std::string& text) { return "\"" + escaped(text) + "\""; }

  bool fail(std::string cause) {
    cause_ = std::move(cause);
    return false;
  }
  /// The line is that of the name, as a value may be read on into the next line.
  bool wrongValue() {
    if (depth_ == 0) return fail("a profile is an object: { \"internal\": { \"music\": \"/Songs\" } }");
    return fail(depth_ == 1 ? quoted(volume_) + " must be an object of folders"
                            : quoted(kind_) + " must be a text");
  }

  std::map<std::string, DefaultFoldersFile::Folders>& folders_;
  const size_t& lineNow_;
  size_t line_ = 1;
  size_t depth_ = 0;
  std::string volume_;
  std::string kind_;
  std::string cause_;
};

std::string bytesOf(FileSystem& files, const std::string& path, const std::string& shown) {
  auto refuse = [&](const std::string& cause) { return Refusal(ExitStatus::Usage, shown, cause); };
  auto opened = files.openForReading(path);
  if (!opened) throw refuse(opened.error().words());
  std::string bytes(kLargestProfile + 1, '\0');
  size_t length = 0;
  while (length < bytes.size()) {
    auto read = (*opened)->read(bytes.data() + length, bytes.size() - length);
    if (!read) throw refuse(read.error().words());
    if (*read == 0) break;
    length += *read;
  }
  if (length > kLargestProfile) throw refuse("it is too large for a profile");
  bytes.resize(length);
  return bytes;
}

}  // namespace

DefaultFoldersFile::DefaultFoldersFile(FileSystem& files, const std::string& path, const char* internal,
                                       const char* card)
    : internal_(internal), card_(card) {
  const std::string bytes = bytesOf(files, absolutePath(path), path);
  size_t line = 1;
  ProfileReader reader(folders_, line);
  const LineCounter begin{bytes.data(), &line}, end{bytes.data() + bytes.size(), &line};
  if (json::sax_parse(begin, end, &reader)) return;
  throw Refusal(ExitStatus::Usage, path, "line " + std::to_string(reader.line()) + ": " + reader.cause());
}

umsservice::MaybeString DefaultFoldersFile::folderOf(const std::string& part, const char* kind) const {
  auto folders = folders_.find(part);
  if (folders == folders_.end()) return std::nullopt;
  auto folder = folders->second.find(kind);
  return folder == folders->second.end() ? std::nullopt : MaybeString(folder->second);
}

}  // namespace umsctl
