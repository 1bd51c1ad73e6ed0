/// What a command tells, whoever listens: a person (`TextEvents`) or a program (`JsonEvents`).
///
/// Owned by the `Errand`. Safe from any thread; each event is written at once. docs/json.md describes what
/// programs get to see.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "ExitStatus.h"
#include "TransferManner.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

/// The room on one file system that takes part in a command.
struct VolumeRoom {
  std::optional<uint32_t> index;      ///< of a device's volume; none for a folder of the computer
  std::string kind;                   ///< "internal", "card" or "computer"
  std::string path;                   ///< full
  uint64_t freeBefore = 0;            ///< bytes
  std::optional<uint64_t> freeAfter;  ///< bytes, as far as a dry run can tell
};

/// What becomes of an item whose name is there already.
enum class ClashAction { Skip, Replace, Ask };

/// A file whose name is taken where it is to go.
struct Clash {
  std::string source;       ///< full path
  std::string destination;  ///< full path
  ClashAction action = ClashAction::Skip;
};

/// What a command is about to do, or, in a dry run, would do.
struct Plan {
  size_t items = 0;
  uint64_t bytes = 0;  ///< of all items whose size is known
  std::vector<VolumeRoom> volumes;
  std::vector<Clash> clashes;  ///< dry runs only
};

/// How far a command is.
struct HowFar {
  const char* phase = "";  ///< "transfer", "verify" or "flush"
  size_t counted = 0;
  size_t items = 0;
  uint64_t passedBytes = 0;
  uint64_t totalBytes = 0;
  double bytesPerSecond = 0;  ///< 0 where it cannot be told yet
  std::string name;           ///< of the item in hand; may be empty
};

/// How one item ended.
struct EndedItem {
  const umsservice::ItemOutcome& outcome;
  const TransferManner& manner;
  std::string name;                  ///< as the person wrote it
  std::string cause;                 ///< in words; of an item that failed
  std::string tags;                  ///< of the file, as they are shown
  std::optional<ClashAction> clash;  ///< its name is there already
  std::optional<bool> isVerified;    ///< whether the copy was compared; none where nobody asked for it
};

/// The numbers at the end.
struct Counts {
  const char* done = "";     ///< "copied", "deleted"
  const char* planned = "";  ///< "copy", "delete"
  size_t doneItems = 0;
  size_t skipped = 0;
  size_t asked = 0;  ///< dry runs only: a person would be asked about them
  size_t failed = 0;
  size_t notReached = 0;
  std::optional<uint64_t> bytes;  ///< of the items that are done; none where they are not counted
  bool wasCancelled = false;
};

/// One thing of a listing: its line for people and pipes, and the same as fields.
struct Shown {
  /// A path or another text that a device may have written.
  using Field = std::variant<bool, uint64_t, std::string>;

  std::string text;  ///< whole lines; may be empty
  const char* kind = "";
  std::vector<std::pair<const char*, Field>> fields;
};

class Events {
 public:
  virtual ~Events() = default;

  virtual void planned(const Plan& plan) = 0;
  virtual void progressed(const HowFar& progress) = 0;
  /// Whether an item that is done or skipped is told of. A bar has to make room for it.
  virtual bool tellsFinished(const TransferManner& manner) const = 0;
  virtual void itemEnded(const EndedItem& item) = 0;
  virtual void counted(const Counts& counts) = 0;
  virtual void shown(const Shown& shown) = 0;
  /// A line that only people need: a total, an answer to a question.
  virtual void remarked(const std::string& line) = 0;
  /// Something went wrong that is no item of its own. Without a subject the cause stands alone.
  virtual void complained(const std::string& subject, const std::string& cause) = 0;
  /// Something a person should know that is no failure.
  virtual void noticed(const std::string& subject, const std::string& text) = 0;
  /// The command has ended; nothing follows.
  virtual void ended(ExitStatus status) = 0;
};

}  // namespace umsctl
