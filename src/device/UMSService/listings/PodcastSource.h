/// What the listings ask of the podcasts on a device.
#pragma once

#include "umsservice/Value.h"

namespace umsservice {

class PodcastSource {
 public:
  virtual ~PodcastSource() = default;
  /// Paths of index files below a podcast folder, relative to it; false when the folder cannot be listed.
  virtual bool podcastXmlLists(const MaybeString& folder, MaybeArray& contents) const = 0;
  /// The podcast dictionary that an index file holds, or nil.
  virtual MaybeDictionary umsPodcastXmlData(const MaybeString& path) const = 0;
};

}  // namespace umsservice
