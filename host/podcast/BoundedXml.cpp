#include "podcast/BoundedXml.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace umsctl {
namespace {

/// What the library itself bounds badly: attributes of a tag are compared with each other, and each prefix is
/// looked up among the namespaces in force.
namespace Limits {
constexpr size_t kElements = 1'000'000;
constexpr size_t kDepth = 64;
constexpr size_t kNamespaces = 256;
constexpr size_t kMarkup = size_t{64} << 10;  ///< bytes of one tag
}  // namespace Limits

#if LIBXML_VERSION >= 21200
using LibraryError = const xmlError*;
#else
using LibraryError = xmlError*;
#endif

std::string textOf(const xmlChar* text) {
  return text ? std::string(reinterpret_cast<const char*>(text)) : std::string();
}

/// One reading. The first refusal ends the input.
class Reading {
 public:
  Reading(std::string_view bytes, XmlListener& listener) : bytes_(bytes), listener_(listener) {}

  std::string run();

 private:
  static Reading& of(void* reading) { return *static_cast<Reading*>(reading); }
  static xmlSAXHandler events();

  // Called by the library.
  static int onRead(void* reading, char* buffer, int size);
  static void onError(void* reading, LibraryError error);
  static void onStart(void* reading, const xmlChar* local, const xmlChar* prefix, const xmlChar* space,
                      int namespaceCount, const xmlChar**, int attributeCount, int,
                      const xmlChar** attributes);
  static void onText(void* reading, const xmlChar* text, int length);

  void start(const XmlName& name, int namespaceCount, int attributeCount, const xmlChar** attributes);
  bool isMarkupTooLong() const;
  void refuse(const std::string& reason);
  /// Something was recognised: what comes now is another piece of markup.
  void note() { noted_ = read_; }

  const std::string_view bytes_;
  XmlListener& listener_;
  xmlParserCtxt* context_ = nullptr;
  std::string error_;
  size_t read_ = 0;
  size_t noted_ = 0;
  size_t depth_ = 0;
  size_t elements_ = 0;
  size_t namespaces_ = 0;
};

xmlSAXHandler Reading::events() {
  xmlSAXHandler events{};
  events.initialized = XML_SAX2_MAGIC;
  events.internalSubset = [](void* reading, const xmlChar*, const xmlChar*, const xmlChar*) {
    of(reading).refuse("it declares a document type, which no feed needs");
  };
  events.getEntity = [](void*, const xmlChar* name) { return xmlGetPredefinedEntity(name); };
  events.startElementNs = onStart;
  events.endElementNs = [](void* reading, const xmlChar*, const xmlChar*, const xmlChar*) {
    Reading& self = of(reading);
    self.note();
    --self.depth_;
    if (self.error_.empty()) self.listener_.endElement();
  };
  events.characters = events.ignorableWhitespace = events.cdataBlock = onText;
  events.comment = [](void* reading, const xmlChar*) { of(reading).note(); };
  events.processingInstruction = [](void* reading, const xmlChar*, const xmlChar*) { of(reading).note(); };
  events.serror = onError;
  return events;
}

std::string Reading::run() {
  xmlInitParser();
  xmlSAXHandler handler = events();
  std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxt*)> context(
      xmlCreateIOParserCtxt(&handler, this, onRead, nullptr, this, XML_CHAR_ENCODING_NONE),
      xmlFreeParserCtxt);
  if (!context) throw std::bad_alloc();
  context_ = context.get();
  xmlCtxtUseOptions(context_, XML_PARSE_NONET);
  int failed = xmlParseDocument(context_);
  // None is built, but the library may have begun one.
  if (context_->myDoc) xmlFreeDoc(context_->myDoc);
  context_->myDoc = nullptr;
  if (error_.empty() && (failed != 0 || !context_->wellFormed)) error_ = "it is not well-formed XML";
  return error_;
}

int Reading::onRead(void* reading, char* buffer, int size) {
  Reading& self = of(reading);
  if (self.isMarkupTooLong()) self.refuse("a tag in it is too long");
  if (!self.error_.empty() || size <= 0) return 0;
  size_t length = std::min(static_cast<size_t>(size), self.bytes_.size() - self.read_);
  std::memcpy(buffer, self.bytes_.data() + self.read_, length);
  self.read_ += length;
  return static_cast<int>(length);
}

/// How long a comment and the like are costs nothing.
bool Reading::isMarkupTooLong() const {
  if (!context_ || read_ - noted_ <= Limits::kMarkup) return false;
  auto state = context_->instate;
  return state != XML_PARSER_CDATA_SECTION && state != XML_PARSER_COMMENT && state != XML_PARSER_PI;
}

void Reading::onError(void* reading, LibraryError error) {
  Reading& self = of(reading);
  // A prefix without a namespace is a name like any other.
  if (error->level < XML_ERR_ERROR || error->domain == XML_FROM_NAMESPACE || !error->message) return;
  std::string words(error->message, std::min<size_t>(std::strlen(error->message), 300));
  words.erase(std::remove(words.begin(), words.end(), '\n'), words.end());
  self.refuse("line " + std::to_string(error->line) + ": " + words);
}

void Reading::onStart(void* reading, const xmlChar* local, const xmlChar* prefix, const xmlChar* space,
                      int namespaceCount, const xmlChar**, int attributeCount, int,
                      const xmlChar** attributes) {
  of(reading).start({textOf(space ? space : prefix), textOf(local)}, namespaceCount, attributeCount,
                    attributes);
}

void Reading::start(const XmlName& name, int namespaceCount, int attributeCount, const xmlChar** attributes) {
  note();
  namespaces_ += static_cast<size_t>(namespaceCount);
  if (++depth_ > Limits::kDepth) refuse("its elements are nested too deeply");
  if (++elements_ > Limits::kElements) refuse("it has too many elements");
  if (namespaces_ > Limits::kNamespaces) refuse("it has too many namespaces");
  if (!error_.empty()) return;
  std::vector<XmlAttribute> list;
  // Five entries for each: name, prefix, namespace, and the first and last byte of the value.
  for (int i = 0; i < attributeCount; ++i, attributes += 5) {
    auto* first = reinterpret_cast<const char*>(attributes[3]);
    auto* last = reinterpret_cast<const char*>(attributes[4]);
    list.push_back({textOf(attributes[0]), std::string(first, last)});
  }
  listener_.startElement(name, list);
}

void Reading::onText(void* reading, const xmlChar* text, int length) {
  Reading& self = of(reading);
  self.note();
  if (self.error_.empty() && length > 0)
    self.listener_.characters({reinterpret_cast<const char*>(text), static_cast<size_t>(length)});
}

/// The input ends with it; the library finds its way out by itself.
void Reading::refuse(const std::string& reason) {
  if (error_.empty()) error_ = reason;
}

}  // namespace

std::string readXml(std::string_view bytes, XmlListener& listener) {
  if (bytes.size() > kLongestXml) return "it is longer than 32 MiB";
  return Reading(bytes, listener).run();
}

}  // namespace umsctl
