// Parsing of untrusted XML. The library's own limits stop neither quadratic work nor a document that grows a
// hundredfold in memory, so every place where one of them could begin has a limit here; see `Limits`.
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/valid.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "XMLDocument.h"

namespace umsservice {
namespace {

/// What a document may have besides its length and depth. An index of the longest length has fewer.
namespace Limits {
constexpr size_t kElements = 1'400'000;
/// Bytes of one tag or declaration: names and attributes in it are compared with each other.
constexpr size_t kMarkup = size_t{64} << 10;
/// Bytes of the document type, which is compared with every element.
constexpr size_t kDocumentType = size_t{16} << 10;
/// Steps of one element's content model.
constexpr size_t kContentModel = 512;
constexpr size_t kAttributes = 4096;
/// Declarations in the whole document: each prefix is looked up among those in force.
constexpr size_t kNamespaces = 256;
/// Bytes that all references to entities together may add.
constexpr size_t kEntities = size_t{1} << 20;
constexpr size_t kParameterEntities = size_t{16} << 10;
}  // namespace Limits

#if LIBXML_VERSION >= 21200
using LibraryError = const xmlError*;
#else
using LibraryError = xmlError*;
#endif

const char* toText(const xmlChar* text) {
  return reinterpret_cast<const char*>(text);
}

/// The library's words for an error, fit for one line of a log.
std::string inOneLine(std::string_view words) {
  constexpr size_t kLongest = 300;
  std::string line(words.substr(0, kLongest));
  std::replace(line.begin(), line.end(), '\n', ' ');
  while (line.ends_with(' ')) line.pop_back();
  return line;
}

size_t stepsOf(const xmlElementContent* model) {
  size_t steps = 0;
  for (; model; model = model->c2) steps += 1 + stepsOf(model->c1);
  return steps;
}

/// Whether an entity stands for plain text: no elements, and no further entity but the five that XML has.
bool isPlainText(std::string_view content) {
  for (size_t at = content.find_first_of("<&"); at != std::string_view::npos;
       at = content.find_first_of("<&", at + 1)) {
    std::string_view reference = content.substr(at, std::strlen("&quot;"));
    bool plain = false;
    for (std::string_view allowed : {"&#", "&amp;", "&lt;", "&gt;", "&quot;", "&apos;"})
      plain = plain || reference.starts_with(allowed);
    if (!plain) return false;
  }
  return true;
}

}  // namespace

/// One parse. The library calls back into it for every piece of the document; the first refusal ends the
/// input, so that the library finds its way out by itself.
class XMLDocument::Parser {
 public:
  explicit Parser(std::string_view bytes) : bytes_(bytes) {}

  Parsed parse();

 private:
  using Context = xmlParserCtxt;

  static Parser& of(void* context) { return *static_cast<Parser*>(static_cast<Context*>(context)->_private); }
  static void takeEvents(xmlSAXHandler& events);

  // Called by the library.
  static int onRead(void* parser, char* buffer, int size);
  static void onError(void* context, LibraryError error);
  static void onValidityError(void* parser, const char* format, ...);
  static void onValidityWarning(void* parser, const char* format, ...);
  static void onInternalSubset(void* context, const xmlChar* name, const xmlChar* publicId,
                               const xmlChar* systemId);
  static void onElementDecl(void* context, const xmlChar* name, int type, xmlElementContent* model);
  static void onEntityDecl(void* context, const xmlChar* name, int type, const xmlChar* publicId,
                           const xmlChar* systemId, xmlChar* content);
  static void onUnparsedEntity(void* context, const xmlChar* name, const xmlChar* publicId,
                               const xmlChar* systemId, const xmlChar* notation);
  static xmlEntity* onGetEntity(void* context, const xmlChar* name);
  static xmlEntity* onGetParameterEntity(void* context, const xmlChar* name);
  static void onReference(void* context, const xmlChar* name);
  static void onStartElement(void* context, const xmlChar* localName, const xmlChar* prefix, const xmlChar*,
                             int namespaceCount, const xmlChar**, int attributeCount, int defaultedCount,
                             const xmlChar** attributes);
  static void onEndElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*);
  static void onCharacters(void* context, const xmlChar* text, int length);

