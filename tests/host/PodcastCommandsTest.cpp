#include <signal.h>
#include <stdlib.h>

#include <optional>

#include "HostTest.h"
#include "JsonLines.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class PodcastCommands : public HostTest {
 protected:
  const std::string casts = sandbox.folder("casts");
  const std::string feed = TEST_DATA "/podcast/harbour-notes.rss";
  const std::string notes = phone + "/Podcast/Harbour Notes";

  void download(const std::string& name) const { sandbox.file("casts/" + name, bytesOf(media(name))); }
  void downloadBoth() const {
    download("morning-tone.mp3");
    download("evening-tone.flac");
  }
  /// "podcast COMMAND --internal PHONE" and what follows.
  Lines podcast(const std::string& command, const Lines& more) const {
    Lines arguments{"podcast", command, "--internal", phone};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  Ended push(const Lines& more = {}) const {
    Lines arguments = podcast("push", {"--feed", feed, "--episodes", casts});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return umsctl(arguments);
  }
  Ended pushJson(const std::string& json) const {
    return umsctl(podcast("push", {"--from-json", sandbox.file("channel.json", json)}));
  }
  Ended pushFeed(const std::string& bytes) const {
    return umsctl(podcast("push", {"--feed", sandbox.file("a.rss", bytes), "--episodes", casts}));
  }
  /// Answers each question at a terminal.
  static Ended answering(const Lines& arguments, const Lines& answers) {
    RunningProgram program(arguments, {.atTerminal = true});
    for (size_t i = 0; i < answers.size(); ++i) {
      program.waitForOutput("(y/n/all/none/quit) ", i + 1);
      program.type(answers[i] + "\n");
    }
    return program.wait();
  }
  static std::string lastLine(const Ended& ended) {
    Lines lines = linesOf(ended.output);
    return lines.empty() ? "" : lines.back();
  }
};

/// Where the programs that a test starts keep temporary files.
struct TemporaryPlace {
  explicit TemporaryPlace(const std::string& path) : folder(path) {
    ::setenv("TMPDIR", path.c_str(), 1);  // after `before` has been read
  }
  ~TemporaryPlace() { before ? ::setenv("TMPDIR", before->c_str(), 1) : ::unsetenv("TMPDIR"); }
  TemporaryPlace(const TemporaryPlace&) = delete;
  TemporaryPlace& operator=(const TemporaryPlace&) = delete;

  const std::string folder;
  const std::optional<std::string> before =
      ::getenv("TMPDIR") ? std::optional<std::string>(::getenv("TMPDIR")) : std::nullopt;
};

TEST_F(PodcastCommands, PushPutsTheEpisodesOfAFeedIntoAChannelWithAnIndex) {
  downloadBoth();
  Ended ended = push();
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(lastLine(ended), "2 copied (26.3 kB)");
  EXPECT_EQ(treeOf(phone),
            (Lines{"Podcast/", "Podcast/Harbour Notes/", "Podcast/Harbour Notes/Harbour Notes.xml",
                   "Podcast/Harbour Notes/evening-tone.flac", "Podcast/Harbour Notes/morning-tone.mp3"}));
  std::string index = bytesOf(notes + "/Harbour Notes.xml");
  for (const char* line :
       {"  <WebMaster>web@harbour.example (Ada Quay)</WebMaster>\n", "    <Title>The Morning Ferry</Title>\n",
        "    <FilePath>morning-tone.mp3</FilePath>\n", "    <Length>12902</Length>\n"})
    EXPECT_NE(index.find(line), std::string::npos) << line << index;
}

TEST_F(PodcastCommands, PushLeavesOutWhatIsNotDownloadedAndSaysSo) {
  download("evening-tone.flac");
  Ended ended = push();
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "umsctl: " + feed + ": 1 of 2 episodes are not in the folder and left out\n");
  EXPECT_EQ(treeOf(notes), (Lines{"Harbour Notes.xml", "evening-tone.flac"}));
}

