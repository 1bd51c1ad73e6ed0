#include "JsonEvents.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "Causes.h"
#include "FailureTable.h"
#include "Output.h"
#include "TextEvents.h"
#include "Utf8.h"

namespace umsctl {
namespace {

using Json = nlohmann::ordered_json;
using Kind = umsservice::ItemOutcome::Kind;

constexpr const char* kOutcomes[] = {"done", "skipped", "failed", "not_reached"};
constexpr const char* kClashes[] = {"skip", "replace", "ask"};

std::string hexOf(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (char c : bytes) {
    auto byte = static_cast<unsigned char>(c);
    hex += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return hex;
}

/// Bytes that are no UTF-8 are replaced as the object is written.
void putText(Json& object, const std::string& key, const std::string& text) {
  object[key] = text;
  if (!isUtf8(text)) object[key + "_hex"] = hexOf(text);
}

Json objectOf(const char* event) {
  return {{"schema", kJsonSchema}, {"event", event}};
}

void write(const Json& object) {
  print(object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
}

Json roomObject(const VolumeRoom& room) {
  Json object = Json::object();
  if (room.index) object["index"] = *room.index;
  object["kind"] = room.kind;
  putText(object, "path", room.path);
  object["free_before"] = room.freeBefore;
  if (room.freeAfter) object["free_after"] = *room.freeAfter;
  return object;
}

Json clashObject(const Clash& clash) {
  Json object = Json::object();
  putText(object, "source", clash.source);
  putText(object, "destination", clash.destination);
  object["action"] = kClashes[static_cast<size_t>(clash.action)];
  return object;
}

void setMessage(Json& object, const char* level, const std::string& subject, const std::string& text) {
  object["level"] = level;
  if (!subject.empty()) putText(object, "subject", subject);
  putText(object, "text", text);
}

}  // namespace

void JsonEvents::planned(const Plan& plan) {
  Json object = objectOf("plan");
  object["dry_run"] = wishes_.dryRun;
  object["items"] = plan.items;
  object["bytes"] = plan.bytes;
  object["volumes"] = Json::array();
  for (const VolumeRoom& room : plan.volumes) object["volumes"].push_back(roomObject(room));
  if (wishes_.dryRun) {
    object["clashes"] = Json::array();
    for (const Clash& clash : plan.clashes) object["clashes"].push_back(clashObject(clash));
  }
  write(object);
}

void JsonEvents::progressed(const HowFar& progress) {
  Json object = objectOf("progress");
  object["phase"] = progress.phase;
  object["items_ended"] = progress.counted;
  object["items"] = progress.items;
  object["bytes_passed"] = progress.passedBytes;
  object["bytes"] = progress.totalBytes;
  object["bytes_per_second"] = static_cast<uint64_t>(std::llround(std::max(0.0, progress.bytesPerSecond)));
  if (!progress.name.empty()) putText(object, "name", progress.name);
  write(object);
}

void JsonEvents::itemEnded(const EndedItem& item) {
  const umsservice::ItemOutcome& outcome = item.outcome;
  Json object = objectOf("item");
  object["dry_run"] = wishes_.dryRun;
  object["index"] = outcome.index;
  object["outcome"] = kOutcomes[static_cast<size_t>(outcome.kind)];
  putText(object, "name", item.name);
  if (outcome.path) putText(object, "source", *outcome.path);
  if (outcome.destPath) putText(object, "destination", *outcome.destPath);
  object["bytes"] = outcome.bytes;
  if (item.clash) object["clash"] = kClashes[static_cast<size_t>(*item.clash)];
  if (item.isVerified) object["verified"] = *item.isVerified;
  if (outcome.kind == Kind::Failed || outcome.kind == Kind::NotReached) {
    object["error"] = outcome.errorNumber;
    object["number"] = numberText(outcome.errorNumber);
    putText(object, "cause", item.cause.empty() ? "cancelled" : item.cause);
  }
  if (!item.cause.empty()) {
    const std::string advice = adviceFor(outcome, item.cause);
    object["advice"] = advice;
    tellFailure({item.name, outcome.errorNumber, item.cause, advice});
  }
  write(object);
}

/// The numbers are part of the result, which is the last object.
void JsonEvents::counted(const Counts& counts) {
  {
    std::lock_guard lock(mutex_);
    counts_ = counts;
  }
  if (!wishes_.quiet) printToError(countsText(counts, wishes_.dryRun));
}

void JsonEvents::shown(const Shown& shown) {
  Json object = objectOf(shown.kind);
  for (const auto& field : shown.fields) {
    const char* key = field.first;
    std::visit(
        [&](const auto& value) {
          if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::string>) {
            putText(object, key, value);
          } else {
            object[key] = value;
          }
        },
        field.second);
  }
  write(object);
}

void JsonEvents::complained(const std::string& subject, const std::string& cause) {
  Json object = objectOf("message");
  setMessage(object, "error", subject, cause);
  write(object);
  complain(subject, cause);
}

void JsonEvents::noticed(const std::string& subject, const std::string& text) {
  Json object = objectOf("message");
  setMessage(object, "notice", subject, text);
  write(object);
  if (!wishes_.quiet) complain(subject, text);
}

void JsonEvents::ended(ExitStatus status) {
  Json object = objectOf("result");
  object["dry_run"] = wishes_.dryRun;
  object["exit_status"] = static_cast<int>(status);
  std::lock_guard lock(mutex_);
  if (counts_) {
    object["done"] = counts_->doneItems;
    object["skipped"] = counts_->skipped;
    object["to_ask"] = counts_->asked;
    object["failed"] = counts_->failed;
    object["not_reached"] = counts_->notReached;
    if (counts_->bytes) object["bytes"] = *counts_->bytes;
    object["cancelled"] = counts_->wasCancelled;
  }
  write(object);
}

}  // namespace umsctl
