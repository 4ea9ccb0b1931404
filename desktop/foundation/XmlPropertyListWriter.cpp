#include "desktop/foundation/PropertyList.hpp"
#include "desktop/foundation/XmlScalars.hpp"

#include <algorithm>
#include <span>

namespace desktop {
namespace {

using namespace xmlScalars;

/// Visits a value and writes it, each element on its own line, indented by tabs.
class XmlWriter {
public:
  std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                    "<plist version=\"1.0\">\n";

  void operator()(bool truth) { line(truth ? "<true/>" : "<false/>"); }
  void operator()(std::int64_t number) { line("<integer>" + std::to_string(number) + "</integer>"); }
  void operator()(double number) { line("<real>" + realText(number) + "</real>"); }
  void operator()(const std::u16string& text) { line("<string>" + escapedText(text) + "</string>"); }
  void operator()(PropertyList::Date date) { line("<date>" + dateText(date) + "</date>"); }

  void operator()(const PropertyList::Data& data) {
    // The platform keeps lines within 76 columns and counts a tab as eight of them.
    const std::size_t letters = 76 - 8 * std::min(indentation, std::size_t{8});
    const std::size_t bytesPerLine = letters / 4 * 3;
    line("<data>");
    for (std::span rest(data); !rest.empty();) {
      const auto count = std::min(bytesPerLine, rest.size());
      line(dataText(rest.first(count)));
      rest = rest.subspan(count);
    }
    line("</data>");
  }

  void operator()(const PropertyList::Array& array) {
    if (array.empty()) return line("<array/>");
    line("<array>");
    ++indentation;
    for (const auto& element : array)
      std::visit(*this, element.value);
    --indentation;
    line("</array>");
  }

  void operator()(const PropertyList::Dictionary& dictionary) {
    if (dictionary.empty()) return line("<dict/>");
    line("<dict>");
    ++indentation;
    for (const auto& [key, element] : dictionary) {
      line("<key>" + escapedText(key) + "</key>");
      std::visit(*this, element.value);
    }
    --indentation;
    line("</dict>");
  }

private:
  std::size_t indentation = 0;

  void line(std::string_view text) {
    out.append(indentation, '\t');
    out += text;
    out += '\n';
  }
};

} // namespace

bool canBeXml(const PropertyList& value) {
  if (const auto* text = value.as<std::u16string>()) return fitsXml(*text);
  if (const auto* date = value.as<PropertyList::Date>()) return hasDateText(*date);
  if (const auto* array = value.as<PropertyList::Array>()) return std::all_of(array->begin(), array->end(), canBeXml);
  if (const auto* dictionary = value.as<PropertyList::Dictionary>()) {
    return std::all_of(dictionary->begin(), dictionary->end(),
                       [](const auto& entry) { return fitsXml(entry.first) && canBeXml(entry.second); });
  }
  return true;
}

std::string writeXml(const PropertyList& value) {
  XmlWriter writer;
  std::visit(writer, value.value);
  return std::move(writer.out) + "</plist>\n";
}

} // namespace desktop
