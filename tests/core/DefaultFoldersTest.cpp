#include "CoreRoom.h"

namespace umsservice::testing {
namespace {

class DefaultFolders : public CoreTest {
 protected:
  const umsservice::DefaultFolders& folders = context.defaultFolders;
  ScriptedProfile& profile = *surroundings.profile;

  MaybeString full(int32_t diskType, int32_t mediaType) const {
    return folders.defaultMediaContentsPath("/Volumes/PHONE", diskType, mediaType);
  }
  /// Eight answers that tell each query from the others.
  void answerEverything() {
    profile.musicInternal = "/mi", profile.musicExternal = "/me";
    profile.imageInternal = "/ii", profile.imageExternal = "/ie";
    profile.movieInternal = "/vi", profile.movieExternal = "/ve";
    profile.podcastInternal = "/pi", profile.podcastExternal = "/pe";
  }
  void addVolumes() {
    context.volumes.addDiskInformation(disk(2, "card"));
    context.volumes.addDiskInformation(disk(2, "second card"));
  }
};

constexpr auto kUnsupported = "Do not support media type. Media Type = %d";

TEST_F(DefaultFolders, TheFullFolderIsTheProfilesAnswerJoinedWithNothingBetween) {
  answerEverything();
  const char* kInternal[] = {"/mi", "/ii", "/vi", "/pi"};
  const char* kExternal[] = {"/me", "/ie", "/ve", "/pe"};
  for (int32_t mediaType = 1; mediaType <= 4; ++mediaType) {
    EXPECT_EQ(full(1, mediaType), std::string("/Volumes/PHONE") + kInternal[mediaType - 1]);
    for (int32_t diskType : {0, 2, 3, -1})
      EXPECT_EQ(full(diskType, mediaType), std::string("/Volumes/PHONE") + kExternal[mediaType - 1]);
  }
  profile.musicInternal = "Tunes";
  EXPECT_EQ(full(1, kMediaMusic), "/Volumes/PHONETunes");
  EXPECT_EQ(profile.lastLocation(), "location-1");
}

TEST_F(DefaultFolders, TheFullFolderFallsBackToFixedNames) {
  for (int32_t diskType : {1, 2}) {
    EXPECT_EQ(full(diskType, kMediaMusic), "/Volumes/PHONE/Music");
    EXPECT_EQ(full(diskType, kMediaImage), "/Volumes/PHONE/DCIM/Camera");
    EXPECT_EQ(full(diskType, kMediaVideo), "/Volumes/PHONE/DCIM/Camera");
    EXPECT_EQ(full(diskType, kMediaPodcast), "/Volumes/PHONE/Podcast");
  }
  profile.musicInternal = "";
  EXPECT_EQ(full(1, kMediaMusic), "/Volumes/PHONE/Music");
  profile.musicInternal = "/Music";
  EXPECT_EQ(full(1, kMediaMusic), "/Volumes/PHONE/Music");
}

TEST_F(DefaultFolders, TheVolumeItselfHasNoFullFolderAndNoLine) {
  EXPECT_FALSE(full(1, kMediaVolumeItself).has_value());
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(DefaultFolders, TheFullFolderOfAnUnknownTypeIsNilAndSaidSo) {
  for (int32_t mediaType : {0, 5, 7, -1}) {
    expectLine(surroundings, 3, "-[UMSService defaultMediaContentsPath:diskType:mediaType:]",
               stringWithFormat(kUnsupported, {mediaType}),
               [&] { EXPECT_FALSE(full(1, mediaType).has_value()); });
  }
}

TEST_F(DefaultFolders, ThereIsNoFullFolderWithoutAVolume) {
  EXPECT_FALSE(folders.defaultMediaContentsPath(std::nullopt, 1, kMediaMusic).has_value());
}

TEST_F(DefaultFolders, TheRelativeFolderIsChosenByTheIndexAndNotByTheType) {
  addVolumes();
  answerEverything();
  const char* kFirst[] = {"/mi", "/ii", "/vi", "/pi"};
  const char* kOthers[] = {"/me", "/ie", "/ve", "/pe"};
  for (uint32_t mediaType = 1; mediaType <= 4; ++mediaType) {
    EXPECT_EQ(folders.defaultUmsMediaPath(0, mediaType), kFirst[mediaType - 1]);
    EXPECT_EQ(folders.defaultUmsMediaPath(1, mediaType), kOthers[mediaType - 1]);
  }
}

TEST_F(DefaultFolders, TheRelativeFolderFallsBackOnlyWhereTheProfileDoesNotAnswer) {
  addVolumes();
  EXPECT_EQ(folders.defaultUmsMediaPath(0, kMediaMusic), "Music");
  EXPECT_EQ(folders.defaultUmsMediaPath(0, kMediaImage), "DCIM/Camera");
  EXPECT_EQ(folders.defaultUmsMediaPath(1, kMediaVideo), "DCIM/Camera");
  EXPECT_EQ(folders.defaultUmsMediaPath(1, kMediaPodcast), "Podcast");
  profile.musicInternal = "";
  EXPECT_EQ(folders.defaultUmsMediaPath(0, kMediaMusic), "");
}

TEST_F(DefaultFolders, ThereIsNoRelativeFolderForAnUnknownIndexOrType) {
  addVolumes();
  EXPECT_FALSE(folders.defaultUmsMediaPath(2, kMediaMusic).has_value());
  for (uint32_t mediaType : {0u, 5u, 6u, 7u, 0xffffffffu})
    EXPECT_FALSE(folders.defaultUmsMediaPath(0, mediaType).has_value());
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(DefaultFolders, TheInternalFolderEndsWithASlash) {
  answerEverything();
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaMusic), "/mi/");
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaImage), "/ii/");
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaVideo), "/vi/");
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaPodcast), "/pi/");
  profile.musicInternal = "";
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaMusic), "/");
}

