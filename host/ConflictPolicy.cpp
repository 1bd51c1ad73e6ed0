#include "ConflictPolicy.h"

#include <algorithm>

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
  if (choice != OnConflict::NotSaid && choice != OnConflict::Ask) return choice;
  return canAsk() ? OnConflict::Ask : OnConflict::Skip;
}

ConflictPolicy::ConflictPolicy(const Errand& errand, ProgressDisplay& display, std::string place)
    : errand_(errand),
      choice_(resolved(errand.wishes().onConflict)),
      saysSo_(errand.wishes().onConflict != OnConflict::Skip && choice_ == OnConflict::Skip),
      display_(display),
      place_(std::move(place)),
      typed_(errand.interrupt()) {}

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
    auto typed = typed_.next();
    answer = typed ? answerOf(*typed) : &kNone;
    if (!typed) printToError("\n");
  }
  isOverwrite = answer->isOverwrite;
  if (answer->isLasting) lasting_ = isOverwrite;
  if (answer->isQuit) quit();
}

/// As Ctrl-C does it: what is being copied is no longer wanted, and neither is the rest of the list.
void ConflictPolicy::quit() {
  errand_.interrupt().happen();
  errand_.interrupt().settle();  // the run must be cancelled before it goes on to the next file
}

std::shared_ptr<umsservice::OVFileService> ConflictPolicy::getFileServiceObject(
    const umsservice::MaybeString&) {
  return otherDevice_;
}

}  // namespace umsctl
