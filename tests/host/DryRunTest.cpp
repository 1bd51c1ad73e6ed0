#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "HostTest.h"
#include "JsonLines.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

/// Every item below a folder with what a change would leave different: kind, size, time to the nanosecond.
Lines snapshotOf(const std::string& folder) {
  Lines items;
  auto note = [&items](const std::string& path) {
    struct stat found {};
    EXPECT_EQ(lstat(path.c_str(), &found), 0);
    items.push_back(path + " " + std::to_string(found.st_mode) + " " + std::to_string(found.st_size) + " " +
                    std::to_string(found.st_mtim.tv_sec) + "." + std::to_string(found.st_mtim.tv_nsec) + " " +
                    std::to_string(found.st_ctim.tv_sec) + "." + std::to_string(found.st_ctim.tv_nsec) + " " +
                    std::to_string(found.st_ino));
  };
  note(folder);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) note(entry.path().string());
  std::sort(items.begin(), items.end());
  return items;
}

class DryRun : public HostTest {
 protected:
  std::string other = sandbox.folder("other");
  std::string here = sandbox.folder("here");

  /// Runs twice, in words and for programs, and finds everything below the sandbox as it was.
  Ended rehearsed(std::vector<std::string> arguments) {
    arguments.emplace_back("--dry-run");
    const Lines before = snapshotOf(sandbox.path());
    Ended ended = umsctl(arguments);
    EXPECT_EQ(snapshotOf(sandbox.path()), before) << ended.output;
    EXPECT_NE(ended.output.find("nothing has been changed\n"), std::string::npos)
        << ended.output << ended.error;
    arguments.emplace_back("--json");
    Ended told = umsctl(arguments);
    EXPECT_EQ(told.status, ended.status);
    EXPECT_EQ(snapshotOf(sandbox.path()), before) << told.output;
    for (const Json& item : objectsOf(told, "item")) EXPECT_EQ(item["dry_run"], true);
    plan = objectsOf(told, "plan").at(0);
    return ended;
  }
  /// What the volume's room comes to, in bytes.
  int64_t roomTaken(size_t volume = 0) const {
    const Json& room = plan["volumes"].at(volume);
    return room["free_before"].get<int64_t>() - room["free_after"].get<int64_t>();
  }
  /// A channel on the phone, whose index names an episode that is gone as well: whoever looks at it mends it.
  void makeChannel() {
    const std::string song = media("plain-hum.mp3"), tone = media("morning-tone.mp3");
    std::string json = sandbox.file("news.json", R"({"Title": "News", "children": [
        {"Title": "One", "Url": "http://x/1.mp3", "FilePath": ")" +
                                                     song + R"("},
        {"Title": "Two", "Url": "http://x/2.mp3", "FilePath": ")" +
                                                     tone + R"("}]})");
    ASSERT_EQ(umsctl({"podcast", "push", "--internal", phone, "--from-json", json}).status, 0);
    ASSERT_TRUE(std::filesystem::remove(phone + "/Podcast/News/morning-tone.mp3"));
  }

  Json plan;
};

TEST_F(DryRun, OfPushShowsThePlanAndTouchesNothing) {
  sandbox.file("phone/Music/plain-hum.mp3", "old");
  Ended ended = rehearsed(pushing({media("plain-hum.mp3"), media("harbour.mp4"), media("notes.txt")}));
  EXPECT_EQ(ended.status, 1);  // as the push would end
  auto lines = linesOf(ended.output);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[0], "skip     " + phone + "/Music/plain-hum.mp3  (already there)");
  EXPECT_EQ(lines[1], "copy     " + phone + "/DCIM/Camera/harbour.mp4");
  EXPECT_EQ(lines[2], "1 to copy (12.3 kB), 1 to skip, 1 would fail");
  EXPECT_NE(lines[3].find("volume 0, internal, " + phone + ": "), std::string::npos);
  EXPECT_NE(lines[3].find(" after (16.4 kB less)"), std::string::npos) << lines[3];
  EXPECT_EQ(ended.causes(),
            "umsctl: " + media("notes.txt") + ": by its name it is no music, image or video file\n");
  EXPECT_EQ(roomTaken(), 4 * 4096);  // three blocks for the film, one for its subtitles
}

