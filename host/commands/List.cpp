#include "commands/List.h"

#include <algorithm>

#include "Amounts.h"
#include "Colour.h"
#include "EscapedName.h"
#include "LongListing.h"
#include "Paths.h"
#include "PhaseLine.h"
#include "ShownTags.h"
#include "Terminal.h"
#include "VolumeBounds.h"
#include "VolumeHeadline.h"
#include "WatchedFiles.h"
#include "podcast/PodcastShelf.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

constexpr const char* kWords[] = {"", "music", "image", "video", "podcast"};
/// In the order of the fields.
constexpr ShownTag kFields[] = {ShownTag::Title,       ShownTag::Artist, ShownTag::Album,    ShownTag::Genre,
                                ShownTag::TrackNumber, ShownTag::Year,   ShownTag::Duration, ShownTag::Pixels,
                                ShownTag::DateTaken,   ShownTag::Camera, ShownTag::Codecs};
/// What a person is shown of them in a line.
constexpr ShownTag kForEyes[] = {ShownTag::Title,  ShownTag::Artist,    ShownTag::Album,  ShownTag::Duration,
                                 ShownTag::Pixels, ShownTag::DateTaken, ShownTag::Camera, ShownTag::Codecs};
/// In the order of the fields that programs get.
constexpr const char* kTags[] = {"Title",  "Artist",     "Album",     "Genre",  "TrackNumber",
                                 "Year",   "Duration",   "Width",     "Height", "DateTaken",
                                 "Camera", "VideoCodec", "AudioCodec"};
constexpr const char* kTagFields[] = {"title",  "artist",      "album",      "genre",  "track",
                                      "year",   "seconds",     "width",      "height", "taken",
                                      "camera", "video_codec", "audio_codec"};

std::vector<Dictionary> dictionariesOf(const MaybeArray& array) {
  std::vector<Dictionary> dictionaries;
  if (!array) return dictionaries;
  for (const Value& element : array->snapshot()) {
    if (auto dictionary = element.dictionary()) dictionaries.push_back(*dictionary);
  }
  return dictionaries;
}

