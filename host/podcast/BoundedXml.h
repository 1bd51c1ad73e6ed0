/// Reading of XML that comes from the network, piece by piece, in bounded time and memory.
///
/// A document type is refused, and with it every entity but the five that XML has and every look outside the
/// bytes. Depth, elements, namespaces and the length of a tag have limits. Texts arrive as UTF-8, whatever
/// the document's encoding. No state; safe from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace umsctl {

struct XmlName {
  std::string space;  ///< address of the namespace, empty for none; the prefix where that is not declared
  std::string local;
};

struct XmlAttribute {
  std::string name;  ///< without a prefix
  std::string value;
};

/// Hears the pieces of a document in their order.
class XmlListener {
 public:
  virtual ~XmlListener() = default;
  virtual void startElement(const XmlName& name, const std::vector<XmlAttribute>& attributes) = 0;
  /// A part of a text; the rest of it may follow.
  virtual void characters(std::string_view text) = 0;
  virtual void endElement() = 0;
};

/// The longest document that is read, in bytes.
constexpr size_t kLongestXml = size_t{32} << 20;

/// Nothing, or in words why the bytes are no document that is read; the listener has then heard a part of it.
std::string readXml(std::string_view bytes, XmlListener& listener);

}  // namespace umsctl
