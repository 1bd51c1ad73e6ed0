/// Where umsctl speaks: results go to standard output, everything about them to standard error.
///
/// Each call is one write, so that lines of different threads never mix. Safe from any thread.
#pragma once

#include <string>

namespace umsctl {

/// Writes text to standard output as it is. A failure is remembered, see `outputError`.
void print(const std::string& text);

/// Writes text to standard error as it is.
void printToError(const std::string& text);

/// "umsctl: SUBJECT: cause" on standard error, the subject escaped; without a subject "umsctl: cause".
void complain(const std::string& subject, const std::string& cause);

/// The system's number of the first failed write to standard output; 0 for none.
int outputError();

}  // namespace umsctl