TEST_F(PodcastCommands, PushTreatsConflictsAsPushDoes) {
  downloadBoth();
  push();
  sandbox.file("phone/Podcast/Harbour Notes/morning-tone.mp3", "old");
  Ended skipped = push();
  EXPECT_EQ(skipped.status, 0);
  EXPECT_EQ(lastLine(skipped), "0 copied (0 B), 2 skipped");
  EXPECT_EQ(bytesOf(notes + "/morning-tone.mp3"), "old");
  Ended replaced = push({"--on-conflict", "overwrite"});
  EXPECT_EQ(lastLine(replaced), "2 copied (26.3 kB)");
  EXPECT_EQ(bytesOf(notes + "/morning-tone.mp3"), bytesOf(media("morning-tone.mp3")));
  Ended asked = answering(podcast("push", {"--feed", feed, "--episodes", casts}), {"y", "n"});
  EXPECT_NE(asked.output.find("1 copied (12.9 kB), 1 skipped\r\n"), std::string::npos) << asked.output;
}

TEST_F(PodcastCommands, PushTakesAPodcastWrittenAsJson) {
  std::string song = media("plain-hum.mp3");
  Ended ended = pushJson(R"([{"Title": "A/B", "Link": null, "children": [
      {"Title": "Hum", "Url": "u", "Length": -1, "Duration": 7, "FilePath": ")" +
                         song + R"("}, {"Url": "v", "FilePath": "no/such.mp3"}, {"Url": "w"}]}])");
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(lastLine(ended).substr(0, 8), "1 copied");
  EXPECT_TRUE(lastLine(ended).ends_with(", 2 failed"));
  EXPECT_NE(ended.causes().find("no/such.mp3: No such file or directory\n"), std::string::npos);
  EXPECT_NE(ended.causes().find("umsctl: w: it has no \"FilePath\"\n"), std::string::npos);
  EXPECT_EQ(treeOf(phone + "/Podcast"), (Lines{"A_B/", "A_B/A_B.xml", "A_B/plain-hum.mp3"}));
  EXPECT_NE(bytesOf(phone + "/Podcast/A_B/A_B.xml").find("<Duration>7</Duration>"), std::string::npos);
}

TEST_F(PodcastCommands, PushKnowsEpisodesWithoutAnAddressByTheirFiles) {
  const std::string json = sandbox.file("channel.json", R"({"Title": "News", "children": [
      {"Title": "One", "FilePath": ")" + media("plain-hum.mp3") +
                                                            R"("},
      {"Title": "Two", "Url": "", "FilePath": ")" + media("morning-tone.mp3") +
                                                            R"("}]})");
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(umsctl(podcast("push", {"--on-conflict", "overwrite", "--from-json", json})).status, 0);
  const std::string index = bytesOf(phone + "/Podcast/News/News.xml");
  EXPECT_EQ(index.find("<Url>plain-hum.mp3</Url>"), index.rfind("<Url>plain-hum.mp3</Url>"));
  EXPECT_NE(index.find("<Url>morning-tone.mp3</Url>"), std::string::npos);
  EXPECT_EQ(umsctl(podcast("rm", {"--yes", "News", "One", "Two"})).status, 0);
  EXPECT_FALSE(exists(phone + "/Podcast/News"));
}

TEST_F(PodcastCommands, PushLeavesNothingOfAChannelWithoutAnEpisodeThatCanBeTaken) {
  const std::string gone = R"({"Title": "Gone", "children": [{"Url": "u", "FilePath": "no/such.mp3"}]})";
  const std::string song = media("plain-hum.mp3");
  Ended ended = pushJson(gone);
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.causes().find("no/such.mp3: No such file or directory\n"), std::string::npos)
      << ended.error;
  EXPECT_EQ(lastLine(ended), "0 copied (0 B), 1 failed");
  EXPECT_TRUE(treeOf(phone).empty());
  ended = pushJson("[" + gone + R"(, {"Title": "News", "children": [{"Url": "v", "FilePath": ")" + song +
                   "\"}]}]");
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.output),
            (Lines{"copied   " + phone + "/Podcast/News/plain-hum.mp3", "1 copied (8.3 kB), 1 failed"}));
  EXPECT_EQ(treeOf(phone + "/Podcast"), (Lines{"News/", "News/News.xml", "News/plain-hum.mp3"}));
}

