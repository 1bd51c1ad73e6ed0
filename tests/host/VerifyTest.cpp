#include <sys/stat.h>
#include <unistd.h>

#include "HostTest.h"
#include "PassingFileSystem.h"
#include "Verification.h"
#include "WrappedFileSystem.h"

namespace umsservice::testing {
namespace {

using umsctl::Comparison;
using End = Comparison::End;

class Compare : public ::testing::Test {
 protected:
  Sandbox sandbox;
  std::string original = sandbox.patternFile("original", 700'000);

  std::string copyOf(std::string bytes) const { return sandbox.file("copy", bytes); }
  Comparison compared(const std::string& copy, FileSystem& files = *posixFileSystem()) const {
    return umsctl::compareFiles(files, original, copy, [](uint64_t) { return true; });
  }
};

/// Gives a few bytes at a time, as a slow device does.
class DrippingFileSystem final : public PassingFileSystem {
 public:
  using PassingFileSystem::PassingFileSystem;

  FileResult<std::unique_ptr<FileHandle>> openForReading(const std::string& path) override {
    auto opened = PassingFileSystem::openForReading(path);
    if (!opened) return opened;
    return std::unique_ptr<FileHandle>(std::make_unique<Dripping>(std::move(*opened)));
  }

 private:
  class Dripping final : public FileHandle {
   public:
    explicit Dripping(std::unique_ptr<FileHandle> real) : real_(std::move(real)) {}
    FileResult<size_t> read(void* buffer, size_t size) override {
      return real_->read(buffer, std::min<size_t>(size, 1000));
    }
    WriteOutcome write(const void* buffer, size_t size) override { return real_->write(buffer, size); }
    FileStatus truncate(uint64_t size) override { return real_->truncate(size); }
    FileStatus sync() override { return real_->sync(); }
    FileStatus close() override { return real_->close(); }

