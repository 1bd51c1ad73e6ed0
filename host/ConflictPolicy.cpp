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
  bool isOverwrite;
  bool isLasting;  ///< holds for every later file, without further questions
  bool isQuit = false;
};

constexpr Answer kAnswers[] = {
    {"yes", "y", true, false},      {"no", "n", false, false},        {"all", "a", true, true},
    {"none", nullptr, false, true}, {"quit", "q", false, true, true},
};

constexpr const Answer& kNone = kAnswers[3];

const Answer* answerOf(std::string typed) {
  std::erase_if(typed, [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
  std::transform(typed.begin(), typed.end(), typed.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  for (const Answer& answer : kAnswers) {
    if (typed == answer.word || (answer.letter && typed == answer.letter)) return &answer;
  }
  return nullptr;
}

}  // namespace

OnConflict ConflictPolicy::resolved(OnConflict choice) {
  if (choice != OnConflict::NotSaid) return choice;
  return canAsk() ? OnConflict::Ask : OnConflict::Skip;
}

ConflictPolicy::ConflictPolicy(const Errand& errand, ProgressDisplay& display, Interrupt& interrupt,
                               std::string place)
    : errand_(errand),
      choice_(resolved(errand.wishes().onConflict)),
      saysSo_(errand.wishes().onConflict == OnConflict::NotSaid && choice_ == OnConflict::Skip),
      display_(display),
      interrupt_(interrupt),
      place_(std::move(place)) {}

/// The answers that last are kept here and not by the service: it forgets them at the end of a request, and a
/// command may take several.
bool ConflictPolicy::confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) {
  isNotAsk = false;
  if (errand_.rehearsal()) {  // an answer would change nothing; each clash is told with its item
    isOverwrite = choice_ == OnConflict::Overwrite;
    return true;
  }
  switch (choice_) {
    case OnConflict::Overwrite:
      isOverwrite = true;
      break;
    case OnConflict::Ask:
      display_.stepAside([&] { ask(path, isOverwrite); });
      break;
    default:
      isOverwrite = false;
      if (saysSo_)
        display_.stepAside(
            [&] { errand_.events().noticed(path, "already " + place_ + ", skipped (see --on-conflict)"); });
  }
  return true;
}

void ConflictPolicy::ask(const std::string& path, bool& isOverwrite) {
  const Answer* answer = nullptr;
  if (lasting_) {
    isOverwrite = *lasting_;
    return;
  }
  while (!answer) {
    printToError(escaped(lastComponent(path)) + " is already " + place_ +
                 ". Replace it? (y/n/all/none/quit) ");
    auto typed = readAnswer();
    answer = typed ? answerOf(*typed) : &kNone;
    if (!typed) printToError("\n");
  }
  isOverwrite = answer->isOverwrite;
  if (answer->isLasting) lasting_ = isOverwrite;
  if (answer->isQuit) quit();
}

/// As Ctrl-C does it: what is being copied is no longer wanted, and neither is the rest of the list.
void ConflictPolicy::quit() {
  interrupt_.happen();
  interrupt_.settle();  // the run must be cancelled before it goes on to the next file
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
  return otherDevice_;
}

}  // namespace umsctl