  int read(char* buffer, int size);
  bool isMarkupTooLong() const;
  bool countElement(int namespaceCount);
  void addAttributes(_xmlNode* element, const xmlChar** attributes, int count);
  xmlEntity* counted(xmlEntity* entity, size_t& total, size_t limit);
  bool isValid(_xmlDoc* document);
  void refuse(const char* reason);
  bool isRefused() const { return !error_.empty(); }
  /// Something was recognised: what comes now is another piece of markup.
  void note() { noted_ = read_; }

  const std::string_view bytes_;
  Context* context_ = nullptr;
  std::string error_;            ///< the first one
  size_t read_ = 0;              ///< bytes handed to the library
  size_t noted_ = 0;             ///< of them, at the last piece that was recognised
  bool inDocumentType_ = false;  ///< or behind it, before the root element
  bool hasDocumentType_ = false;
  size_t documentTypeStart_ = 0;
  size_t depth_ = 0;
  size_t elements_ = 0;
  size_t attributes_ = 0;
  size_t namespaces_ = 0;
  size_t entities_ = 0;  ///< bytes added by references
  size_t parameterEntities_ = 0;
};

XMLDocument::Parsed XMLDocument::parse(std::string_view bytes) {
  initialiseLibrary();
  if (bytes.size() > kLongest) return {std::nullopt, "the document is longer than 32 MiB"};
  return Parser(bytes).parse();
}

void XMLDocument::Parser::takeEvents(xmlSAXHandler& events) {
  events.startElementNs = onStartElement;
  events.endElementNs = onEndElement;
  events.characters = onCharacters;
  events.reference = onReference;
  events.getEntity = onGetEntity;
  events.getParameterEntity = onGetParameterEntity;
  events.internalSubset = onInternalSubset;
  events.externalSubset = nullptr;
  events.elementDecl = onElementDecl;
  events.entityDecl = onEntityDecl;
  events.unparsedEntityDecl = onUnparsedEntity;
  events.comment = [](void* context, const xmlChar*) { of(context).note(); };
  events.processingInstruction = [](void* context, const xmlChar*, const xmlChar*) { of(context).note(); };
  events.serror = onError;
}

XMLDocument::Parsed XMLDocument::Parser::parse() {
  std::unique_ptr<Context, void (*)(Context*)> context(xmlNewParserCtxt(), xmlFreeParserCtxt);
  if (!context) throw std::bad_alloc();
  context_ = context.get();
  takeEvents(*context->sax);
  context->_private = this;
  constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOBLANKS | XML_PARSE_NOCDATA | XML_PARSE_NOERROR |
                           XML_PARSE_NOWARNING | XML_PARSE_HUGE;
  XMLDocument document(xmlCtxtReadIO(context_, onRead, nullptr, this, nullptr, nullptr, kOptions));
  if (!document.document_ && !isRefused()) error_ = "the document is not well-formed";
  if (!isRefused() && hasDocumentType_ && !isValid(document.document_.get()) && !isRefused())
    error_ = "the document is not valid";
  if (isRefused()) return {std::nullopt, error_};
  return {std::move(document), {}};
}

void XMLDocument::Parser::refuse(const char* reason) {
  if (error_.empty()) error_ = reason;
}

int XMLDocument::Parser::onRead(void* parser, char* buffer, int size) {
  return static_cast<Parser*>(parser)->read(buffer, size);
}

int XMLDocument::Parser::read(char* buffer, int size) {
  if (inDocumentType_ && read_ - documentTypeStart_ > Limits::kDocumentType)
    refuse("the document type is too long");
  if (isMarkupTooLong()) refuse("a tag is too long");
  if (isRefused() || size <= 0) return 0;
  size_t length = bytes_.copy(buffer, static_cast<size_t>(size), read_);
  read_ += length;
  return static_cast<int>(length);
}