class Listing {
 public:
  Listing(const Errand& errand, WatchedFiles& files, Device& device, const ListOptions& options)
      : errand_(errand),
        events_(errand.events()),
        files_(files),
        device_(device),
        options_(options),
        bounds_(options.volumes),
        forEyes_(options.isLong || outputIsTerminal()),
        isTable_(options.isLong && !errand.wishes().json) {}

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
    events_.remarked(countText(count_, "file") + ", " + byteText(bytes_) + "\n");
  }

  bool everythingWasRead() const { return everythingWasRead_; }

 private:
  void showType(const Device::Volume& volume, uint32_t mediaType) {
    auto files = found(volume, mediaType);
    tellOfMending();
    std::sort(files.begin(), files.end(),
              [](const Listed& left, const Listed& right) { return comesBefore(left.path, right.path); });
    readTags(files);
    for (const Listed& file : files) bytes_ += file.size;
    count_ += files.size();
    if (isTable_)
      return events_.remarked(longListing(mediaType, files, volume.path, outputColumns(), outputHasColour()));
    for (const Listed& file : files) {
      errand_.stopIfCancelled();
      std::string line = forEyes_ ? lineForEyes(volume, mediaType, file) : lineForPrograms(mediaType, file);
      events_.shown({line, "file", fieldsOf(volume, mediaType, file)});
    }
  }

  bool wantsTags() const { return options_.tags || options_.isLong; }

  std::vector<std::pair<const char*, Shown::Field>> fieldsOf(const Device::Volume& volume, uint32_t mediaType,
                                                             const Listed& file) const {
    std::vector<std::pair<const char*, Shown::Field>> fields{{"volume", uint64_t{volume.index}},
                                                             {"type", std::string(kWords[mediaType])},
                                                             {"bytes", file.size},
                                                             {"path", file.path}};
    if (wantsTags() && !file.tags) fields.emplace_back("unreadable", true);
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

  std::vector<Listed> found(const Device::Volume& volume, uint32_t mediaType) {
    constexpr const char* kPhases[] = {"", "Looking for music", "Looking for images", "Looking for videos",
                                       "Looking for podcasts"};
    WatchedFiles::Phase phase(files_, kPhases[mediaType]);
    return mediaType == kMediaPodcast ? episodes(volume.index) : media(volume.index, mediaType);
  }

  std::vector<Listed> media(uint32_t diskIndex, uint32_t mediaType) {
    std::vector<Listed> files;
    for (const Dictionary& file :
         dictionariesOf(device_.service().fileNameListWithFolderStructure(0, mediaType, diskIndex)))
      add(files, file, std::nullopt);
    return files;
  }

  /// File by file, and not with the service's listing: that may take minutes on a full device, in which
  /// nothing could be shown, and it leaves out the files whose tags cannot be read.
  void readTags(std::vector<Listed>& files) {
    if (!wantsTags()) return;
    PhaseLine phase(errand_.wishes());
    for (size_t i = 0; i < files.size(); ++i) {
      phase.step("Reading tags", i, files.size());
      if (!files[i].tags) files[i].tags = device_.tagsOf(files[i].path);
    }
  }

  /// Looking at channels has the service mend their indexes.
  void tellOfMending() {
    for (const std::string& path : files_.takeSetAside()) {
      everythingWasRead_ = false;
      events_.complained(path, kSetAside);
    }
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
        add(files, episode, tags);
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
      for (ShownTag field : kFields) line += "\t" + shownTag(file.tags, field);
    }
    return line + "\n";
  }

  std::string lineForEyes(const Device::Volume& volume, uint32_t mediaType, const Listed& file) const {
    std::string word = kWords[mediaType];
    std::string size = byteText(file.size);
    std::string line = "  " + word + std::string(9 - word.size(), ' ') +
                       std::string(size.size() < 8 ? 8 - size.size() : 0, ' ') + size + "  " +
                       escaped(file.path.substr(std::min(file.path.size(), volume.path.size() + 1)));
    std::string tags;
    for (ShownTag tag : kForEyes) {
      std::string text = options_.tags ? shownTag(file.tags, tag) : "";
      if (!text.empty()) tags += (tags.empty() ? "" : ", ") + text;
    }
    return line + (tags.empty() ? "" : "  (" + tags + ")") + "\n";
  }

  /// The listings pass over a folder that cannot be read; nobody should take its files for gone.
  void tellUnreadableFolders(const Device::Volume& volume) {
    std::vector<FileError> unreadable;
    {
      WatchedFiles::Phase phase(files_, "Looking at folders");
      MaybeArray folders = device_.service().recursiveFolderLists(volume.path);
      for (const Value& folder : folders ? folders->snapshot() : std::vector<Value>()) {
        std::string path = folder.string().value_or("");
        auto found = device_.files().linkAttributes(path);
        if (!found || found->type != FileType::Directory) continue;
        auto readable = device_.files().list(path);
        if (!readable) unreadable.push_back({readable.error().systemNumber, readable.error().action, path});
      }
    }
    for (const FileError& error : unreadable) tellUnreadable(error.path, error);
  }

  void tellUnreadable(const std::string& path, const FileError& error) {
    everythingWasRead_ = false;
    events_.complained(path, error.words());
  }

  const Errand& errand_;
  Events& events_;
  WatchedFiles& files_;
  Device& device_;
  const ListOptions& options_;
  const VolumeBounds bounds_;
  const bool forEyes_;
  const bool isTable_;
  size_t count_ = 0;
  uint64_t bytes_ = 0;
  bool everythingWasRead_ = true;
};

}  // namespace

ExitStatus listMedia(const ListOptions& options, const Errand& errand) {
  auto files = std::make_shared<WatchedFiles>(errand);
  Device device(options.volumes, errand, nullptr, files);
  Listing listing(errand, *files, device, options);
  for (const Device::Volume& volume : device.volumes()) listing.show(volume);
  listing.showTotal();
  return listing.everythingWasRead() ? ExitStatus::AllDone : ExitStatus::SomeFailed;
}

}  // namespace umsctl