TEST_F(PodcastCommands, PushRefusesWhatIsNoPodcastBeforeAnythingIsWritten) {
  const std::string name = sandbox.at("channel.json");
  const std::pair<const char*, const char*> kRows[] = {
      {"{", "it is no JSON: what stands at byte 2 is wrong"},
      {"[]", "there is no channel in it"},
      {"5", "it is no podcast: an object is expected for a channel"},
      {R"({"children": [{}]})", "a channel has no \"Title\""},
      {R"({"Title": "T"})", "a channel has no episodes (\"children\")"},
      {R"({"Title": "T", "children": []})", "a channel has no episodes (\"children\")"},
      {R"({"Title": "T", "children": [5]})", "one of the \"children\" is no episode: an object is expected"},
  };
  for (const auto& [json, cause] : kRows) {
    Ended ended = pushJson(json);
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.error, "umsctl: " + name + ": " + cause + "\n");
  }
  const std::string rss = sandbox.at("a.rss");
  EXPECT_EQ(pushFeed("<html/>").error, "umsctl: " + rss + ": it is no RSS feed: its root element is html\n");
  EXPECT_EQ(pushFeed("<rss><channel/></rss>").error, "umsctl: " + rss + ": the channel has no title\n");
  EXPECT_EQ(pushFeed("<rss><channel><title>T</title></channel></rss>").error,
            "umsctl: " + rss + ": the channel has no episodes\n");
  EXPECT_EQ(push().error, "umsctl: " + casts + ": none of the 2 episodes of the feed lies here\n");
  EXPECT_EQ(umsctl(podcast("push", {"--from-json", sandbox.at("none")})).error,
            "umsctl: " + sandbox.at("none") + ": No such file or directory\n");
  EXPECT_EQ(treeOf(phone), Lines{});
}

TEST_F(PodcastCommands, PushKeepsEverythingInThePodcastFolderWhateverAFeedSays) {
  sandbox.file("casts/1.mp3", "one");
  sandbox.file("secret.mp3", "secret");
  for (const char* title : {"..", ".", "/", "../../x", "\x1b[31m", "a&#10;b"}) {
    pushFeed(std::string("<rss><channel><title>") + title +
             "</title><item><enclosure url='http://h/1.mp3'/></item>"
             "<item><enclosure url='http://h/..%2fsecret.mp3'/></item></channel></rss>");
    EXPECT_EQ(treeOf(sandbox.path() + "/casts"), Lines{"1.mp3"});
    for (const std::string& path : treeOf(phone)) EXPECT_TRUE(path.starts_with("Podcast/")) << path;
  }
  Ended ended = pushFeed(
      "<rss><channel><title>..</title><item><enclosure url='http://h/1.mp3'/></item></channel></rss>");
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: " + casts + "/1.mp3: its channel's title or its own name is no name for the device\n");
  EXPECT_EQ(lastLine(ended), "0 copied (0 B), 1 failed");
}

TEST_F(PodcastCommands, PushAndSyncFindDownloadsWhosePathNoPlayerTakes) {
  const TemporaryPlace place(sandbox.folder("temporary"));
  const std::string odd = sandbox.folder(" casts2: what? ");
  const std::string file = sandbox.file(" casts2: what? /a:b.mp3", "right");
  sandbox.file("casts2_ what_/a_b.mp3", "of somebody else");
  const std::string rss = sandbox.file("a.rss",
                                       "<rss><channel><title>T</title><item><enclosure "
                                       "url='http://h/a:b.mp3'/></item></channel></rss>");
  const Lines input{"--feed", rss, "--episodes", odd};
  Ended pushed = umsctl(podcast("push", input));
  EXPECT_EQ(pushed.status, 0);
  EXPECT_EQ(pushed.error, "");
  EXPECT_EQ(lastLine(pushed), "1 copied (5 B)");
  EXPECT_EQ(treeOf(phone + "/Podcast"), (Lines{"T/", "T/T.xml", "T/a_b.mp3"}));
  EXPECT_EQ(bytesOf(phone + "/Podcast/T/a_b.mp3"), "right");
  EXPECT_NE(bytesOf(phone + "/Podcast/T/T.xml").find("<FilePath>a_b.mp3</FilePath>"), std::string::npos);

  Ended again = umsctl(podcast("push", input));
  EXPECT_EQ(again.error, "umsctl: " + file + ": already on the device, skipped (see --on-conflict)\n");
  sandbox.file("phone/Podcast/T/a_b.mp3", "old");
  Lines replacing = input;
  replacing.insert(replacing.end(), {"--on-conflict", "overwrite"});
  EXPECT_EQ(lastLine(umsctl(podcast("sync", replacing))), "1 copied (5 B)");
  EXPECT_EQ(bytesOf(phone + "/Podcast/T/a_b.mp3"), "right");
  EXPECT_EQ(bytesOf(file), "right");
  EXPECT_EQ(treeOf(place.folder), Lines{});
}

