#include "desktop/foundation/BinaryPropertyListFormat.hpp"
#include "desktop/foundation/PropertyList.hpp"

#include <algorithm>
#include <bit>

namespace desktop {
namespace {

using namespace binaryPropertyList;

/// Visits objects breadth first, so that the children of each container have consecutive numbers.
class BinaryWriter {
public:
  std::string write(const PropertyList& root) {
    collect(root);
    referenceSize = bytesFor(objects.size());
    for (const auto& [value, key] : objects) {
      offsets.push_back(out.size());
      if (key != nullptr) {
        (*this)(*key);
      } else {
        std::visit(*this, value->value);
      }
    }
    finish();
    return std::move(out);
  }

  void operator()(bool truth) { marker(Simple, truth ? trueSize : falseSize); }

  void operator()(std::int64_t number) {
    // In 1, 2 or 4 bytes a reader sees no sign. A negative number has its upper bits set and so gets all 8.
    const auto size = bytesFor(static_cast<std::uint64_t>(number));
    marker(Integer, static_cast<unsigned>(std::countr_zero(size)));
    append(static_cast<std::uint64_t>(number), size);
  }

  void operator()(double number) {
    marker(Real, 3);
    append(std::bit_cast<std::uint64_t>(number), 8);
  }

  void operator()(PropertyList::Date date) {
    marker(Moment, 3);
    append(std::bit_cast<std::uint64_t>(date.seconds), 8);
  }

  void operator()(const std::u16string& text) {
    const bool ascii = std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
    sized(ascii ? Ascii : Utf16, text.size());
    for (const char16_t unit : text)
      append(unit, ascii ? 1 : 2);
  }

  void operator()(const PropertyList::Data& data) {
    sized(Bytes, data.size());
    for (const std::byte byte : data)
      append(std::to_integer<std::uint64_t>(byte), 1);
  }

  void operator()(const PropertyList::Array& array) {
    sized(List, array.size());
    references(array.size());
  }

  void operator()(const PropertyList::Dictionary& dictionary) {
    sized(Table, dictionary.size());
    references(2 * dictionary.size());
  }

private:
  /// A value, or else the key of a dictionary.
  struct Numbered {
    const PropertyList* value;
    const std::u16string* key;
  };

  std::string out{magic};
  std::vector<Numbered> objects;
  std::vector<std::uint64_t> offsets;
  std::size_t referenceSize = 1;
  std::uint64_t nextChild = 1;

  /// 1, 2, 4 or 8.
  static std::size_t bytesFor(std::uint64_t number) {
    return std::bit_ceil(static_cast<std::size_t>(std::bit_width(number | 1) + 7) / 8);
  }

  void collect(const PropertyList& root) {
    objects.push_back({&root, nullptr});
    for (std::size_t i = 0; i < objects.size(); ++i) {
      if (objects[i].value == nullptr) continue;
      if (const auto* array = objects[i].value->as<PropertyList::Array>()) {
        for (const auto& element : *array)
          objects.push_back({&element, nullptr});
      } else if (const auto* dictionary = objects[i].value->as<PropertyList::Dictionary>()) {
        for (const auto& entry : *dictionary)
          objects.push_back({nullptr, &entry.first});
        for (const auto& entry : *dictionary)
          objects.push_back({&entry.second, nullptr});
      }
    }
  }

  void append(std::uint64_t number, std::size_t size) {
    while (size-- > 0)
      out.push_back(static_cast<char>(number >> 8 * size));
  }

  void marker(Kind kind, unsigned size) { append(static_cast<unsigned>(kind) << 4 | size, 1); }

  void sized(Kind kind, std::size_t size) {
    marker(kind, static_cast<unsigned>(std::min(size, std::size_t{sizeFollows})));
    if (size >= sizeFollows) (*this)(static_cast<std::int64_t>(size));
  }

  void references(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      append(nextChild++, referenceSize);
  }

  void finish() {
    const auto tableAt = out.size();
    const auto offsetSize = bytesFor(tableAt);
    for (const auto offset : offsets)
      append(offset, offsetSize);
    append(0, 6);
    append(offsetSize, 1);
    append(referenceSize, 1);
    append(objects.size(), 8);
    append(0, 8); // the first object is the outermost
    append(tableAt, 8);
  }
};

} // namespace

std::string writeBinary(const PropertyList& value) {
  return BinaryWriter().write(value);
}

} // namespace desktop
