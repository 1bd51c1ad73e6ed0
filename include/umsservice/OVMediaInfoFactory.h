/// The host's tag reader.
#pragma once

#include <memory>
#include <string>

#include "umsservice/Export.h"
#include "umsservice/Value.h"

namespace umsservice {

/// Reads the tags of one file.
class UMS_EXPORT OVMediaInfoBuilder {
 public:
  virtual ~OVMediaInfoBuilder() = default;
  /// A new dictionary that the caller may change, or nothing when the file has no readable tags. The service
  /// reads "FileName", "FilePath", "FileSize", "AlbumArt" and "Title"; other keys pass through untouched.
  virtual MaybeDictionary build(const std::string& path) = 0;
};

/// Finds a reader for a file. Asked from the worker threads and from the host's threads.
class UMS_EXPORT OVMediaInfoFactory {
 public:
  virtual ~OVMediaInfoFactory() = default;
  /// Null when the file is of no known kind.
  virtual std::shared_ptr<OVMediaInfoBuilder> getBuilder(const std::string& path) = 0;
};

}  // namespace umsservice