   private:
    const std::unique_ptr<FileHandle> real_;
  };
};

TEST_F(Compare, FindsEqualFilesEqual) {
  EXPECT_EQ(compared(copyOf(bytesOf(original))).end, End::Same);
  DrippingFileSystem dripping(posixFileSystem());
  EXPECT_EQ(compared(sandbox.at("copy"), dripping).end, End::Same);
  original = sandbox.file("empty", "");
  EXPECT_EQ(compared(copyOf("")).end, End::Same);
}

TEST_F(Compare, FindsTheByteThatDiffers) {
  for (const size_t at : {size_t{0}, size_t{262'143}, size_t{262'144}, size_t{699'999}}) {
    std::string bytes = bytesOf(original);
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    Comparison comparison = compared(copyOf(bytes));
    EXPECT_EQ(comparison.end, End::Different);
    EXPECT_EQ(comparison.cause, "the copy differs from the original at byte " + std::to_string(at));
  }
}

TEST_F(Compare, FindsACopyOfAnotherLength) {
  EXPECT_EQ(compared(copyOf(bytesOf(original).substr(0, 524'288))).cause,
            "the copy is shorter than the original");
  EXPECT_EQ(compared(copyOf("")).end, End::Different);
  EXPECT_EQ(compared(copyOf(bytesOf(original) + "x")).cause, "the copy is longer than the original");
}

TEST_F(Compare, SaysWhichFileCannotBeRead) {
  const std::string copy = copyOf(bytesOf(original));
  for (const FileCall call : {FileCall::OpenForReading, FileCall::Read}) {
    FaultyFileSystem files;
    files.failAlways(call, "/copy", EIO);
    EXPECT_EQ(compared(copy, files).cause, "the copy cannot be read back: Input/output error");
    files.failAlways(call, "/original", EIO);
    EXPECT_EQ(compared(copy, files).cause, "the original cannot be read again: Input/output error");
    EXPECT_EQ(compared(copy, files).end, End::Unreadable);
  }
}

TEST_F(Compare, StopsWhenItIsToldTo) {
  const std::string copy = copyOf(bytesOf(original));
  auto stopped = umsctl::compareFiles(*posixFileSystem(), original, copy, [](uint64_t) { return false; });
  EXPECT_EQ(stopped.end, End::Stopped);
}

class Verify : public HostTest {
 protected:
  std::string song = sandbox.file("computer/song.mp3", "la la la");
  std::string last = sandbox.file("computer/last.mp3", "new");

  /// Copies the song, and does something before it is compared: while the next file is asked about.
  Ended pushedWith(const std::function<void()>& meddle, const Setting& setting = {}) {
    sandbox.file("phone/Music/last.mp3", "old");
    Setting atTerminal = setting;
    atTerminal.atTerminal = true;
    atTerminal.columns = 300;  // for the table of what failed
    RunningProgram program(pushing({"--verify", song, last}), atTerminal);
    program.waitForOutput("Replace it?");
    meddle();
    program.type("n\n");
    return program.wait();
  }
};

TEST_F(Verify, SaysNothingFurtherOfCopiesThatAreWhole) {
  Ended ended = umsctl(pushing({"--verify", song, media("harbour.mp4")}));
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(linesOf(ended.output),
            (std::vector<std::string>{"copied   " + phone + "/Music/song.mp3  (verified)",
                                      "copied   " + phone + "/DCIM/Camera/harbour.mp4  (verified)",
                                      "2 copied (12.3 kB)"}));
}

TEST_F(Verify, CountsACopyThatDiffersAsFailedAndLeavesIt) {
  Ended ended = pushedWith([&] { sandbox.file("computer/song.mp3", "la lA la"); });
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.output.find(song + "  0x20000005  the copy differs from the original at byte 4  "),
            std::string::npos)
      << ended.output;
  EXPECT_NE(ended.output.find("0 copied (0 B), 1 skipped, 1 failed\r\n"), std::string::npos) << ended.output;
  EXPECT_EQ(bytesOf(phone + "/Music/song.mp3"), "la la la");
}

TEST_F(Verify, CountsACopyThatIsTooShortAsFailed) {
  Ended ended = pushedWith([&] { sandbox.file("phone/Music/song.mp3", "la"); });
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.output.find("the copy is shorter than the original"), std::string::npos);
}

TEST_F(Verify, CountsACopyThatCannotBeReadBackAsFailed) {
  Ended ended =
      pushedWith([&] { chmod((phone + "/Music/song.mp3").c_str(), 0); }, {.withoutRootPowers = true});
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.output.find("the copy cannot be read back: Permission denied"), std::string::npos)
      << ended.output;
}

TEST_F(Verify, DoesNotCompareACopyThatALaterFileReplaced) {
  std::string later = sandbox.file("later/song.mp3", "lu");
  Ended ended = umsctl(pushing({"--verify", "--on-conflict", "overwrite", song, later}));
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(linesOf(ended.output)[0], "copied   " + phone + "/Music/song.mp3");
  EXPECT_EQ(linesOf(ended.output)[1], "copied   " + phone + "/Music/song.mp3  (verified)");
}

TEST_F(Verify, FillsNoBarWithWhatACancelKeptFromBeingCompared) {
  const std::string film = sandbox.file("computer/film.mp4", "");
  ASSERT_EQ(truncate(film.c_str(), 200'000'000), 0);
  RunningProgram program(pushing({"--verify", film}), {.atTerminal = true});
  program.waitForOutput("comparing film.mp4");
  program.type("\x03");
  Ended ended = program.wait();
  EXPECT_EQ(ended.status, 130);
  const size_t end = ended.output.find("umsctl: cancelling");
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(ended.output.find("100%", end), std::string::npos) << ended.output.substr(end);
  EXPECT_NE(ended.output.find("cancelled: 1 copied (200.0 MB)\r\n"), std::string::npos);
}

TEST_F(Verify, ComparesSubtitlesThatCameAlong) {
  song = sandbox.file("computer/trip.mp4", "film");
  std::string subtitles = sandbox.file("computer/trip.smi", "hello");
  Ended ended = pushedWith([&] { sandbox.file("computer/trip.smi", "hellO"); });
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.output.find("its subtitles: the copy differs from the original at byte 4"),
            std::string::npos)
      << ended.output;
}

TEST_F(Verify, WorksForEveryCommandThatCopies) {
  const std::string json = sandbox.file("news.json", R"({"Title": "News", "children": [{"Title": "One",
      "Url": "http://x/1.mp3", "FilePath": ")" + song + R"("}]})");
  const std::string other = sandbox.folder("other"), here = sandbox.folder("here");
  const std::string onPhone = phone + "/Music/song.mp3";
  const std::vector<std::vector<std::string>> lines{
      {"sync", "--internal", phone, song},
      {"pull", "--internal", phone, "--into", here, onPhone},
      {"send", "--from-internal", phone, "--internal", other, onPhone},
      {"put", "--internal", phone, song, phone + "/elsewhere.mp3"},
      {"get", "--internal", phone, onPhone, here + "/other.mp3"},
      {"podcast", "push", "--internal", phone, "--from-json", json},
      {"podcast", "sync", "--internal", card, "--from-json", json},
      {"podcast", "send", "--from-internal", phone, "--internal", other, "News"},
  };
  for (auto line : lines) {
    line.emplace_back("--verify");
    Ended ended = umsctl(line);
    EXPECT_EQ(ended.status, 0) << ended.error;
    EXPECT_NE(ended.output.find("  (verified)\n1 copied (8 B)\n"), std::string::npos) << ended.output;
  }
}

}  // namespace
}  // namespace umsservice::testing
