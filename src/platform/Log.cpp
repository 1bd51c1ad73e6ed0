#include "Log.h"

#include "StringPaths.h"

namespace umsservice {

bool Log::isWritten(int level) const {
  return levelSource_->debugLevel() >= level;
}

void Log::emit(LogSite site, const std::string& message) const {
  sink_->write(
      stringWithFormat("[%s:%s-(%d)] %@", {lastPathComponent(site.file), site.method, site.line, message}));
}

}  // namespace umsservice
