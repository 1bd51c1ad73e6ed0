/// Events as JSON: each is one object on a line of its own on standard output; what went wrong is said in
/// words on standard error too. docs/json.md describes every object and field; whoever changes one changes
/// the other, and `kJsonSchema` as that page says.
///
/// Names may hold any bytes. Each text is valid UTF-8, with U+FFFD for what is not; the true bytes then stand
/// beside it in hexadecimal, under the same key with "_hex" behind it.
#pragma once

#include <atomic>
#include <mutex>

#include "Events.h"
#include "Wishes.h"

namespace umsctl {

/// The "schema" of every object.
inline constexpr int kJsonSchema = 1;

class JsonEvents final : public Events {
 public:
  explicit JsonEvents(const Wishes& wishes) : wishes_(wishes) {}

  void planned(const Plan& plan) override;
  void progressed(const HowFar& progress) override;
  bool tellsFinished(const TransferManner&) const override { return true; }
  void itemEnded(const EndedItem& item) override;
  void counted(const Counts& counts) override;
  void shown(const Shown& shown) override;
  void remarked(const std::string&) override {}
  void complained(const std::string& subject, const std::string& cause) override;
  void noticed(const std::string& subject, const std::string& text) override;
  void ended(ExitStatus status) override;

 private:
  const Wishes wishes_;
  std::mutex mutex_;
  std::optional<Counts> counts_;
};

}  // namespace umsctl