TEST_F(DefaultFolders, TheInternalFolderFallsBackToAFixedNameBetweenSlashes) {
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaMusic), "/Music/");
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaImage), "/DCIM/Camera/");
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaVideo), "/DCIM/Camera/");
  EXPECT_EQ(folders.getMediaDefaultPath(kMediaPodcast), "/Podcast/");
}

TEST_F(DefaultFolders, TheInternalFolderOfAnUnknownTypeIsNilAndSaidSo) {
  for (int32_t mediaType : {0, 5, 6, 7}) {
    expectLine(surroundings, 3, "-[UMSService getMediaDefaultPath:]",
               stringWithFormat(kUnsupported, {mediaType}),
               [&] { EXPECT_FALSE(folders.getMediaDefaultPath(mediaType).has_value()); });
  }
}

TEST_F(DefaultFolders, ReadsWhatTheHostWroteIntoAVolumesDictionary) {
  answerEverything();
  Array list{Dictionary{{key::kDiskIndex, 0u}}, Dictionary{{key::kDiskIndex, 1u},
                                                           {key::kVolumePath, "/v"},
                                                           {"DefaultMusicPath", "m"},
                                                           {"DefaultImagePath", "i"},
                                                           {"DefaultMoviePath", "v"},
                                                           {"DefaultPodcastPath", "p"}}};
  using umsservice::DefaultFolders;
  const std::pair<int32_t, const char*> kRows[] = {{1, "m"}, {2, "i"}, {3, "v"}, {4, "p"}, {6, "/v"}};
  for (const auto& [mediaType, folder] : kRows) {
    EXPECT_EQ(DefaultFolders::defaultMediaContentsPath(list, 1, mediaType), folder);
    EXPECT_FALSE(DefaultFolders::defaultMediaContentsPath(list, 0, mediaType).has_value());
    EXPECT_FALSE(DefaultFolders::defaultMediaContentsPath(list, 2, mediaType).has_value());
    EXPECT_FALSE(DefaultFolders::defaultMediaContentsPath(MaybeArray(), 1, mediaType).has_value());
  }
  for (int32_t mediaType : {0, 5, 7})
    EXPECT_FALSE(DefaultFolders::defaultMediaContentsPath(list, 1, mediaType).has_value());
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(DefaultFolders, WithoutAProfileLibraryTheFixedNamesHold) {
  surroundings.environment.profileInfo = nullptr;
  ServiceContext bare(surroundings.environment, "<service>", std::nullopt);
  bare.volumes.addDiskInformation(disk(1, "phone"));
  EXPECT_EQ(bare.defaultFolders.defaultMediaContentsPath("/v", 1, kMediaMusic), "/v/Music");
  EXPECT_EQ(bare.defaultFolders.defaultUmsMediaPath(0, kMediaMusic), "Music");
  EXPECT_EQ(bare.defaultFolders.getMediaDefaultPath(kMediaMusic), "/Music/");
}

}  // namespace
}  // namespace umsservice::testing