TEST_F(PodcastCommands, PushSaysWhyAFileCannotGoUnderItsNameOrWithAnother) {
  const std::string blank = sandbox.file("casts/ ", "x");
  EXPECT_EQ(pushJson(R"({"Title": "T", "children": [{"FilePath": ")" + blank + "\"}]}").causes(),
            "umsctl: " + blank + ": its name is no name for the device\n");
  sandbox.file("casts/a:.mp3", "one");
  sandbox.file("casts/a*.mp3", "two");
  Ended ended = pushFeed(
      "<rss><channel><title>U</title><item><enclosure url='http://h/a:.mp3'/></item>"
      "<item><enclosure url='http://h/a*.mp3'/></item></channel></rss>");
  EXPECT_EQ(ended.causes(), "umsctl: http://h/a*.mp3: another episode of the feed has the same file name\n");
  EXPECT_EQ(bytesOf(phone + "/Podcast/U/a_.mp3"), "one");
}

TEST_F(PodcastCommands, PushFailsTheSecondOfTwoEpisodesOfOneFileName) {
  sandbox.file("casts/audio.mp3", "whose?");
  Ended ended = pushFeed(
      "<rss><channel><title>T</title><item><enclosure url='http://h/1/audio.mp3'/></item>"
      "<item><enclosure url='http://h/2/audio.mp3'/></item></channel></rss>");
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.causes(),
            "umsctl: http://h/2/audio.mp3: another episode of the feed has the same file name\n");
  EXPECT_EQ(treeOf(phone + "/Podcast"), (Lines{"T/", "T/T.xml", "T/audio.mp3"}));
}

TEST_F(PodcastCommands, SyncStartsOnTheVolumeSaidAndAddsToTheChannel) {
  download("morning-tone.mp3");
  Lines arguments = podcast("sync", {"--card", card, "--first", "1", "--feed", feed, "--episodes", casts});
  EXPECT_EQ(umsctl(arguments).status, 0);
  download("evening-tone.flac");
  Ended ended = umsctl(arguments);
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(lastLine(ended), "1 copied (13.4 kB), 1 skipped");
  EXPECT_EQ(treeOf(card + "/Podcast/Harbour Notes"),
            (Lines{"Harbour Notes.xml", "evening-tone.flac", "morning-tone.mp3"}));
  EXPECT_EQ(treeOf(phone), Lines{});
}

TEST_F(PodcastCommands, SyncTakesTheVolumeThatHasRoomAndSaysWhenNoneHas) {
  REQUIRE_TMPFS_VOLUMES();
  downloadBoth();
  TmpfsVolume small(phone, 16 * 1024);
  Lines arguments = podcast("sync", {"--feed", feed, "--episodes", casts});
  Ended ended = umsctl(arguments);
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.causes()).front(),
            "umsctl: " + casts + "/morning-tone.mp3: its channel fits on no volume");
  EXPECT_EQ(lastLine(ended), "0 copied (0 B), 2 failed");
  arguments.insert(arguments.end(), {"--card", card});
  EXPECT_EQ(umsctl(arguments).status, 0);
  EXPECT_TRUE(exists(card + "/Podcast/Harbour Notes/Harbour Notes.xml"));
  EXPECT_EQ(treeOf(phone), Lines{});
}

