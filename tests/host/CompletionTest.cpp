#include <filesystem>

#include "HostTest.h"

namespace umsservice::testing {
namespace {

/// The completions as the shells themselves give them.
using Completion = HostTest;

std::string shellNamed(const std::string& name) {
  for (const std::string folder : {"/bin/", "/usr/bin/", "/usr/local/bin/", "/opt/homebrew/bin/"})
    if (std::filesystem::exists(folder + name)) return folder + name;
  return "";
}

/// What fish would offer behind a line, one word on each line.
std::vector<std::string> offeredByFish(const std::string& shell, const std::string& line,
                                       const std::string& folder = "") {
  Setting setting;
  setting.folder = folder;
  setting.program = shell;
  Ended ended = umsctl(
      {"--no-config", "-c", "source " TEST_PAGES "/fish/umsctl.fish; complete -C '" + line + "'"}, setting);
  EXPECT_EQ(ended.error, "");
  std::vector<std::string> words;
  for (const std::string& offer : linesOf(ended.output)) words.push_back(offer.substr(0, offer.find('\t')));
  return words;
}

/// A shell at a terminal, in which umsctl itself does nothing.
class TypedShell {
 public:
  TypedShell(const std::vector<std::string>& arguments, const Setting& setting, const std::string& setup)
      : program_(arguments, setting) {
    program_.type(setup + "; umsctl() { :; }\n");
  }
  /// Types, and waits for what only the completion can have added.
  void expect(const std::string& typed, const std::string& shown) {
    program_.type(typed);
    program_.waitForOutput(shown);
  }
  void leave() {
    program_.type("\nexit\n");
    EXPECT_EQ(program_.wait().output.find("not found"), std::string::npos);
  }