TEST_F(DryRun, SaysWhatEachPolicyDoesAboutANameThatIsTaken) {
  sandbox.file("phone/Music/plain-hum.mp3", "old");
  rehearsed(pushing({"--on-conflict", "overwrite", media("plain-hum.mp3")}));
  EXPECT_EQ(plan["clashes"].at(0)["action"], "replace");
  EXPECT_EQ(plan["clashes"].at(0)["destination"], phone + "/Music/plain-hum.mp3");
  Ended asking =
      umsctl(pushing({"-n", "--on-conflict", "ask", media("plain-hum.mp3")}), {.atTerminal = true});
  EXPECT_NE(asking.output.find("0 to copy (0 B), 1 to ask about\r\n"), std::string::npos) << asking.output;
  Ended told = withoutWords(umsctl(pushing({"-n", "--json", media("plain-hum.mp3")}), {.atTerminal = true}));
  EXPECT_EQ(objectsOf(told, "plan").at(0)["clashes"].at(0)["action"], "ask");
  rehearsed(pushing({"--on-conflict", "ask", media("plain-hum.mp3")}));  // nobody could be asked
  EXPECT_EQ(plan["clashes"].at(0)["action"], "skip");
  rehearsed(pushing({media("plain-hum.mp3")}));
  EXPECT_EQ(plan["clashes"].at(0)["action"], "skip");
}

TEST_F(DryRun, FindsTwoFilesOfOneNameInTheList) {
  std::string first = sandbox.file("a/same.mp3", "first"), second = sandbox.file("b/same.mp3", "second");
  rehearsed(pushing({"--on-conflict", "overwrite", first, second}));
  ASSERT_EQ(plan["clashes"].size(), 1u);
  EXPECT_EQ(plan["clashes"].at(0)["source"], second);
}

