/// The diagnostic log: gated by a level that is read afresh for every statement.
///
/// One object for each service; const, and safe from any thread. The sink and the level source are the
/// host's (`umsservice/Log.h`). A message is only formatted when it will be written.
#pragma once

#include "StringFormat.h"
#include "umsservice/Environment.h"

namespace umsservice {

/// Where a statement stands: the method's full name as the host's runtime spells it, for example
/// "-[UMSService doUmsFileService:]", and the place in the source.
struct LogSite {
  LogSite(const char* methodName, const char* fileName = __builtin_FILE(), int lineNumber = __builtin_LINE())
      : method(methodName), file(fileName), line(lineNumber) {}

  const char* method;
  const char* file;
  int line;
};

class Log {
 public:
  explicit Log(const Environment& environment)
      : sink_(environment.logSink), levelSource_(environment.debugLevelSource) {}

  /// Whether a message of this level is written now. Costs a look at the level source.
  bool isWritten(int level) const;

  /// Writes "[file:method-(line)] message" when the debug level is `level` or higher.
  template <typename... Arguments>
  void write(int level, LogSite site, const char* format, const Arguments&... arguments) const {
    if (isWritten(level)) always(site, format, arguments...);
  }

  /// The same without the test.
  template <typename... Arguments>
  void always(LogSite site, const char* format, const Arguments&... arguments) const {
    emit(site, stringWithFormat(format, {FormatArgument(arguments)...}));
  }

  /// Writes the bare message: without its place, and without the test.
  template <typename... Arguments>
  void plain(const char* format, const Arguments&... arguments) const {
    sink_->write(stringWithFormat(format, {FormatArgument(arguments)...}));
  }

 private:
  void emit(LogSite site, const std::string& message) const;

  const std::shared_ptr<LogSink> sink_;
  const std::shared_ptr<DebugLevelSource> levelSource_;
};

}  // namespace umsservice
