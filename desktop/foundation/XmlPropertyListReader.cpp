#include "desktop/foundation/Numbers.hpp"
#include "desktop/foundation/PropertyList.hpp"
#include "desktop/foundation/Text.hpp"
#include "desktop/foundation/XmlScalars.hpp"

#include <algorithm>
#include <cctype>
#include <optional>

namespace desktop {
namespace {

using namespace xmlScalars;

struct XmlFault {
  std::size_t at; // offset in the text
  std::string what;
};

struct Tag {
  std::string name;
  bool empty = false; // written as <name/>
  std::size_t at = 0;
};

/// Goes through the text once, from front to back. Mistakes leave it as an `XmlFault`.
class XmlReader {
public:
  explicit XmlReader(std::string_view source) : text(source) {}

  PropertyList document() {
    take("\xEF\xBB\xBF");
    checkEncoding();
    skipMarkup();
    const Tag root = openTag();
    PropertyList result = root.name == "plist" ? onlyChild(root) : element(root);
    skipMarkup();
    if (at != text.size()) fail(at, "something follows the end of the property list");
    return result;
  }

private:
  std::string_view text;
  std::size_t at = 0;
  unsigned nesting = 0;

  [[noreturn]] static void fail(std::size_t where, std::string what) { throw XmlFault{where, std::move(what)}; }

  bool lookingAt(std::string_view expected) const { return text.substr(at).starts_with(expected); }

  bool take(std::string_view expected) {
    if (!lookingAt(expected)) return false;
    at += expected.size();
    return true;
  }

  std::string_view takeUntil(std::string_view end, const char* what) {
    const auto start = at;
    const auto stop = text.find(end, start);
    if (stop == std::string_view::npos) fail(start, std::string(what) + " that does not end");
    at = stop + end.size();
    return text.substr(start, stop - start);
  }

  void skipWhitespace() { at = std::min(text.find_first_not_of(whitespace, at), text.size()); }

  void checkEncoding() const {
    if (!lookingAt("<?xml")) return;
    const auto declaration = text.substr(at, text.find("?>", at) - at);
    const auto open = declaration.find_first_of("\"'", declaration.find("encoding"));
    if (open == std::string_view::npos) return;
    auto name = std::string(declaration.substr(open + 1, declaration.find(declaration[open], open + 1) - open - 1));
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) { return std::tolower(letter); });
    if (name != "utf-8" && name != "us-ascii") fail(at, "an encoding other than UTF-8");
  }

  /// Whatever may stand between elements: whitespace, comments, processing instructions and the document type.
  void skipMarkup() {
    for (skipWhitespace(); at < text.size(); skipWhitespace()) {
      if (take("<!--")) {
        takeUntil("-->", "a comment");
      } else if (take("<?")) {
        takeUntil("?>", "a processing instruction");
      } else if (take("<!DOCTYPE")) {
        skipDocumentType();
      } else {
        return;
      }
    }
  }

  void skipDocumentType() {
    const auto start = at;
    for (int brackets = 0; at < text.size();) {
      const char letter = text[at++];
      if (letter == '"' || letter == '\'') takeUntil(std::string_view(&letter, 1), "a quotation");
      if (letter == '[') ++brackets;
      if (letter == ']') --brackets;
      if (letter == '>' && brackets <= 0) return;
    }
    fail(start, "a document type that does not end");
  }

  Tag openTag() {
    const auto start = at;
    if (at == text.size()) fail(at, "the text ends where an element should begin");
    if (!take("<") || lookingAt("/")) fail(start, "an element should begin here");
    const auto inside = takeUntil(">", "a tag");
    return {std::string(inside.substr(0, inside.find_first_of(" \t\r\n/"))), inside.ends_with('/'), start};
  }

  void closeTag(const Tag& tag) {
    const auto start = at;
    if (!take("</") || trimmed(takeUntil(">", "a tag")) != tag.name) {
      fail(start, "</" + tag.name + "> should stand here");
    }
  }

  /// The tag of the next child, or nothing once the parent ends.
  std::optional<Tag> nextChild(const Tag& parent) {
    if (parent.empty) return std::nullopt;
    skipMarkup();
    if (!lookingAt("</")) return openTag();
    closeTag(parent);
    return std::nullopt;
  }

  PropertyList onlyChild(const Tag& parent) {
    const auto child = nextChild(parent);
    if (!child) fail(parent.at, "<" + parent.name + "> is empty");
    PropertyList result = element(*child);
    if (const auto second = nextChild(parent)) fail(second->at, "<" + parent.name + "> holds more than one value");
    return result;
  }

