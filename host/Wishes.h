/// How a person wants a command to go about its work: the flags that mean the same for every command that has
/// them.
///
/// Filled in by the command line, afterwards only read.
#pragma once

namespace umsctl {

/// What happens where a file of that name is there already.
enum class OnConflict {
  NotSaid,    ///< ask where there is somebody to ask; elsewhere skip, and say so
  Ask,        ///< the same, said by the person
  Skip,       ///< keep what is there
  Overwrite,  ///< replace what is there
};

struct Wishes {
  bool dryRun = false;    ///< show what would happen, change nothing
  bool json = false;      ///< tell programs: objects on standard output
  bool quiet = false;     ///< only what went wrong
  bool verbose = false;   ///< the service's log, on standard error
  bool verifies = false;  ///< read back what was written and compare
  bool isAgreed = false;  ///< delete without a question
  OnConflict onConflict = OnConflict::NotSaid;
};

}  // namespace umsctl