/// How long a comment and the like are costs nothing.
bool XMLDocument::Parser::isMarkupTooLong() const {
  if (read_ - noted_ <= Limits::kMarkup) return false;
  auto state = context_->instate;
  return state != XML_PARSER_CDATA_SECTION && state != XML_PARSER_COMMENT && state != XML_PARSER_PI;
}

void XMLDocument::Parser::onError(void* context, LibraryError error) {
  Parser& parser = of(context);
  // A prefix without a namespace is a name like any other here.
  if (error->level < XML_ERR_ERROR || error->domain == XML_FROM_NAMESPACE) return;
  if (!parser.error_.empty() || !error->message) return;
  parser.error_ = "line " + std::to_string(error->line) + ": " + inOneLine(error->message);
}

void XMLDocument::Parser::onInternalSubset(void* context, const xmlChar* name, const xmlChar* publicId,
                                           const xmlChar* systemId) {
  Parser& parser = of(context);
  parser.note();
  parser.hasDocumentType_ = parser.inDocumentType_ = true;
  parser.documentTypeStart_ = parser.read_;
  xmlSAX2InternalSubset(context, name, publicId, systemId);
}

void XMLDocument::Parser::onElementDecl(void* context, const xmlChar* name, int type,
                                        xmlElementContent* model) {
  of(context).note();
  if (stepsOf(model) > Limits::kContentModel) of(context).refuse("a content model is too long");
  xmlSAX2ElementDecl(context, name, type, model);
}

void XMLDocument::Parser::onEntityDecl(void* context, const xmlChar* name, int type, const xmlChar* publicId,
                                       const xmlChar* systemId, xmlChar* content) {
  of(context).note();
  if (type != XML_INTERNAL_GENERAL_ENTITY && type != XML_INTERNAL_PARAMETER_ENTITY) {
    of(context).refuse("an entity lies outside the document");
  } else if (type == XML_INTERNAL_GENERAL_ENTITY && content && !isPlainText(toText(content))) {
    of(context).refuse("an entity stands for more than plain text");
  } else {
    xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
  }
}

void XMLDocument::Parser::onUnparsedEntity(void* context, const xmlChar*, const xmlChar*, const xmlChar*,
                                           const xmlChar*) {
  of(context).refuse("an entity lies outside the document");
}

xmlEntity* XMLDocument::Parser::counted(xmlEntity* entity, size_t& total, size_t limit) {
  if (isRefused() || !entity) return nullptr;
  total += 1 + static_cast<size_t>(std::max(entity->length, 0));
  if (total <= limit) return entity;
  refuse("entities make the document too long");
  return nullptr;
}

xmlEntity* XMLDocument::Parser::onGetEntity(void* context, const xmlChar* name) {
  Parser& parser = of(context);
  return parser.counted(xmlSAX2GetEntity(context, name), parser.entities_, Limits::kEntities);
}

xmlEntity* XMLDocument::Parser::onGetParameterEntity(void* context, const xmlChar* name) {
  Parser& parser = of(context);
  return parser.counted(xmlSAX2GetParameterEntity(context, name), parser.parameterEntities_,
                        Limits::kParameterEntities);
}

/// The library has parsed an entity's content by the time that it is referred to; the text takes the place of
/// the reference.
void XMLDocument::Parser::onReference(void* context, const xmlChar* name) {
  Parser& parser = of(context);
  if (parser.isRefused()) return;
  auto* entity = xmlGetDocEntity(static_cast<Context*>(context)->myDoc, name);
  if (!entity) return parser.refuse("an entity is not declared");
  for (_xmlNode* part = entity->children; part; part = part->next) {
    if (part->type != XML_TEXT_NODE || !part->content) continue;
    onCharacters(context, part->content, static_cast<int>(std::strlen(toText(part->content))));
  }
}

