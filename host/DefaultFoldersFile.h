/// A person's own device profile: which folders of a device hold which media, as a JSON file tells.
///
///   {
///     "internal": { "music": "/Songs", "image": "/DCIM", "video": "/Films", "podcast": "/Podcasts" },
///     "card":     { "music": "/Songs" }
///   }
///
/// Every part may be left out: the usual folder then stays. A folder is a path from the volume on; the "/" at
/// its beginning may be missing. Anything else in the file is an error, so that a slip of the pen moves no
/// files. Nothing changes once it is read; safe from any thread.
#pragma once

#include <map>
#include <string>

#include "umsservice/FileSystem.h"
#include "umsservice/ProfileInfo.h"

namespace umsctl {

class DefaultFoldersFile final : public umsservice::ProfileInfo {
 public:
  using MaybeString = umsservice::MaybeString;
  /// Folders by kind of media.
  using Folders = std::map<std::string, std::string>;

  /// The parts of a profile.
  static constexpr const char* kInternal = "internal";
  static constexpr const char* kCard = "card";

  /// The part named `internal` answers for internal memory, that named `card` for a card.
  /// Throws `Refusal` (usage) for a file that cannot be read or understood, with line and cause.
  DefaultFoldersFile(umsservice::FileSystem& files, const std::string& path, const char* internal = kInternal,
                     const char* card = kCard);

  MaybeString contentsMusicDefaultFolderInternal(const MaybeString&) override { return internal("music"); }
  MaybeString contentsMusicDefaultFolderExternal(const MaybeString&) override { return card("music"); }
  MaybeString contentsImageDefaultFolderInternal(const MaybeString&) override { return internal("image"); }
  MaybeString contentsImageDefaultFolderExternal(const MaybeString&) override { return card("image"); }
  MaybeString contentsMovieDefaultFolderInternal(const MaybeString&) override { return internal("video"); }
  MaybeString contentsMovieDefaultFolderExternal(const MaybeString&) override { return card("video"); }
  MaybeString contentsPodcastDefaultFolderInternal(const MaybeString&) override {
    return internal("podcast");
  }
  MaybeString contentsPodcastDefaultFolderExternal(const MaybeString&) override { return card("podcast"); }

 private:
  MaybeString internal(const char* kind) const { return folderOf(internal_, kind); }
  MaybeString card(const char* kind) const { return folderOf(card_, kind); }
  MaybeString folderOf(const std::string& part, const char* kind) const;

  const std::string internal_;
  const std::string card_;
  std::map<std::string, Folders> folders_;  ///< by part
};

}  // namespace umsctl
