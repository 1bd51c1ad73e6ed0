#include "Verification.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "Paths.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::FileHandle;
using umsservice::FileResult;
using umsservice::FileSystem;
using umsservice::ItemOutcome;
using End = Comparison::End;

constexpr size_t kBlock = size_t{256} << 10;

/// As many bytes as there are, up to a block: a short read is no end.
FileResult<size_t> readBlock(FileHandle& handle, std::vector<char>& block) {
  size_t filled = 0;
  while (filled < block.size()) {
    auto length = handle.read(block.data() + filled, block.size() - filled);
    if (!length) return length;
    if (*length == 0) break;
    filled += *length;
  }
  return filled;
}

Comparison unreadable(const char* which, const umsservice::FileError& error) {
  return {End::Unreadable, std::string(which) + error.words()};
}

constexpr auto kOriginalUnreadable = "the original cannot be read again: ";
constexpr auto kCopyUnreadable = "the copy cannot be read back: ";

/// The number of bytes at the start of both blocks that are the same.
size_t sameBytes(const std::vector<char>& one, const std::vector<char>& other, size_t length) {
  auto found = std::mismatch(one.begin(), one.begin() + static_cast<std::ptrdiff_t>(length), other.begin());
  return static_cast<size_t>(found.first - one.begin());
}

Comparison compareOpened(FileHandle& original, FileHandle& copy,
                         const std::function<bool(uint64_t)>& goesOn) {
  std::vector<char> left(kBlock), right(kBlock);
  for (uint64_t at = 0;;) {
    auto leftLength = readBlock(original, left);
    if (!leftLength) return unreadable(kOriginalUnreadable, leftLength.error());
    auto rightLength = readBlock(copy, right);
    if (!rightLength) return unreadable(kCopyUnreadable, rightLength.error());
    const size_t shorter = std::min(*leftLength, *rightLength);
    const size_t same = sameBytes(left, right, shorter);
    if (same < shorter)
      return {End::Different, "the copy differs from the original at byte " + std::to_string(at + same)};
    if (*leftLength != *rightLength)
      return {End::Different, *rightLength < *leftLength ? "the copy is shorter than the original"
                                                         : "the copy is longer than the original"};
    at += same;
    if (same < kBlock) return {};
    if (!goesOn(at)) return {End::Stopped, ""};
  }
}

}  // namespace

Comparison compareFiles(FileSystem& files, const std::string& original, const std::string& copy,
                        const std::function<bool(uint64_t)>& goesOn) {
  auto left = files.openForReading(original);
  if (!left) return unreadable(kOriginalUnreadable, left.error());
  auto right = files.openForReading(copy);
  if (!right) return unreadable(kCopyUnreadable, right.error());
  return compareOpened(**left, **right, goesOn);
}

void forgetCached(const std::string& path) {
#if defined(POSIX_FADV_DONTNEED)
  int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return;
  ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
  ::close(descriptor);
#else
  (void)path;
#endif
}

std::map<size_t, std::string> Verification::run(const Companion& companion) {
  std::map<size_t, std::string> causes;
  std::vector<ItemOutcome> done;
  std::map<std::string, size_t> last;  // who wrote each copy last
  for (const ItemOutcome& outcome : outcomes_.all()) {
    if (outcome.kind != ItemOutcome::Kind::Done) continue;
    done.push_back(outcome);
    last[outcome.destPath.value_or("")] = outcome.index;
  }
  display_.beginVerifying(done);
  for (ItemOutcome& outcome : done) {
    // A copy that a later item of the list has replaced, as the person wished, can no longer be looked at.
    const bool isReplaced = outcome.destPath && last[*outcome.destPath] != outcome.index;
    Comparison comparison = isReplaced ? Comparison{End::Stopped, ""} : compared(outcome, companion);
    if (comparison.end == End::Different || comparison.end == End::Unreadable) {
      causes[outcome.index] = comparison.cause;
      outcome.kind = ItemOutcome::Kind::Failed;
      outcome.errorNumber =
          comparison.end == End::Different ? umsservice::kErrorCopyFailed : umsservice::kErrorReadFailed;
      outcome.reason = comparison.cause;
      outcomes_.amend(outcome);
    }
    // What a cancel kept from being compared does not fill the bar.
    const bool isBehind = isReplaced || comparison.end != End::Stopped;
    display_.itemVerified(outcome, comparison.end == End::Same, isBehind);
  }
  return causes;
}

Comparison Verification::compared(const ItemOutcome& outcome, const Companion& companion) {
  if (!outcome.path || !outcome.destPath) return {End::Unreadable, "nobody knows where the copy is"};
  Comparison comparison = comparedPair(*outcome.path, *outcome.destPath);
  const auto files = companion ? companion(outcome) : std::pair<std::string, std::string>();
  if (comparison.end != End::Same || files.first.empty()) return comparison;
  comparison = comparedPair(files.first, files.second);
  if (!comparison.cause.empty()) comparison.cause = "its subtitles: " + comparison.cause;
  return comparison;
}

Comparison Verification::comparedPair(const std::string& original, const std::string& copy) {
  if (interrupt_.happened()) return {End::Stopped, ""};
  forgetCached(original);
  forgetCached(copy);
  return compareFiles(*errand_.files(), original, copy, [&](uint64_t bytes) {
    display_.moved(lastComponent(copy), bytes);
    return !interrupt_.happened();
  });
}

}  // namespace umsctl
