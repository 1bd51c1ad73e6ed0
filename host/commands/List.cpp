#include "commands/List.h"

#include <algorithm>
#include <map>

#include "Amounts.h"
#include "EscapedName.h"
#include "Paths.h"
#include "Terminal.h"
#include "VolumeBounds.h"
#include "VolumeHeadline.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

struct Listed {
  std::string path;
  uint64_t size = 0;
  MaybeDictionary tags;
};

constexpr const char* kWords[] = {"", "music", "image", "video", "podcast"};
/// In the order of the columns.
constexpr const char* kTags[] = {"Title", "Artist", "Album", "Genre", "TrackNumber", "Year", "Duration"};
constexpr const char* kTagFields[] = {"title", "artist", "album", "genre", "track", "year", "seconds"};

std::vector<Dictionary> dictionariesOf(const MaybeArray& array) {
  std::vector<Dictionary> dictionaries;
  if (!array) return dictionaries;
  for (const Value& element : array->snapshot()) {
    if (auto dictionary = element.dictionary()) dictionaries.push_back(*dictionary);
  }
  return dictionaries;
}

std::string tagText(const MaybeDictionary& tags, const char* name) {
  if (!tags || !tags->contains(name)) return "";
  if (auto text = tags->string(name)) return escaped(*text);
  uint32_t number = tags->get(name).unsignedIntValue();
  return std::string_view(name) == "Duration" ? durationText(number) : std::to_string(number);
}

class Listing {
 public:
  Listing(const Errand& errand, Device& device, const ListOptions& options)
      : events_(errand.events()),
        device_(device),
        options_(options),
        bounds_(options.volumes),
        forEyes_(outputIsTerminal()) {}

  void show(const Device::Volume& volume) {
    auto readable = device_.files().list(volume.path);
    if (!readable) return tellUnreadable(volume.path, readable.error());
    events_.shown(volumeHeadline(volume, forEyes_));
    for (uint32_t mediaType : std::vector<uint32_t>{kMediaMusic, kMediaImage, kMediaVideo, kMediaPodcast}) {
      if (options_.mediaType == 0 || options_.mediaType == mediaType) showType(volume, mediaType);
    }
    tellUnreadableFolders(volume);
  }

  void showTotal() const {
    if (!forEyes_) return;
    events_.remarked(std::to_string(count_) + (count_ == 1 ? " file" : " files") + ", " + byteText(bytes_) +
                     "\n");
  }

  bool everythingWasRead() const { return everythingWasRead_; }

 private:
  void showType(const Device::Volume& volume, uint32_t mediaType) {
    auto files = mediaType == kMediaPodcast ? episodes(volume.index) : media(volume.index, mediaType);
    std::sort(files.begin(), files.end(),
              [](const Listed& left, const Listed& right) { return comesBefore(left.path, right.path); });
    for (const Listed& file : files) {
      std::string line = forEyes_ ? lineForEyes(volume, mediaType, file) : lineForPrograms(mediaType, file);
      events_.shown({line, "file", fieldsOf(volume, mediaType, file)});
      ++count_;
      bytes_ += file.size;
    }
  }

  static std::vector<std::pair<const char*, Shown::Field>> fieldsOf(const Device::Volume& volume,
                                                                    uint32_t mediaType, const Listed& file) {
    std::vector<std::pair<const char*, Shown::Field>> fields{{"volume", uint64_t{volume.index}},
                                                             {"type", std::string(kWords[mediaType])},
                                                             {"bytes", file.size},
                                                             {"path", file.path}};
    for (size_t i = 0; file.tags && i < std::size(kTags); ++i) {
      if (!file.tags->contains(kTags[i])) continue;
      if (auto text = file.tags->string(kTags[i])) {
        fields.emplace_back(kTagFields[i], *text);
      } else {
        fields.emplace_back(kTagFields[i], uint64_t{file.tags->get(kTags[i]).unsignedIntValue()});
      }
    }
    return fields;
  }