 private:
  RunningProgram program_;
};

/// A folder in which a folder and a file begin alike, and a file like an option.
std::string folderOfLikeNames(const Sandbox& sandbox) {
  sandbox.file("names/here/song.mp3", "x");
  sandbox.file("names/-odd.mp3", "x");
  return std::filesystem::path(sandbox.file("names/hear.mp3", "x")).parent_path();
}

TEST_F(Completion, OfBashKnowsCommandsOptionsAndChoices) {
  std::string shell = shellNamed("bash");
  if (shell.empty()) GTEST_SKIP() << "bash is not installed";
  std::string folder = std::filesystem::path(sandbox.file("songs/one song.mp3", "x")).parent_path();
  Setting setting{.atTerminal = true, .columns = 120, .folder = folder, .program = shell};
  TypedShell bash({"--noprofile", "--norc", "-i"}, setting, "source " TEST_PAGES "/bash/umsctl");
  bash.expect("umsctl pu\t\t", "pull  push  put");
  bash.expect("\numsctl push --on-c\t", "umsctl push --on-conflict ");
  bash.expect("o\t", "--on-conflict overwrite ");
  bash.expect("one\t", "overwrite one\\ song.mp3 ");
  bash.expect("\numsctl podcast s\t\t", "send  sync");
  bash.expect("\numsctl sync --on-conflict=s\t", "--on-conflict=skip ");
  bash.leave();
}

TEST_F(Completion, OfBashTellsValuesFoldersAndFilesApart) {
  std::string shell = shellNamed("bash");
  if (shell.empty()) GTEST_SKIP() << "bash is not installed";
  Setting setting{.atTerminal = true, .columns = 120, .folder = folderOfLikeNames(sandbox), .program = shell};
  TypedShell bash({"--noprofile", "--norc", "-i"}, setting, "source " TEST_PAGES "/bash/umsctl");
  bash.expect("umsctl ls --type v\t", "--type video ");
  bash.expect("\numsctl push --to \t\t", "0  1");
  bash.expect("\numsctl push --internal her\t", "--internal here/");
  bash.expect("\numsctl df --card=he\t", "--card=here/");
  bash.expect("\numsctl mkdir he\t", "mkdir here/");
  bash.expect("\numsctl push he\t\t", "hear.mp3  here/");
  bash.expect("\numsctl df --profile hea\t", "--profile hear.mp3 ");
  bash.expect("\numsctl push -- -\t", "-- -odd.mp3 ");
  bash.leave();
}

TEST_F(Completion, OfZshKnowsCommandsOptionsAndChoices) {
  std::string shell = shellNamed("zsh");
  if (shell.empty()) GTEST_SKIP() << "zsh is not installed";
  Setting setting{.atTerminal = true, .columns = 120, .program = shellNamed("env")};
  TypedShell zsh({"TERM=dumb", shell, "-f", "-i"}, setting,
                 "fpath=(" TEST_PAGES "/zsh $fpath); autoload -U compinit; compinit -u -D");
  zsh.expect("umsctl pu\t", "Copy one file to a path on the device");
  zsh.expect("\numsctl push --on-c\t", "onflict");
  zsh.expect("ov\t", "erwrite");
  zsh.expect("\numsctl podcast \t", "Show channels and episodes");
  zsh.leave();
}

TEST_F(Completion, OfZshTellsValuesFoldersAndFilesApart) {
  std::string shell = shellNamed("zsh");
  if (shell.empty()) GTEST_SKIP() << "zsh is not installed";
  Setting setting{
      .atTerminal = true, .columns = 120, .folder = folderOfLikeNames(sandbox), .program = shellNamed("env")};
  TypedShell zsh({"TERM=dumb", shell, "-f", "-i"}, setting,
                 "fpath=(" TEST_PAGES "/zsh $fpath); autoload -U compinit; compinit -u -D");
  zsh.expect("umsctl ls --type v\t", "--type video ");
  zsh.expect("\numsctl push --to \t", "0  1");
  zsh.expect("\x15umsctl push --internal he\t", "--internal here/");
  zsh.expect("\numsctl df --card=he\t", "--card=here/");
  zsh.expect("\numsctl mkdir he\t", "mkdir here/");
  zsh.expect("\numsctl push he\t", "hear.mp3  here/");
  zsh.expect("\x15umsctl df --profile hea\t", "--profile hear.mp3 ");
  zsh.leave();
}

TEST_F(Completion, OfFishKnowsCommandsOptionsAndChoices) {
  std::string shell = shellNamed("fish");
  if (shell.empty()) GTEST_SKIP() << "fish is not installed";
  using Words = std::vector<std::string>;
  EXPECT_EQ(offeredByFish(shell, "umsctl pu"), (Words{"pull", "push", "put"}));
  EXPECT_EQ(offeredByFish(shell, "umsctl push --on-c"), (Words{"--on-conflict"}));
  EXPECT_EQ(offeredByFish(shell, "umsctl push --on-conflict "), (Words{"ask", "overwrite", "skip"}));
  EXPECT_EQ(offeredByFish(shell, "umsctl podcast s"), (Words{"send", "sync"}));
  EXPECT_EQ(offeredByFish(shell, "umsctl podcast sync --fee"), (Words{"--feed"}));
  EXPECT_EQ(offeredByFish(shell, "umsctl df --fee"), Words{});
}

TEST_F(Completion, OfFishTellsValuesFoldersAndFilesApart) {
  std::string shell = shellNamed("fish");
  if (shell.empty()) GTEST_SKIP() << "fish is not installed";
  const std::string folder = folderOfLikeNames(sandbox);
  auto offered = [&](const std::string& line) { return offeredByFish(shell, "umsctl " + line, folder); };
  using Words = std::vector<std::string>;
  EXPECT_EQ(offered("ls --type "), (Words{"all", "image", "music", "podcast", "video"}));
  EXPECT_EQ(offered("push --to "), (Words{"0", "1"}));
  EXPECT_EQ(offered("push --internal he"), Words{"here/"});
  EXPECT_EQ(offered("df --card=he"), Words{"--card=here/"});
  EXPECT_EQ(offered("mkdir he"), Words{"here/"});
  EXPECT_EQ(offered("push he"), (Words{"hear.mp3", "here/"}));
  EXPECT_EQ(offered("df --profile he"), (Words{"hear.mp3", "here/"}));
  EXPECT_EQ(offered("podcast rm he"), Words{});
  EXPECT_EQ(offered("df he"), Words{});
}

}  // namespace
}  // namespace umsservice::testing
