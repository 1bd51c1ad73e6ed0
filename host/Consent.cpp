#include "Consent.h"

#include "Output.h"
#include "Refusal.h"
#include "Terminal.h"
#include "TypedLines.h"

namespace umsctl {
namespace {

constexpr auto kNothing = "nothing is deleted";

/// A yes, a no (as is the end of the input), or nothing for an answer that is none.
std::optional<bool> answerOf(const std::optional<std::string>& typed) {
  const std::string answer = typed.value_or("");
  if (answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes") return true;
  if (answer.empty() || answer == "n" || answer == "N" || answer == "no" || answer == "No") return false;
  return std::nullopt;
}

}  // namespace

bool agreesTo(const Errand& errand, const std::string& question) {
  if (errand.wishes().isAgreed || errand.rehearsal()) return true;
  if (!canAsk())
    throw Refusal(
        ExitStatus::Usage, "",
        std::string(kNothing) + ": there is no terminal to ask at (--yes deletes without a question)");
  TypedLines lines(errand.interrupt());
  std::optional<bool> answer;
  while (!answer) {
    printToError(question + " (y/n) ");
    const auto typed = lines.next();
    if (!typed) printToError("\n");
    if (errand.interrupt().happened()) throw Refusal(ExitStatus::Cancelled, "", kNothing);
    answer = answerOf(typed);
  }
  if (!*answer) errand.events().noticed("", kNothing);
  return *answer;
}

}  // namespace umsctl