void XMLDocument::Parser::onStartElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                                         const xmlChar*, int namespaceCount, const xmlChar**,
                                         int attributeCount, int defaultedCount, const xmlChar** attributes) {
  Parser& parser = of(context);
  auto& parsing = *static_cast<Context*>(context);
  if (!parser.countElement(namespaceCount)) return;
  std::string name = prefix ? std::string(toText(prefix)) + ":" + toText(localName) : toText(localName);
  _xmlNode* element =
      xmlNewDocNode(parsing.myDoc, nullptr, reinterpret_cast<const xmlChar*>(name.c_str()), nullptr);
  if (!element) return parser.refuse("out of memory");
  xmlAddChild(parsing.node ? parsing.node : reinterpret_cast<_xmlNode*>(parsing.myDoc), element);
  if (parser.hasDocumentType_) parser.addAttributes(element, attributes, attributeCount - defaultedCount);
  parsing.nodemem = -1;  // text that follows is not a continuation of the text before
  nodePush(&parsing, element);
}

bool XMLDocument::Parser::countElement(int namespaceCount) {
  note();
  inDocumentType_ = false;
  namespaces_ += static_cast<size_t>(namespaceCount);
  if (++depth_ > kDeepest) refuse("elements are nested too deeply");
  if (++elements_ > Limits::kElements) refuse("the document has too many elements");
  if (namespaces_ > Limits::kNamespaces) refuse("the document has too many namespaces");
  return !isRefused();
}

/// Five entries stand for an attribute: name, prefix, namespace, and the first and last byte of the value.
void XMLDocument::Parser::addAttributes(_xmlNode* element, const xmlChar** attributes, int count) {
  for (int i = 0; i < count; ++i, attributes += 5) {
    if (++attributes_ > Limits::kAttributes) return refuse("the document has too many attributes");
    std::string name = attributes[1] ? std::string(toText(attributes[1])) + ":" : std::string();
    name += toText(attributes[0]);
    std::string value(toText(attributes[3]), toText(attributes[4]));
    xmlNewProp(element, reinterpret_cast<const xmlChar*>(name.c_str()),
               reinterpret_cast<const xmlChar*>(value.c_str()));
  }
}

void XMLDocument::Parser::onEndElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  Parser& parser = of(context);
  parser.note();
  if (parser.isRefused()) return;
  --parser.depth_;
  static_cast<Context*>(context)->nodemem = -1;
  nodePop(static_cast<Context*>(context));
}

void XMLDocument::Parser::onCharacters(void* context, const xmlChar* text, int length) {
  Parser& parser = of(context);
  parser.note();
  if (!parser.isRefused()) xmlSAX2Characters(context, text, length);
}

void XMLDocument::Parser::onValidityError(void* parser, const char* format, ...) {
  std::string& error = static_cast<Parser*>(parser)->error_;
  if (!error.empty()) return;
  char words[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(words, sizeof words, format, arguments);
  va_end(arguments);
  error = inOneLine(words);
}

void XMLDocument::Parser::onValidityWarning(void*, const char*, ...) {}

/// The steps of the library's own validation but for the one that loads an external subset.
bool XMLDocument::Parser::isValid(_xmlDoc* document) {
  std::unique_ptr<xmlValidCtxt, void (*)(xmlValidCtxt*)> validation(xmlNewValidCtxt(), xmlFreeValidCtxt);
  if (!validation) throw std::bad_alloc();
  validation->userData = this;
  validation->error = onValidityError;
  validation->warning = onValidityWarning;
  return document->intSubset && xmlValidateDtdFinal(validation.get(), document) == 1 &&
         xmlValidateRoot(validation.get(), document) == 1 &&
         xmlValidateElement(validation.get(), document, xmlDocGetRootElement(document)) == 1 &&
         xmlValidateDocumentFinal(validation.get(), document) == 1;
}

}  // namespace umsservice
