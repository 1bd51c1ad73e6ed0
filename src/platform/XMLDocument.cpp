#include "XMLDocument.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlsave.h>
#include <utf8proc.h>

#include <algorithm>
#include <mutex>
#include <new>

namespace umsservice {
namespace {

const xmlChar* toXML(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

std::string_view fromXML(const xmlChar* text) {
  return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

template <typename T>
T* orOutOfMemory(T* made) {
  if (!made) throw std::bad_alloc();
  return made;
}

_xmlNode* elementFrom(_xmlNode* node) {
  while (node && node->type != XML_ELEMENT_NODE) node = node->next;
  return node;
}

std::optional<XMLElement> handleOf(_xmlNode* element) {
  return element ? std::optional<XMLElement>(element) : std::nullopt;
}

bool isLegal(utf8proc_int32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return character != 0xFFFE && character != 0xFFFF;
}

/// Length in bytes of the legal character at the start of a text; 0 when there is none.
size_t legalAtStart(std::string_view text) {
  utf8proc_int32_t character = 0;
  auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                 static_cast<utf8proc_ssize_t>(text.size()), &character);
  return length > 0 && isLegal(character) ? static_cast<size_t>(length) : 0;
}

/// The same for a run of printable ASCII characters, which most texts consist of.
size_t plainAtStart(std::string_view text) {
  auto isPlain = [](char character) { return character >= ' ' && character <= '~'; };
  return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
}

}  // namespace

std::string XMLElement::name() const {
  return std::string(fromXML(node_->name));
}

bool XMLElement::isNamed(std::string_view name) const {
  return fromXML(node_->name) == name;
}

MaybeString XMLElement::text() const {
  if (!node_->children) return std::nullopt;
  std::unique_ptr<xmlChar, void (*)(void*)> content(xmlNodeGetContent(node_), xmlFree);
  std::string_view text = fromXML(content.get());
  return text.empty() ? MaybeString() : MaybeString(text);
}

std::optional<XMLElement> XMLElement::firstChild() const {
  return handleOf(elementFrom(node_->children));
}

std::optional<XMLElement> XMLElement::firstChild(std::string_view name) const {
  auto child = firstChild();
  while (child && !child->isNamed(name)) child = child->next();
  return child;
}

std::optional<XMLElement> XMLElement::next() const {
  return handleOf(elementFrom(node_->next));
}

XMLElement XMLElement::append(const std::string& name, const MaybeString& text) const {
  _xmlNode* child = orOutOfMemory(xmlNewDocNode(node_->doc, nullptr, toXML(name), nullptr));
  xmlAddChild(node_, child);
  std::string legal = text ? XMLDocument::legalText(*text) : std::string();
  // A text longer than any document is cut; the rest still makes this one too long.
  int length = static_cast<int>(std::min(legal.size(), XMLDocument::kLongest + 1));
  if (length > 0) xmlAddChild(child, orOutOfMemory(xmlNewDocTextLen(node_->doc, toXML(legal), length)));
  return XMLElement(child);
}

void XMLElement::remove() const {
  xmlUnlinkNode(node_);
  xmlFreeNode(node_);
}

std::string XMLDocument::legalText(std::string_view text) {
  std::string legal;
  legal.reserve(text.size());
  while (!text.empty()) {
    size_t plain = plainAtStart(text);
    size_t length = plain > 0 ? plain : legalAtStart(text);
    legal.append(text.substr(0, length));
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return legal;
}

void XMLDocument::Free::operator()(_xmlDoc* document) const {
  xmlFreeDoc(document);
}

void XMLDocument::initialiseLibrary() {
  static std::once_flag once;
  std::call_once(once, xmlInitParser);
}

XMLDocument::XMLDocument(const std::string& rootName) {
  initialiseLibrary();
  document_.reset(orOutOfMemory(xmlNewDoc(toXML("1.0"))));
  _xmlNode* root = orOutOfMemory(xmlNewDocNode(document_.get(), nullptr, toXML(rootName), nullptr));
  xmlDocSetRootElement(document_.get(), root);
}

XMLElement XMLDocument::root() const {
  return XMLElement(xmlDocGetRootElement(document_.get()));
}

std::optional<std::string> XMLDocument::bytes() const {
  std::unique_ptr<xmlBuffer, void (*)(xmlBuffer*)> buffer(orOutOfMemory(xmlBufferCreate()), xmlBufferFree);
  // By default it grows by as much as is written at a time, and copies itself each time.
  xmlBufferSetAllocationScheme(buffer.get(), XML_BUFFER_ALLOC_DOUBLEIT);
  xmlSaveCtxt* saving =
      orOutOfMemory(xmlSaveToBuffer(buffer.get(), "utf-8", XML_SAVE_FORMAT | XML_SAVE_NO_EMPTY));
  bool saved = xmlSaveDoc(saving, document_.get()) >= 0;
  saved = xmlSaveClose(saving) >= 0 && saved;
  std::string_view written(fromXML(xmlBufferContent(buffer.get())));
  if (!saved || written.empty() || written.size() > kLongest) return std::nullopt;
  return std::string(written);
}

}  // namespace umsservice
