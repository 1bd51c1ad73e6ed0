#include "ConflictPolicy.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "EscapedName.h"
#include "Output.h"
#include "Paths.h"
#include "Terminal.h"

namespace umsctl {
namespace {

struct Answer {
  const char* word;
  const char* letter;  ///< null where a letter would be ambiguous
  bool goesOn;         ///< false keeps every file that is there from now on, without further questions
  bool isOverwrite;
  bool isNotAsk;
};

constexpr Answer kAnswers[] = {
    {"yes", "y", true, true, false},
    {"no", "n", true, false, false},
    {"all", "a", true, true, true},
    {"none", nullptr, false, false, true},
};

constexpr Answer kNone = kAnswers[3];

const Answer* answerOf(std::string typed) {
  std::erase_if(typed, [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
  std::transform(typed.begin(), typed.end(), typed.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  for (const Answer& answer : kAnswers) {
    if (typed == answer.word || (answer.letter && typed == answer.letter)) return &answer;
  }
  return nullptr;
}

OnConflict resolved(OnConflict choice) {
  if (choice != OnConflict::NotSaid) return choice;
  return canAsk() ? OnConflict::Ask : OnConflict::Skip;
}

}  // namespace

ConflictPolicy::ConflictPolicy(OnConflict choice, ProgressDisplay& display, Interrupt& interrupt)
    : choice_(resolved(choice)),
      saysSo_(choice == OnConflict::NotSaid && choice_ == OnConflict::Skip),
      display_(display),
      interrupt_(interrupt) {}

bool ConflictPolicy::confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) {
  switch (choice_) {
    case OnConflict::Overwrite:
      isOverwrite = true;
      isNotAsk = true;
      return true;
    case OnConflict::Ask: {
      bool goesOn = false;
      display_.stepAside([&] { goesOn = ask(path, isOverwrite, isNotAsk); });
      return goesOn;
    }
    default:
      // Going on without replacing anything: the next conflict is asked about, and told, again.
      isOverwrite = false;
      if (saysSo_)
        display_.stepAside([&] { complain(path, "already on the device, skipped (see --on-conflict)"); });
      return true;
  }
}

bool ConflictPolicy::ask(const std::string& path, bool& isOverwrite, bool& isNotAsk) {
  const Answer* answer = nullptr;
  while (!answer) {
    printToError(escaped(lastComponent(path)) + " is already on the device. Replace it? (y/n/all/none) ");
    auto typed = readAnswer();
    answer = typed ? answerOf(*typed) : &kNone;
    if (!typed) printToError("\n");
  }
  isOverwrite = answer->isOverwrite;
  isNotAsk = answer->isNotAsk;
  return answer->goesOn;
}

/// One line, or nothing when no more answers can come: the input has ended, or the person has had enough.
std::optional<std::string> ConflictPolicy::readAnswer() {
  for (;;) {
    if (size_t end = typed_.find('\n'); end != std::string::npos) {
      std::string line = typed_.substr(0, end);
      typed_.erase(0, end + 1);
      return line;
    }
    pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0}, {interrupt_.descriptor(), POLLIN, 0}};
    if (::poll(waiting, 2, -1) < 0 && errno == EINTR) continue;
    if (interrupt_.happened()) {
      interrupt_.settle();  // the run must be cancelled before it goes on to the next file
      return std::nullopt;
    }
    char buffer[256];
    ssize_t length = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return std::nullopt;
    typed_.append(buffer, static_cast<size_t>(length));
  }
}

std::shared_ptr<umsservice::OVFileService> ConflictPolicy::getFileServiceObject(
    const umsservice::MaybeString&) {
  return nullptr;
}

}  // namespace umsctl
