#include "podcast/EpisodeItems.h"

#include <cerrno>
#include <set>

#include "Paths.h"
#include "Refusal.h"
#include "podcast/BoundedXml.h"
#include "podcast/Enclosures.h"
#include "podcast/Feed.h"
#include "podcast/JsonValue.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

constexpr auto kChildren = "children";
constexpr auto kLength = "Length";

std::string wordsFor(const FileError& error) {
  if (error.systemNumber == EISDIR) return "it is a folder";
  if (error.systemNumber == EOPNOTSUPP) return "it is no ordinary file";
  return error.words();
}

[[noreturn]] void refuse(const std::string& subject, const std::string& cause) {
  throw Refusal(ExitStatus::SomeFailed, subject, cause);
}

/// A whole file that somebody else has written.
std::string contentsOf(FileSystem& files, const std::string& name) {
  auto opened = files.openForReading(absolutePath(name));
  if (!opened) refuse(name, wordsFor(opened.error()));
  std::string contents;
  std::vector<char> buffer(size_t{256} << 10);
  for (;;) {
    auto length = (*opened)->read(buffer.data(), buffer.size());
    if (!length) refuse(name, wordsFor(length.error()));
    if (*length == 0) return contents;
    contents.append(buffer.data(), *length);
    if (contents.size() > kLongestXml) refuse(name, "it is longer than 32 MiB");
  }
}

/// The episodes of a feed that lie in the folder, in the feed's order.
class FeedEpisodes {
 public:
  FeedEpisodes(FileSystem& files, CleanLinks& links, EpisodeItems& items, std::string folder)
      : files_(files), links_(links), items_(items), folder_(std::move(folder)) {}

  std::vector<Value> taken() const { return taken_; }
  size_t leftOut() const { return leftOut_; }

  void offer(const Dictionary& episode) {
    const std::string url = episode.string("Url").value_or("");
    auto path = downloadOf(files_, folder_, url);
    if (!path) {
      ++leftOut_;
    } else if (names_.insert(links_.cleanName(*path)).second) {
      items_.add(files_, episode, *path, &links_);
      taken_.emplace_back(episode);
    } else {
      // Whose file it is cannot be told any more, and on the device they would be one as well.
      items_.addRefused(episode, url, "another episode of the feed has the same file name");
      taken_.emplace_back(episode);
    }
  }

 private:
  FileSystem& files_;
  CleanLinks& links_;
  EpisodeItems& items_;
  const std::string folder_;
  std::set<std::string> names_;  ///< as they will be on the device
  std::vector<Value> taken_;
  size_t leftOut_ = 0;
};

EpisodeItems itemsOfFeed(const Errand& errand, CleanLinks& links, const std::string& name,
                         const std::string& folder) {
  FileSystem& files = *errand.files();
  Feed feed = readFeed(contentsOf(files, name));
  if (!feed.podcast) refuse(name, feed.error);
  if (!feed.podcast->contains("Title")) refuse(name, "the channel has no title");
  const auto episodes = feed.podcast->get(kChildren).array()->snapshot();
  if (episodes.empty()) refuse(name, "the channel has no episodes");

  EpisodeItems items;
  FeedEpisodes taking(files, links, items, withoutTrailingSlashes(absolutePath(folder)));
  for (const Value& episode : episodes) taking.offer(*episode.dictionary());
  if (taking.taken().empty())
    refuse(folder, "none of the " + std::to_string(episodes.size()) + " episodes of the feed lies here");
  if (taking.leftOut() > 0)
    errand.events().noticed(name, std::to_string(taking.leftOut()) + " of " +
                                      std::to_string(episodes.size()) +
                                      " episodes are not in the folder and left out");
  feed.podcast->set(kChildren, Array(taking.taken()));
  items.channels.append(*feed.podcast);
  return items;
}

/// Without one, episodes cannot be told apart: they would enter the index once more with each push.
bool hasUrl(const Dictionary& episode) {
  const Value url = episode.get("Url");
  return url.kind() != Value::Kind::Absent && url.kind() != Value::Kind::Null &&
         url.string() != std::string();
}

/// One channel as a person wrote it down. Relative paths count from the folder of the downloads, or else from
/// the working folder.
void takeChannel(FileSystem& files, CleanLinks& links, EpisodeItems& items, const Value& element,
                 const PodcastInput& input) {
  auto channel = element.dictionary();
  if (!channel) refuse(*input.json, "it is no podcast: an object is expected for a channel");
  if (channel->string("Title").value_or("").empty()) refuse(*input.json, "a channel has no \"Title\"");
  auto episodes = channel->get(kChildren).array();
  if (!episodes || episodes->count() == 0) refuse(*input.json, "a channel has no episodes (\"children\")");
  for (const Value& child : episodes->snapshot()) {
    auto episode = child.dictionary();
    if (!episode) refuse(*input.json, "one of the \"children\" is no episode: an object is expected");
    std::string path = episode->string(key::kFilePath).value_or("");
    if (!hasUrl(*episode) && !path.empty()) episode->set("Url", path.substr(path.rfind('/') + 1));
    if (path.empty()) {
      items.addRefused(*episode, episode->string("Url").value_or("(an episode)"), "it has no \"FilePath\"");
    } else if (path.front() != '/' && input.episodes) {
      items.add(files, *episode, withoutTrailingSlashes(absolutePath(*input.episodes)) + "/" + path, &links);
    } else {
      items.add(files, *episode, absolutePath(path), &links);
    }
  }
  items.channels.append(*channel);
}

EpisodeItems itemsOfJson(FileSystem& files, CleanLinks& links, const PodcastInput& input) {
  JsonValue json = readJson(contentsOf(files, *input.json));
  if (!json.error.empty()) refuse(*input.json, json.error);
  EpisodeItems items;
  auto channels = json.value.array();
  if (channels && channels->count() == 0) refuse(*input.json, "there is no channel in it");
  for (const Value& element : channels ? channels->snapshot() : std::vector<Value>{json.value})
    takeChannel(files, links, items, element, input);
  return items;
}

}  // namespace

void EpisodeItems::add(FileSystem& files, const Dictionary& given, const std::string& path,
                       CleanLinks* links) {
  Dictionary episode = given;  // the same one: it lies in its channel
  auto opened = files.openForReading(path);
  if (!opened) return addRefused(episode, path, wordsFor(opened.error()));
  std::string objection;
  const std::string source = links ? links->pathFor(path, objection) : path;
  if (!objection.empty()) return addRefused(episode, path, objection);
  auto found = files.attributes(path);
  const uint64_t size = found ? found->size : 0;
  episode.set(key::kFilePath, source);
  // What the file really has, as text: numbers are cut to 32 bits on the way.
  episode.set(kLength, std::to_string(size));
  names.push_back(path);
  sizes.push_back(size);
  objections.emplace_back();
}

void EpisodeItems::addRefused(const Dictionary& given, const std::string& name,
                              const std::string& objection) {
  Dictionary episode = given;
  episode.remove(key::kFilePath);
  episode.set(kLength, "0");  // nothing of it will be sent
  names.push_back(name);
  sizes.push_back(0);
  objections.push_back(objection);
}

EpisodeItems episodeItems(const Errand& errand, CleanLinks& links, const PodcastInput& input) {
  return input.feed ? itemsOfFeed(errand, links, *input.feed, input.episodes.value_or(""))
                    : itemsOfJson(*errand.files(), links, input);
}

}  // namespace umsctl