TEST_F(DryRun, KnowsThatAVolumeWouldBeFull) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume small(phone, 1 << 20);
  std::string film = sandbox.patternFile("film.mp4", 700'000),
              other = sandbox.patternFile("other.mp4", 700'000);
  Ended ended = rehearsed(pushing({film, other}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.error.find("umsctl: " + other + ": not enough room on the volume"), std::string::npos);
  rehearsed({"sync", "--internal", phone, "--card", card, film, other});
  EXPECT_EQ(plan["volumes"].at(0)["path"], phone);
  EXPECT_EQ(roomTaken(0), 700'416);
  EXPECT_EQ(roomTaken(1), 700'416);
  EXPECT_EQ(small.freeBytes(), plan["volumes"].at(0)["free_before"]);
}

TEST_F(DryRun, OfSyncAndSendAndPullTouchesNothing) {
  EXPECT_EQ(rehearsed({"sync", "--internal", phone, "--card", card, media("plain-hum.mp3")}).status, 0);
  umsctl(pushing({media("plain-hum.mp3"), media("harbour.mp4")}));
  const std::string song = phone + "/Music/plain-hum.mp3", film = phone + "/DCIM/Camera/harbour.mp4";
  Ended sent = rehearsed({"send", "--from-internal", phone, "--internal", other, song, film});
  EXPECT_EQ(linesOf(sent.output).front(), "copy     " + other + "/Music/plain-hum.mp3");
  EXPECT_EQ(plan["volumes"].at(0)["path"], other);
  Ended pulled = rehearsed({"pull", "--internal", phone, "--into", here + "/new/folder", film});
  EXPECT_EQ(linesOf(pulled.output).front(), "copy     " + here + "/new/folder/harbour.mp4");
  EXPECT_EQ(plan["volumes"].at(0)["kind"], "computer");
}

TEST_F(DryRun, OfPutAndGetTouchesNothing) {
  EXPECT_EQ(rehearsed({"put", "--internal", phone, media("notes.txt"), phone + "/a/b/notes.txt"}).status, 0);
  EXPECT_EQ(roomTaken(), 4096);
  std::string song = sandbox.file("phone/song.mp3", "la");
  EXPECT_EQ(rehearsed({"get", "--internal", phone, song, here}).status, 0);
  sandbox.file("here/song.mp3", "old");
  rehearsed({"get", "--internal", phone, "--on-conflict", "overwrite", song, here});
  EXPECT_EQ(plan["clashes"].at(0)["action"], "replace");
}

TEST_F(DryRun, OfRmNeedsNoConsentAndGivesTheRoomBack) {
  umsctl(pushing({media("plain-hum.mp3"), media("harbour.mp4")}));
  Ended ended = rehearsed({"rm", "--internal", phone, phone + "/DCIM/Camera/harbour.mp4"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(linesOf(ended.output).front(), "delete   " + phone + "/DCIM/Camera/harbour.mp4");
  EXPECT_LT(roomTaken(), 0);
}

TEST_F(DryRun, OfMkdirAndRmdirTouchesNothing) {
  Ended made = rehearsed({"mkdir", phone + "/a/b"});
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(linesOf(made.output).front(), "make     " + phone + "/a/b");
  sandbox.file("phone/full/deep/song.mp3", "la la");
  EXPECT_EQ(rehearsed({"rmdir", phone + "/full"}).status, 1);
  Ended removed = rehearsed({"rmdir", "--recursive", phone + "/full"});
  EXPECT_EQ(removed.status, 0);
  EXPECT_EQ(linesOf(removed.output)[1], "1 file to remove (5 B)");
  EXPECT_EQ(plan["items"], 1);
  EXPECT_EQ(plan["volumes"].at(0)["kind"], "folder");
}

TEST_F(DryRun, OfRmdirForeseesWhatPermissionsForbid) {
  sandbox.file("phone/full/locked/song.mp3", "la la");
  for (const mode_t mode : {mode_t{0500}, mode_t{0}}) {
    chmod(sandbox.at("phone/full/locked").c_str(), mode);
    Ended foreseen = umsctl({"rmdir", "-n", "-r", phone + "/full"}, {.withoutRootPowers = true});
    Ended real = umsctl({"rmdir", "-y", "-r", phone + "/full"}, {.withoutRootPowers = true});
    chmod(sandbox.at("phone/full/locked").c_str(), 0700);
    EXPECT_EQ(foreseen.status, 1);
    EXPECT_EQ(foreseen.error, real.error);
    EXPECT_NE(real.error.find(mode == 0 ? "locked cannot be read: Permission denied"
                                        : "locked/song.mp3 cannot be removed: Permission denied"),
              std::string::npos)
        << real.error;
    EXPECT_TRUE(exists(phone + "/full/locked/song.mp3"));
  }
}

TEST_F(DryRun, OfPodcastCommandsTouchesNothing) {
  makeChannel();
  const std::string json = sandbox.at("news.json");
  Ended pushed = rehearsed({"podcast", "push", "--internal", phone, "--from-json", json});
  EXPECT_EQ(linesOf(pushed.output).front(),
            "skip     " + phone + "/Podcast/News/plain-hum.mp3  (already there)");
  EXPECT_EQ(linesOf(pushed.output)[1], "copy     " + phone + "/Podcast/News/morning-tone.mp3");
  EXPECT_EQ(rehearsed({"podcast", "sync", "--internal", phone, "--card", card, "--from-json", json}).status,
            0);
  EXPECT_EQ(rehearsed({"podcast", "rm", "--internal", phone, "News", "One"}).status, 0);
  Ended removed = rehearsed({"podcast", "rm", "--internal", phone, "News"});
  EXPECT_EQ(linesOf(removed.output).front(), "delete   " + phone + "/Podcast/News/plain-hum.mp3");
  EXPECT_EQ(linesOf(removed.output)[1], "1 to delete (8.3 kB)");
  Ended sent = rehearsed({"podcast", "send", "--from-internal", phone, "--internal", other, "News"});
  EXPECT_EQ(linesOf(sent.output).front(), "copy     " + other + "/Podcast/News/plain-hum.mp3");
}

TEST_F(DryRun, EndsAsTheCommandDoes) {
  const std::vector<Lines> lines{
      pushing({media("plain-hum.mp3"), media("sunrise.jpg"), media("notes.txt")}),
      {"pull", "--internal", phone, "--into", here, phone + "/Music/plain-hum.mp3"},
      {"rm", "--yes", "--internal", phone, phone + "/Music/plain-hum.mp3", phone + "/none.mp3"},
  };
  for (const Lines& line : lines) {
    Lines dry = line;
    for (const char* option : {"-n", "--json"}) dry.emplace_back(option);
    Lines real = line;
    real.emplace_back("--json");
    const Ended foreseen = umsctl(dry), done = umsctl(real);
    EXPECT_EQ(foreseen.status, done.status);
    Json expected = objectsOf(done, "result").at(0);
    expected["dry_run"] = true;
    EXPECT_EQ(objectsOf(foreseen, "result").at(0), expected);
  }
}

}  // namespace
}  // namespace umsservice::testing