  PropertyList element(const Tag& tag) {
    if (tag.name == "string") return content(tag);
    if (tag.name == "dict") return dictionary(tag);
    if (tag.name == "array") return array(tag);
    if (tag.name == "true" || tag.name == "false") return truth(tag);
    if (tag.name == "integer") return parsed(tag, integerFrom);
    if (tag.name == "real") return parsed(tag, realFrom);
    if (tag.name == "date") return parsed(tag, dateFrom);
    if (tag.name == "data") return parsed(tag, dataFrom);
    fail(tag.at, "<" + tag.name + "> is not an element of a property list");
  }

  void enter(const Tag& tag) {
    if (++nesting > maxPropertyListNesting) fail(tag.at, "elements are nested too deeply");
  }

  PropertyList array(const Tag& tag) {
    enter(tag);
    PropertyList::Array values;
    while (const auto child = nextChild(tag))
      values.push_back(element(*child));
    --nesting;
    return values;
  }

  PropertyList dictionary(const Tag& tag) {
    enter(tag);
    PropertyList::Dictionary values;
    while (const auto keyTag = nextChild(tag)) {
      if (keyTag->name != "key") fail(keyTag->at, "a <key> should stand here, not <" + keyTag->name + ">");
      auto key = content(*keyTag);
      const auto valueTag = nextChild(tag);
      if (!valueTag) fail(keyTag->at, "a key without a value");
      values.insert_or_assign(std::move(key), element(*valueTag));
    }
    --nesting;
    return values;
  }

  PropertyList truth(const Tag& tag) {
    if (const auto child = nextChild(tag)) fail(child->at, "<" + tag.name + "> must be empty");
    return tag.name == "true";
  }

  template <typename Convert> PropertyList parsed(const Tag& tag, Convert convert) {
    std::string narrow;
    for (const char16_t unit : content(tag))
      narrow.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
    const auto result = convert(narrow);
    if (!result) fail(tag.at, "<" + tag.name + "> does not hold one that can be read");
    return *result;
  }

  /// The text within an element, verbatim. Like the platform this refuses comments here.
  std::u16string content(const Tag& tag) {
    std::u16string result;
    if (tag.empty) return result;
    while (!lookingAt("</")) {
      if (take("<![CDATA[")) {
        while (!take("]]>"))
          append(result, nextCharacter());
      } else if (lookingAt("<")) {
        fail(at, "<" + tag.name + "> may hold nothing but text");
      } else if (take("&")) {
        append(result, reference());
      } else {
        append(result, nextCharacter());
      }
    }
    closeTag(tag);
    return result;
  }

  char32_t reference() {
    const auto start = at;
    const auto name = takeUntil(";", "an entity");
    if (name == "lt") return '<';
    if (name == "gt") return '>';
    if (name == "amp") return '&';
    if (name == "quot") return '"';
    if (name == "apos") return '\'';
    if (name.starts_with('#')) {
      constexpr char32_t lastPoint = 0x10FFFF;
      const bool hexadecimal = name.starts_with("#x");
      const auto number = numberIn<std::uint32_t>(name.substr(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10);
      if (number && *number <= lastPoint && !isSurrogate(*number)) return *number;
    }
    fail(start, "an unknown entity");
  }

  char32_t nextCharacter() {
    const auto start = at;
    if (at == text.size()) fail(at, "the text ends within an element");
    if (const auto point = nextPoint(text, at)) return *point;
    fail(start, "bytes that are not UTF-8");
  }
};

std::size_t lineOf(std::string_view text, std::size_t at) {
  std::size_t line = 1;
  for (std::size_t i = 0; i < at; ++i) {
    if (text[i] == '\n' || (text[i] == '\r' && !text.substr(i + 1).starts_with('\n'))) ++line;
  }
  return line;
}

} // namespace

PropertyListReading parseXmlPropertyList(std::string_view text) {
  try {
    return {XmlReader(text).document(), {}};
  } catch (const XmlFault& fault) {
    return {{}, "line " + std::to_string(lineOf(text, fault.at)) + ": " + fault.what};
  }
}

PropertyListReading parsePropertyList(std::string_view bytes) {
  return bytes.starts_with("bplist") ? parseBinaryPropertyList(bytes) : parseXmlPropertyList(bytes);
}

} // namespace desktop
