/// A device with tagged files: the reader knows every file but those that a test excludes.
#pragma once

#include "ListingFileSystem.h"
#include "LogExpectations.h"
#include "ScriptedTags.h"
#include "TypedEntries.h"

namespace umsservice::testing {

class ListingsTest : public DeviceTest {
 protected:
  ListingsTest() {
    surroundings.environment.fileSystem = listing;
    surroundings.environment.mediaInfoFactory = tags;
    service = surroundings.makeService();
    service->addDiskInformation(disk(1, internal));
    service->addDiskInformation(disk(2, card));
  }

  static Dictionary tagsOf(const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return Dictionary{{"Title", "Title of " + name}, {key::kFileName, name}, {key::kFilePath, path},
                      {key::kFileSize, uint64_t{7}}, {"AlbumArt", Data(3)},  {"Artist", "Someone"}};
  }

  void put(const std::string& relative) { sandbox.file(relative, "la"); }
  /// A text of each dictionary of a listing; "nil" for no listing at all.
  static Lines texts(const MaybeArray& files, const char* name) {
    if (!files) return {"nil"};
    Lines found;
    for (const Value& file : files->snapshot())
      found.push_back(file.dictionary()->string(name).value_or("(none)"));
    return found;
  }
  Lines paths(const MaybeArray& files) const {
    Lines found = texts(files, key::kFilePath);
    for (std::string& path : found) path = plain(surroundings, path);
    return found;
  }

  std::shared_ptr<ListingFileSystem> listing = std::make_shared<ListingFileSystem>(surroundings.files);
  std::shared_ptr<ScriptedTags> tags = std::make_shared<ScriptedTags>(tagsOf);
};

}  // namespace umsservice::testing