  /// The listing of names has every file, that with tags only those whose tags can be read.
  std::vector<Listed> media(uint32_t diskIndex, uint32_t mediaType) {
    std::map<std::string, Dictionary> tags;
    if (options_.tags) {
      for (Dictionary& file : dictionariesOf(device_.service().fileInformationList(0, mediaType, diskIndex)))
        tags.emplace(file.string(key::kFilePath).value_or(""), file);
    }
    std::vector<Listed> files;
    for (const Dictionary& file :
         dictionariesOf(device_.service().fileNameListWithFolderStructure(0, mediaType, diskIndex))) {
      auto found = tags.find(file.string(key::kFilePath).value_or(""));
      add(files, file, found == tags.end() ? MaybeDictionary() : found->second);
    }
    return files;
  }

  std::vector<Listed> episodes(uint32_t diskIndex) {
    std::vector<Listed> files;
    for (const Dictionary& channel :
         dictionariesOf(device_.service().fileInformationList(0, kMediaPodcast, diskIndex))) {
      for (const Dictionary& episode : dictionariesOf(channel.get("children").array())) {
        // An index may name any path; those beyond the device are not its episodes.
        if (!bounds_.holdsContents(episode.string(key::kFilePath).value_or(""))) continue;
        Dictionary tags;
        if (auto title = episode.string("Title")) tags.set("Title", *title);
        if (auto name = channel.string("Title")) tags.set("Album", *name);
        add(files, episode, options_.tags ? MaybeDictionary(tags) : std::nullopt);
      }
    }
    return files;
  }

  /// The service goes by names; a folder or a pipe that is called like a song is none.
  void add(std::vector<Listed>& files, const Dictionary& file, const MaybeDictionary& tags) {
    auto path = file.string(key::kFilePath);
    auto found = path ? device_.files().attributes(*path) : FileResult<FileAttributes>(FileError{});
    if (found && found->type == FileType::Regular) files.push_back({*path, found->size, tags});
  }

  std::string lineForPrograms(uint32_t mediaType, const Listed& file) const {
    std::string line =
        std::string(kWords[mediaType]) + "\t" + std::to_string(file.size) + "\t" + escaped(file.path);
    if (options_.tags) {
      for (const char* name : kTags) line += "\t" + tagText(file.tags, name);
    }
    return line + "\n";
  }

  static std::string lineForEyes(const Device::Volume& volume, uint32_t mediaType, const Listed& file) {
    std::string word = kWords[mediaType];
    std::string size = byteText(file.size);
    std::string line = "  " + word + std::string(9 - word.size(), ' ') +
                       std::string(size.size() < 8 ? 8 - size.size() : 0, ' ') + size + "  " +
                       escaped(file.path.substr(std::min(file.path.size(), volume.path.size() + 1)));
    std::string tags;
    for (const char* name : {"Title", "Artist", "Album", "Duration"}) {
      std::string text = tagText(file.tags, name);
      if (!text.empty()) tags += (tags.empty() ? "" : ", ") + text;
    }
    return line + (tags.empty() ? "" : "  (" + tags + ")") + "\n";
  }

  /// The listings pass over a folder that cannot be read; nobody should take its files for gone.
  void tellUnreadableFolders(const Device::Volume& volume) {
    MaybeArray folders = device_.service().recursiveFolderLists(volume.path);
    if (!folders) return;
    for (const Value& folder : folders->snapshot()) {
      std::string path = folder.string().value_or("");
      auto found = device_.files().linkAttributes(path);
      if (!found || found->type != FileType::Directory) continue;
      auto readable = device_.files().list(path);
      if (!readable) tellUnreadable(path, readable.error());
    }
  }

  void tellUnreadable(const std::string& path, const FileError& error) {
    everythingWasRead_ = false;
    events_.complained(path, error.words());
  }

  Events& events_;
  Device& device_;
  const ListOptions& options_;
  const VolumeBounds bounds_;
  const bool forEyes_;
  size_t count_ = 0;
  uint64_t bytes_ = 0;
  bool everythingWasRead_ = true;
};

}  // namespace

ExitStatus listMedia(const ListOptions& options, const Errand& errand) {
  Device device(options.volumes, errand);
  Listing listing(errand, device, options);
  for (const Device::Volume& volume : device.volumes()) listing.show(volume);
  listing.showTotal();
  return listing.everythingWasRead() ? ExitStatus::AllDone : ExitStatus::SomeFailed;
}

}  // namespace umsctl
