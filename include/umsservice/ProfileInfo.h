/// The host's device profiles: which folder holds music, images, videos and podcasts on a given device.
#pragma once

#include "umsservice/Export.h"
#include "umsservice/Value.h"

namespace umsservice {

/// Eight queries, each asked with the device's location identifier (absent when the service has none).
/// An absent answer means that the profile does not know; the service then uses its fixed folder names.
/// A folder that is to be joined to a volume path is expected to begin with "/". Asked from any thread.
class UMS_EXPORT ProfileInfo {
 public:
  virtual ~ProfileInfo() = default;
  virtual MaybeString contentsMusicDefaultFolderInternal(const MaybeString& locationID) = 0;
  virtual MaybeString contentsMusicDefaultFolderExternal(const MaybeString& locationID) = 0;
  virtual MaybeString contentsImageDefaultFolderInternal(const MaybeString& locationID) = 0;
  virtual MaybeString contentsImageDefaultFolderExternal(const MaybeString& locationID) = 0;
  virtual MaybeString contentsMovieDefaultFolderInternal(const MaybeString& locationID) = 0;
  virtual MaybeString contentsMovieDefaultFolderExternal(const MaybeString& locationID) = 0;
  virtual MaybeString contentsPodcastDefaultFolderInternal(const MaybeString& locationID) = 0;
  virtual MaybeString contentsPodcastDefaultFolderExternal(const MaybeString& locationID) = 0;
};

}  // namespace umsservice