TEST_F(PodcastCommands, LsShowsChannelsAndEpisodesWithDateDurationAndSize) {
  downloadBoth();
  push();
  pushJson(R"({"Title": "A/B", "children": [{"Url": "u", "Title": "odd \u001b[1m", "PublishDate": "soon",
               "FilePath": ")" +
           media("plain-hum.mp3") + "\"}]}");
  Ended ended = umsctl(podcast("ls", {"--card", card}));
  EXPECT_EQ(ended.status, 0);
  Lines lines = linesOf(ended.output);
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_EQ(lines[0], "0  internal  " + phone);
  EXPECT_EQ(lines[1], "  A/B  [A_B]  1 episode");
  EXPECT_EQ(lines[2].substr(0, 26), "    -                  -  ");
  EXPECT_TRUE(lines[2].ends_with("  (plain-hum.mp3)")) << lines[2];
  EXPECT_EQ(lines[2].find('\x1b'), std::string::npos);
  EXPECT_EQ(lines[3], "  Harbour Notes  2 episodes");
  EXPECT_EQ(lines[4], "    2021-03-04      3:07    12.9 kB  The Morning Ferry  (morning-tone.mp3)");
  EXPECT_EQ(lines[5], "    2021-03-11   1:02:03    13.4 kB  The Evening Ferry  (evening-tone.flac)");
  EXPECT_EQ(lines[6], "1  card  " + card);
}

TEST_F(PodcastCommands, LsTellsOfADamagedIndexAndLeavesStrayFilesAlone) {
  sandbox.file("phone/Podcast/News/News.xml", "damaged");
  sandbox.file("phone/Podcast/News/old.xml", "<channel><Title>Old</Title></channel>");
  sandbox.file("phone/Podcast/stray.xml", "<channel><Title>Stray</Title></channel>");
  Ended ended = umsctl(podcast("ls", {}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(linesOf(ended.error),
            (Lines{"umsctl: " + phone + "/Podcast/News/News.xml: it is no index of a podcast channel",
                   "umsctl: " + phone + "/Podcast/News/News.xml.damaged: the damaged index of a podcast " +
                       "channel is kept here; the new one is empty"}));
  EXPECT_EQ(linesOf(ended.output), Lines{"0  internal  " + phone});
  EXPECT_EQ(bytesOf(phone + "/Podcast/News/News.xml.damaged"), "damaged");
  EXPECT_EQ(treeOf(phone + "/Podcast"),
            (Lines{"News/", "News/News.xml", "News/News.xml.damaged", "News/old.xml", "stray.xml"}));
}

TEST_F(PodcastCommands, LsOfAllMediaTellsOfADamagedIndexToo) {
  for (const std::string flag : {"-q", "--json"}) {
    sandbox.file("phone/Podcast/News/News.xml", "damaged");
    Ended ended = umsctl({"ls", "--type", "podcast", flag, "--internal", phone});
    const std::string kept = phone + "/Podcast/News/News.xml.damaged" + (flag == "-q" ? "" : ".2");
    const std::string text = "the damaged index of a podcast channel is kept here; the new one is empty";
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.error, "umsctl: " + kept + ": " + text + "\n");
    EXPECT_EQ(bytesOf(kept), "damaged");
    if (flag == "-q") continue;
    EXPECT_EQ(objectsOf(ended, "message").at(0)["subject"], kept);
    EXPECT_EQ(objectsOf(ended, "message").at(0)["text"], text);
  }
}

TEST_F(PodcastCommands, RmDeletesSingleEpisodesByTitleOrFileAndTheWholeChannel) {
  downloadBoth();
  push();
  Ended refused = umsctl(podcast("rm", {"Harbour Notes"}));
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(
      refused.error,
      "umsctl: nothing is deleted: there is no terminal to ask at (--yes deletes without a question)\n");
  Ended one = umsctl(podcast("rm", {"--yes", "Harbour Notes", "The Morning Ferry"}));
  EXPECT_EQ(one.status, 0);
  EXPECT_EQ(linesOf(one.output), (Lines{"deleted  " + notes + "/morning-tone.mp3", "1 deleted (12.9 kB)"}));
  EXPECT_EQ(treeOf(notes), (Lines{"Harbour Notes.xml", "evening-tone.flac"}));
  EXPECT_EQ(umsctl(podcast("rm", {"--yes", "Harbour Notes", "nothing"})).error,
            "umsctl: nothing: the channel has no such episode\n");
  EXPECT_EQ(umsctl(podcast("rm", {"--yes", "News"})).error,
            "umsctl: News: there is no such channel in " + phone + "/Podcast\n");
  Ended whole = umsctl(podcast("rm", {"--yes", "Harbour Notes"}));
  EXPECT_EQ(whole.status, 0);
  EXPECT_EQ(linesOf(whole.output).back(), "1 deleted (13.4 kB)");
  EXPECT_EQ(treeOf(phone), Lines{"Podcast/"});
}

TEST_F(PodcastCommands, RmAsksAtATerminal) {
  downloadBoth();
  push();
  for (const char* answer : {"n", "y"}) {
    RunningProgram running(podcast("rm", {"Harbour Notes"}), {.atTerminal = true});
    running.waitForOutput(
        "Delete the channel Harbour Notes with 2 episodes (26.3 kB) from the device? (y/n) ");
    running.type(std::string(answer) + "\n");
    Ended ended = running.wait();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output.find("umsctl: nothing is deleted\r\n") != std::string::npos,
              answer == std::string("n"));
    EXPECT_EQ(exists(notes), answer == std::string("n"));
  }
  push();
  RunningProgram running(podcast("rm", {"Harbour Notes", "The Morning Ferry"}), {.atTerminal = true});
  running.waitForOutput("Delete 1 episode (12.9 kB) of the channel Harbour Notes from the device? (y/n) ");
  running.type("\n");
  EXPECT_EQ(running.wait().status, 0);
}

TEST_F(PodcastCommands, RmFindsTheChannelByItsFolderWhateverItsTitleSays) {
  for (const char* name : {"News", "Arts"})
    sandbox.file(std::string("phone/Podcast/") + name + "/" + name + ".xml",
                 "<channel><Title>Arts</Title></channel>");
  EXPECT_EQ(umsctl(podcast("rm", {"--yes", "News"})).status, 0);
  EXPECT_EQ(treeOf(phone + "/Podcast"), (Lines{"Arts/", "Arts/Arts.xml"}));
  EXPECT_EQ(umsctl(podcast("rm", {"--card", card, "--on", "1", "--yes", "Arts"})).status, 1);
  EXPECT_EQ(umsctl({"podcast", "rm", "--card", card, "--internal", card, "--on", "1", "-y", "x"}).status, 1);
  EXPECT_TRUE(exists(phone + "/Podcast/Arts"));
}

TEST_F(PodcastCommands, RmTakesAChannelFromTheCard) {
  downloadBoth();
  push();
  push({"--card", card, "--to", "1"});
  EXPECT_EQ(umsctl(podcast("rm", {"--card", card, "--on", "1", "--yes", "Harbour Notes"})).status, 0);
  EXPECT_EQ(treeOf(card), Lines{"Podcast/"});
  EXPECT_TRUE(exists(notes + "/Harbour Notes.xml"));
}

TEST_F(PodcastCommands, SendCopiesAChannelToAnotherDeviceAndAsksAboutWhatIsThere) {
  downloadBoth();
  push();
  std::string other = sandbox.folder("other");
  Lines arguments{"podcast", "send", "--from-internal", phone, "--internal", other, "Harbour Notes"};
  EXPECT_EQ(lastLine(umsctl(arguments)), "2 copied (26.3 kB)");
  EXPECT_EQ(bytesOf(other + "/Podcast/Harbour Notes/Harbour Notes.xml"),
            bytesOf(notes + "/Harbour Notes.xml"));
  sandbox.file("other/Podcast/Harbour Notes/morning-tone.mp3", "old");
  EXPECT_EQ(lastLine(umsctl(arguments)), "0 copied (0 B), 2 skipped");
  EXPECT_EQ(bytesOf(other + "/Podcast/Harbour Notes/morning-tone.mp3"), "old");
  arguments.insert(arguments.end(), {"--on-conflict", "overwrite"});
  EXPECT_EQ(lastLine(umsctl(arguments)), "2 copied (26.3 kB)");
  EXPECT_EQ(bytesOf(other + "/Podcast/Harbour Notes/morning-tone.mp3"), bytesOf(media("morning-tone.mp3")));
}

/// As a sync leaves it behind that has replaced the file.
TEST_F(PodcastCommands, SendAsksAnewForEachOfTwoEpisodesOnOneFile) {
  sandbox.file("phone/Podcast/News/News.xml",
               "<channel><Title>News</Title><Post><Title>One</Title><FilePath>a.mp3</FilePath></Post>"
               "<Post><Title>Two</Title><FilePath>a.mp3</FilePath></Post></channel>");
  sandbox.file("phone/Podcast/News/a.mp3", "new");
  const std::string there = sandbox.file("card/Podcast/News/a.mp3", "old");
  auto sending = [&](const std::string& onConflict) {
    return Lines{"podcast", "send",          "--from-internal", phone, "--internal",
                 card,      "--on-conflict", onConflict,        "News"};
  };
  Ended skipped = umsctl(sending("skip"));
  EXPECT_EQ(skipped.status, 0);
  EXPECT_EQ(lastLine(skipped), "0 copied (0 B), 2 skipped");
  EXPECT_EQ(bytesOf(there), "old");
  EXPECT_NE(answering(sending("ask"), {"n", "n"}).output.find("0 copied (0 B), 2 skipped\r\n"),
            std::string::npos);
  EXPECT_EQ(bytesOf(there), "old");
  EXPECT_NE(answering(sending("ask"), {"n", "y"}).output.find("1 copied (3 B), 1 skipped\r\n"),
            std::string::npos);
  EXPECT_EQ(bytesOf(there), "new");
  sandbox.file("card/Podcast/News/a.mp3", "old");
  EXPECT_EQ(lastLine(umsctl(sending("overwrite"))), "2 copied (6 B)");
  EXPECT_EQ(bytesOf(there), "new");
}

TEST_F(PodcastCommands, SendRefusesTheSameDeviceAndUnknownChannels) {
  downloadBoth();
  push();
  EXPECT_EQ(
      umsctl({"podcast", "send", "--from-internal", phone, "--internal", phone + "/", "Harbour Notes"}).error,
      "umsctl: " + phone + ": both devices are the same\n");
  EXPECT_EQ(umsctl({"podcast", "send", "--from-internal", phone, "--internal", card, "News"}).status, 1);
  EXPECT_EQ(treeOf(card), Lines{});
}

TEST_F(PodcastCommands, SayWhatIsWrongWithTheCommandLine) {
  const std::pair<Lines, const char*> kRows[] = {
      {{"podcast"}, "a podcast command is missing: push, sync, ls, rm or send"},
      {{"podcast", "push", "--from-json", "x"},
       "no volume is given; name --internal DIR, --card DIR or both"},
      {podcast("push", {}), "give either --feed FILE with --episodes DIR, or --from-json FILE"},
      {podcast("push", {"--feed", "x", "--from-json", "y"}),
       "give either --feed FILE with --episodes DIR, or --from-json FILE"},
      {podcast("sync", {"--feed", "x"}), "--feed needs --episodes DIR"},
  };
  for (const auto& [arguments, cause] : kRows) {
    Ended ended = umsctl(arguments);
    EXPECT_EQ(ended.status, 2);
    const std::string command = "podcast" + (arguments.size() > 1 ? " " + arguments[1] : "");
    EXPECT_EQ(ended.error, std::string("umsctl: ") + cause + "\nTry 'umsctl " + command + " --help'.\n");
  }
  EXPECT_EQ(umsctl({"podcast", "dance"}).status, 2);
  EXPECT_EQ(umsctl(podcast("rm", {})).status, 2);
  EXPECT_EQ(umsctl(podcast("push", {"--to", "3", "--from-json", sandbox.file("c.json", R"({"Title": "T",
      "children": [{"FilePath": "x"}]})")}))
                .status,
            3);
  EXPECT_EQ(umsctl({"podcast", "ls", "--internal", sandbox.at("none")}).status, 3);
  EXPECT_EQ(umsctl({"podcast", "--help"}).status, 0);
}

/// A reader that stops reading holds the transfer in its middle.
TEST_F(PodcastCommands, CtrlCEndsAPushInOrderAndKeepsTheIndexOfWhatWasCopied) {
  std::string children;
  for (int i = 0; i < 200; ++i) {
    std::string path = sandbox.file("in/" + std::string(80, 'n') + std::to_string(i) + ".mp3", "la");
    children += std::string(i == 0 ? "" : ",") + R"({"FilePath": ")" + path + R"(", "Url": ")" + path + "\"}";
  }
  std::string json = sandbox.file("c.json", R"({"Title": "News", "children": [)" + children + "]}");
  RunningProgram running(podcast("push", {"--from-json", json}), {.smallOutputPipe = true});
  running.waitForOutput("\n");
  running.sendSignal(SIGINT);
  running.waitForError("umsctl: cancelling; once more to stop at once\n");
  Ended ended = running.wait();
  EXPECT_EQ(ended.status, 130);
  const size_t copied = treeOf(phone + "/Podcast/News").size() - 1;
  EXPECT_LT(copied, 200u);
  EXPECT_TRUE(lastLine(ended).starts_with("cancelled: " + std::to_string(copied) + " copied ("));
  EXPECT_TRUE(lastLine(ended).ends_with(", " + std::to_string(200 - copied) + " not copied"));
  std::string index = bytesOf(phone + "/Podcast/News/News.xml");
  size_t posts = 0;
  for (size_t at = index.find("<Post>"); at != std::string::npos; at = index.find("<Post>", at + 1)) ++posts;
  EXPECT_EQ(posts, copied);
}

}  // namespace
}  // namespace umsservice::testing
