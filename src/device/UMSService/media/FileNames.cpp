#include "FileNames.h"

#include <utf8proc.h>

#include <algorithm>

#include "CaseFolding.h"
#include "StringPaths.h"

namespace umsservice {
namespace {

constexpr std::string_view kIllegal = "/:*?\"\\<>|\r\n";
constexpr std::string_view kScheme = "http://";

/// Length in bytes of a blank (a tab or a Unicode space) at the start of a text; 0 when there is none.
size_t blankAtStart(std::string_view text) {
  if (text.empty()) return 0;
  if (text.front() == '\t') return 1;
  utf8proc_int32_t character = 0;
  auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                 static_cast<utf8proc_ssize_t>(text.size()), &character);
  return length > 0 && utf8proc_category(character) == UTF8PROC_CATEGORY_ZS ? static_cast<size_t>(length) : 0;
}

/// The same at the end of a text.
size_t blankAtEnd(std::string_view text) {
  constexpr size_t kLongestCharacter = 4;
  for (size_t length = 1; length <= std::min(kLongestCharacter, text.size()); ++length) {
    if (blankAtStart(text.substr(text.size() - length)) == length) return length;
  }
  return 0;
}

std::string_view trimmed(std::string_view text) {
  while (size_t length = blankAtStart(text)) text.remove_prefix(length);
  while (size_t length = blankAtEnd(text)) text.remove_suffix(length);
  return text;
}

std::string cleaned(std::string name) {
  size_t scheme = findIgnoringAsciiCase(name, kScheme);
  if (scheme != std::string::npos) name.erase(scheme, kScheme.size());
  for (char& character : name) {
    if (kIllegal.find(character) != std::string_view::npos) character = '_';
  }
  return std::string(trimmed(name));
}

}  // namespace

MaybeString convertAvailableFileName(const Log& log, const MaybeString& name) {
  if (!name) return std::nullopt;
  std::string result = cleaned(*name);
  log.write(6, "-[UMSService convertAvailableFileName:]", "Convert %@ to %@", name, result);
  return result;
}

MaybeString convertAvailableString(const Log& log, const MaybeString& path) {
  if (!path) return std::nullopt;
  std::string result;
  for (const std::string& component : pathComponents(*path)) {
    if (component != "/") result += "/" + *convertAvailableFileName(log, component);
  }
  log.write(6, "-[UMSService convertAvailableString:]", "Convert %@ to %@", path, result);
  return result;
}

}  // namespace umsservice
