#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <sstream>
#include <thread>

#include "FileTags.h"
#include "HostTest.h"
#include "TagProcess.h"

namespace umsservice::testing {
namespace {

using ReadingTags = HostTest;

/// The beginning of a film with a frame rate below zero, over which a reader divides by zero.
std::string deadlyFilm() {
  constexpr std::string_view kHex =
      "464c5601050000000900000000120001250000000000000002000a6f6e4d65746144617461080000000d000864757261"
      "74696f6e003ff0cccccccccccd000577696474680040660000000000000006686569676874004062000000000000000d"
      "766964656f64617461726174650040686a000000000000096672616d657261746500ff24000000000000000c76696465"
      "6f636f6465636964004000000000000000000d617564696f6461746172617465000000000000000000000f617564696f"
      "73616d706c65726174650040d5888000000000000f617564696f73616d706c6573697a65004030000000000000000673"
      "746572656f0100000c617564696f636f64656369640040000000000000000007656e636f64657202000d4c6176663539"
      "2e32372e313030000866696c6573697a650040d728c0000000000000090000013008000069000000000000002afff340"
      "c400143886700f581800c2a005034c74c74874c758f03ba0a90b666139b6273a9d666d4828ea6ee3bb918861fc7f2311"
      "8a4b0ee0606062c1f7880100432e1ffce74f48218801307c1f07c1f040100401004c1f07f820087fd1583e1800008108"
      "20c3000000000000740800006a00001a000000002afff342c40a1719e289979b50012d2452d2b2e4e898b8c00285fc32"
      "c16460312c8016116486b89a01938143204a0320";
  std::string bytes;
  for (size_t at = 0; at < kHex.size(); at += 2)
    bytes += static_cast<char>(std::stoi(std::string(kHex.substr(at, 2)), nullptr, 16));
  return bytes;
}

/// The processes that a process has started, and that are still there.
std::vector<pid_t> childrenOf(pid_t parent) {
  std::vector<pid_t> children;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream file(entry.path() / "stat");
    std::string stat((std::istreambuf_iterator<char>(file)), {});
    if (stat.rfind(") ") == std::string::npos) continue;
    std::istringstream fields(stat.substr(stat.rfind(") ") + 2));
    char state = 0;
    pid_t above = 0;
    if (fields >> state >> above && above == parent && state != 'Z') children.push_back(std::stoi(stat));
  }
  return children;
}

/// Where the descriptors of a process lead.
std::vector<std::string> descriptorsOf(pid_t process) {
  std::vector<std::string> places;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd"))
    places.push_back(std::filesystem::read_symlink(entry.path()));
  return places;
}

/// A song whose cover is more than a line between two processes holds at once.
std::string songWithLargeCover() {
  const std::string picture(3'000'000, 'x');
  auto number = [](size_t value, int bits) {
    std::string bytes;
    for (int i = 3; i >= 0; --i) bytes += static_cast<char>((value >> (i * bits)) & ((1u << bits) - 1));
    return bytes;
  };
  const std::string body = std::string("\0image/png\0\3\0", 13) + picture;
  const std::string frame = "APIC" + number(body.size(), 8) + std::string(2, '\0') + body;
  return "ID3" + std::string("\3\0\0", 3) + number(frame.size(), 7) + frame;
}

TEST_F(ReadingTags, InAnotherProcessGivesWhatItGivesHere) {
  umsctl::TagProcess::start();
  for (const char* name : {"morning-tone.mp3", "evening-tone.flac", "paper-boat.m4a", "pier.jpg",
                           "lighthouse.png", "harbour.mp4", "notes.txt"}) {
    auto here = umsctl::fileTags(media(name)), there = umsctl::TagProcess::read(media(name));
    ASSERT_TRUE(here && there) << name;
    EXPECT_TRUE(Value(*here).isEqual(Value(*there))) << name;
  }
  EXPECT_TRUE(umsctl::TagProcess::read(media("morning-tone.mp3"))->get("AlbumArt").data());
}

TEST_F(ReadingTags, GoesOnAfterAFileThatBringsAReaderDown) {
  umsctl::TagProcess::start();
  std::string film = sandbox.file("a.flv", deadlyFilm());
  for (int i = 0; i < 3; ++i) {
    umsctl::TagProcess::read(film);
    auto tags = umsctl::TagProcess::read(media("pier.jpg"));
    ASSERT_TRUE(tags);
    EXPECT_EQ(tags->string("Camera"), "Tinbox Pocket 3");
  }
}

TEST_F(ReadingTags, GoesOnAfterAReaderThatDiesInTheMiddleOfAnAnswer) {
  umsctl::TagProcess::start();
  const std::string song = sandbox.file("a.mp3", songWithLargeCover() + bytesOf(media("morning-tone.mp3")));
  const auto whole = umsctl::TagProcess::read(song);
  ASSERT_TRUE(whole && whole->get("AlbumArt").data());
  const auto servers = childrenOf(::getpid());
  ASSERT_EQ(servers.size(), 1u);
  const auto readers = childrenOf(servers.front());
  ASSERT_EQ(readers.size(), 1u);
  auto wait = [] { std::this_thread::sleep_for(std::chrono::milliseconds(300)); };
  ::kill(readers.front(), SIGSTOP);
  auto answer = std::async(std::launch::async, [&] { return umsctl::TagProcess::read(song); });
  wait();  // for the question to be handed on
  ::kill(servers.front(), SIGSTOP);
  ::kill(readers.front(), SIGCONT);
  wait();  // for the beginning of an answer that nobody takes
  ::kill(readers.front(), SIGKILL);
  ::kill(servers.front(), SIGCONT);
  EXPECT_FALSE(answer.get());
  auto tags = umsctl::TagProcess::read(media("pier.jpg"));
  ASSERT_TRUE(tags);
  EXPECT_EQ(tags->string("Camera"), "Tinbox Pocket 3");
  EXPECT_TRUE(umsctl::TagProcess::read(song)->get("AlbumArt").data());
}

TEST_F(ReadingTags, DoesNotDependOnSignalsThatAParentIgnored) {
  sandbox.file("phone/a.flv", deadlyFilm());
  sandbox.file("phone/b.mp4", bytesOf(media("harbour.mp4")));
  const std::vector<std::string> line{"ls", "--tags", "--internal", phone};
  Ended usual = umsctl(line), ignoring = umsctl(line, {.ignoredSignals = {SIGCHLD, SIGALRM, SIGPIPE}});
  EXPECT_EQ(ignoring.status, 0);
  EXPECT_EQ(ignoring.output, usual.output);
  EXPECT_NE(usual.output.find("\t0:03\t128x96\t\t\tAVC, AAC\n"), std::string::npos);
}

TEST_F(ReadingTags, HoldsNoDescriptorsOfTheProgram) {
  for (int i = 0; i < 100; ++i)
    sandbox.file("phone/" + std::string(80, 'n') + std::to_string(i) + ".jpg", bytesOf(media("pier.jpg")));
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);  // handed on to the program, as a shell does
  RunningProgram program({"ls", "--tags", "--internal", phone}, {.smallOutputPipe = true});
  program.waitForOutput("\n");
  const auto ownPlaces = descriptorsOf(program.process());
  const std::string inherited =
      std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(ends[1])).string();
  EXPECT_NE(std::find(ownPlaces.begin(), ownPlaces.end(), inherited), ownPlaces.end());
  const auto servers = childrenOf(program.process());
  ASSERT_EQ(servers.size(), 1u);
  const auto readers = childrenOf(servers.front());
  ASSERT_EQ(readers.size(), 1u);
  for (pid_t process : {servers.front(), readers.front()}) {
    for (const std::string& place : descriptorsOf(process))
      EXPECT_TRUE(place == "/dev/null" || place.starts_with("socket:")) << place;
    EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/cwd"), "/");
  }
  EXPECT_EQ(program.wait().status, 0);
  for (int end : ends) ::close(end);
}

TEST_F(ReadingTags, NeverTakesARunDown) {
  sandbox.file("phone/a.flv", deadlyFilm());
  sandbox.file("phone/b.mp4", bytesOf(media("harbour.mp4")));
  Ended listed = umsctl({"ls", "--tags", "--internal", phone});
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.error, "");
  auto lines = linesOf(listed.output);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("video\t500\t" + phone + "/a.flv\t"));
  EXPECT_TRUE(lines[1].ends_with("\t0:03\t128x96\t\t\tAVC, AAC"));
  Ended pushed = umsctl({"push", "--internal", card, phone + "/a.flv", phone + "/b.mp4"});
  EXPECT_EQ(pushed.status, 0);
  EXPECT_EQ(bytesOf(card + "/DCIM/Camera/a.flv"), deadlyFilm());
}

}  // namespace
}  // namespace umsservice::testing
