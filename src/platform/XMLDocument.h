/// An XML document in memory: built element by element, or parsed from bytes that nobody vouches for.
///
/// Knows elements and their text; comments and processing instructions are not kept, attributes only for
/// validation. A document belongs to one thread at a time; two documents have nothing in common. Texts are
/// UTF-8. The parser lies in `XMLParser.cpp`.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "umsservice/Value.h"

struct _xmlDoc;
struct _xmlNode;

namespace umsservice {

/// One element: a light handle that is valid as long as the element is in its document.
class XMLElement {
 public:
  explicit XMLElement(_xmlNode* node) : node_(node) {}

  /// The full name, a prefix included.
  std::string name() const;
  bool isNamed(std::string_view name) const;
  /// All text in the element; nil when there is none.
  MaybeString text() const;

  /// The first child element, the first of a name, and the next element beside this one.
  std::optional<XMLElement> firstChild() const;
  std::optional<XMLElement> firstChild(std::string_view name) const;
  std::optional<XMLElement> next() const;

  /// Adds a child behind all others. The name has to be one that XML allows; of the text, what XML allows is
  /// kept (`XMLDocument::legalText`).
  XMLElement append(const std::string& name, const MaybeString& text = std::nullopt) const;
  /// Takes the element out of its document for good.
  void remove() const;

 private:
  _xmlNode* node_;
};

class XMLDocument {
 public:
  /// What parsing accepts, and therefore all that is written.
  static constexpr size_t kLongest = size_t{32} << 20;  ///< bytes of a whole document
  static constexpr size_t kDeepest = 64;                ///< levels of elements, the root included

  struct Parsed;
  /// Reads a document in bounded time and memory. One that declares a document type is validated against its
  /// internal subset. Nothing outside the bytes is loaded: a document that asks for it is refused, as are
  /// entities that stand for anything but plain text.
  static Parsed parse(std::string_view bytes);

  /// What a document keeps of a text: control characters and bytes that are no UTF-8 are left out.
  static std::string legalText(std::string_view text);

  /// A new document with an empty root element.
  explicit XMLDocument(const std::string& rootName);

  XMLElement root() const;
  /// The whole document in UTF-8, indented, each element without text on a line of its own; nothing when that
  /// is longer than what can be read back.
  std::optional<std::string> bytes() const;

 private:
  struct Free {
    void operator()(_xmlDoc* document) const;
  };
  class Parser;

  explicit XMLDocument(_xmlDoc* document) : document_(document) {}
  /// Has to come before everything else that the library is asked for, on whichever thread.
  static void initialiseLibrary();

  std::unique_ptr<_xmlDoc, Free> document_;
};

/// A document, or in words why there is none.
struct XMLDocument::Parsed {
  std::optional<XMLDocument> document;
  std::string error;
};

}  // namespace umsservice
