/// Writes the man pages, the completions and the reference of umsctl into a folder:
///   umsctl_pages FOLDER     man1/, man5/, bash/umsctl, zsh/_umsctl, fish/umsctl.fish, commands.md
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "pages/Pages.h"

namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file) throw std::runtime_error(path.string() + " cannot be written");
}

void writePages(const fs::path& folder) {
  fs::remove_all(folder / "man1");  // a command that is gone leaves no page
  umsctl::CommandEntry program = umsctl::commandTree();
  umsctl::walk(program, [&](const umsctl::CommandEntry& command) {
    write(folder / "man1" / (command.title("-") + ".1"), umsctl::manPage(program, command));
  });
  write(folder / "man5" / "umsctl-profile.5", umsctl::profilePage(program));
  write(folder / "bash" / "umsctl", umsctl::bashCompletion(program));
  write(folder / "zsh" / "_umsctl", umsctl::zshCompletion(program));
  write(folder / "fish" / "umsctl.fish", umsctl::fishCompletion(program));
  write(folder / "commands.md", umsctl::commandReference(program));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: umsctl_pages FOLDER\n");
    return 2;
  }
  try {
    writePages(argv[1]);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "umsctl_pages: %s\n", failure.what());
    return 1;
  }
  return 0;
}
