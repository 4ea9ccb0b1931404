#include "desktop/foundation/BinaryPropertyListFormat.hpp"
#include "desktop/foundation/PropertyList.hpp"

#include <algorithm>
#include <bit>
#include <span>

namespace desktop {
namespace {

using namespace binaryPropertyList;

struct BinaryFault {
  std::size_t at; // offset in the bytes
  std::string what;
};

std::uint64_t bigEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char byte : bytes)
    number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

/// Walks through one object; its faults name the object's offset.
class Cursor {
public:
  Cursor(std::string_view allObjects, std::size_t offset) : objects(allObjects), start(offset), at(offset) {}

  [[noreturn]] void fail(std::string what) const { throw BinaryFault{start, std::move(what)}; }

  std::string_view take(std::uint64_t count, std::size_t size = 1) {
    if (count > (objects.size() - at) / size) fail("an object that reaches beyond the end of the objects");
    const auto bytes = objects.substr(at, count * size);
    at += bytes.size();
    return bytes;
  }

  unsigned byte() { return static_cast<unsigned char>(take(1)[0]); }

  /// The number of elements: in the object's first byte or, when they are many, as an integer that follows it.
  std::uint64_t count(unsigned size) {
    if (size != sizeFollows) return size;
    const unsigned marker = byte();
    if (marker >> 4 != Integer || (marker & 15) > 3) fail("an object of a size that cannot be read");
    return bigEndian(take(1U << (marker & 15)));
  }

private:
  std::string_view objects;
  std::size_t start;
  std::size_t at;
};

std::int64_t integerFrom(Cursor& cursor, unsigned size) {
  if (size > 4) cursor.fail("an integer of more than 16 bytes");
  const auto bytes = cursor.take(1U << size);
  if (size < 3) return static_cast<std::int64_t>(bigEndian(bytes)); // those of 1, 2 or 4 bytes have no sign
  const auto low = static_cast<std::int64_t>(bigEndian(bytes.substr(bytes.size() - 8)));
  const auto sign = low < 0 ? ~std::uint64_t{0} : 0;
  if (size == 4 && bigEndian(bytes.substr(0, 8)) != sign) cursor.fail("an integer that does not fit 64 bits");
  return low;
}

double realFrom(Cursor& cursor, unsigned size) {
  if (size == 2) return std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(cursor.take(4))));
  if (size == 3) return std::bit_cast<double>(bigEndian(cursor.take(8)));
  cursor.fail("a real of neither 4 nor 8 bytes");
}

class BinaryReader {
public:
  explicit BinaryReader(std::string_view source) : bytes(source) {
    if (!bytes.starts_with(magic)) throw BinaryFault{0, "not a binary property list of version 00"};
    if (bytes.size() < magic.size() + trailerSize) throw BinaryFault{bytes.size(), "the end comes before the trailer"};
    const auto trailerAt = bytes.size() - trailerSize;
    const auto trailer = bytes.substr(trailerAt);
    offsetSize = static_cast<unsigned char>(trailer[6]);
    referenceSize = static_cast<unsigned char>(trailer[7]);
    objectCount = bigEndian(trailer.substr(8, 8));
    topObject = bigEndian(trailer.substr(16, 8));
    const auto tableAt = bigEndian(trailer.substr(24, 8));
    if (offsetSize < 1 || offsetSize > 8 || referenceSize < 1 || referenceSize > 8) {
      throw BinaryFault{trailerAt, "a trailer with impossible sizes"};
    }
    if (tableAt < magic.size() || tableAt > trailerAt || objectCount > (trailerAt - tableAt) / offsetSize) {
      throw BinaryFault{trailerAt, "a table of objects that reaches beyond the end"};
    }
    objects = bytes.substr(0, tableAt);
    table = bytes.substr(tableAt, objectCount * offsetSize);
    // An object may be named by several containers and is then read once for each. Ten arrays, each of which names the
    // next ten times, would be ten thousand million values: so there is an end to what a file of this size may become.
    budget = (std::size_t{1} << 20) + 8 * bytes.size();
  }

  PropertyList document() { return object(topObject, bytes.size() - trailerSize); }

private:
  std::string_view bytes;
  std::string_view objects;
  std::string_view table;
  std::size_t offsetSize = 0;
  std::size_t referenceSize = 0;
  std::uint64_t objectCount = 0;
  std::uint64_t topObject = 0;
  std::size_t budget = 0;
  unsigned nesting = 0;

  /// `mentionedAt` is where the number of the object was found.
  PropertyList object(std::uint64_t number, std::size_t mentionedAt) {
    if (number >= objectCount) throw BinaryFault{mentionedAt, "a mention of an object that does not exist"};
    const auto offset = bigEndian(table.substr(number * offsetSize, offsetSize));
    if (offset < magic.size() || offset >= objects.size()) {
      throw BinaryFault{mentionedAt, "a mention of an object that lies outside the objects"};
    }
    Cursor cursor(objects, offset);
    const unsigned marker = cursor.byte();
    return object(cursor, marker >> 4, marker & 15, offset);
  }

  PropertyList object(Cursor& cursor, unsigned kind, unsigned size, std::size_t offset) {
    spend(cursor, 1);
    switch (kind) {
    case Simple:
      if (size == falseSize || size == trueSize) return size == trueSize;
      break;
    case Integer:
      return integerFrom(cursor, size);
    case Real:
      return realFrom(cursor, size);
    case Moment:
      return PropertyList::Date{realFrom(cursor, size)};
    case Bytes:
      return data(cursor, size);
    case Ascii:
      return ascii(cursor, size);
    case Utf16:
      return utf16(cursor, size);
    case Uid:
      return uid(cursor, size);
    case List:
      return array(cursor, size, offset);
    case Table:
      return dictionary(cursor, size, offset);
    default:
      break;
    }
    cursor.fail("an object of a kind that does not belong in a property list");
  }

  void spend(const Cursor& cursor, std::size_t amount) {
    if (amount > budget) cursor.fail("objects that are mentioned too many times");
    budget -= amount;
  }

  std::string_view payload(Cursor& cursor, unsigned size, std::size_t elementSize) {
    const auto content = cursor.take(cursor.count(size), elementSize);
    spend(cursor, content.size());
    return content;
  }

  PropertyList data(Cursor& cursor, unsigned size) {
    const auto content = std::as_bytes(std::span(payload(cursor, size, 1)));
    return PropertyList::Data(content.begin(), content.end());
  }

  PropertyList ascii(Cursor& cursor, unsigned size) {
    const auto content = payload(cursor, size, 1);
    const auto isAscii = [](char letter) { return static_cast<unsigned char>(letter) < 0x80; };
    if (!std::all_of(content.begin(), content.end(), isAscii)) cursor.fail("an ASCII string with other bytes in it");
    return std::u16string(content.begin(), content.end());
  }

  PropertyList utf16(Cursor& cursor, unsigned size) {
    const auto content = payload(cursor, size, 2);
    std::u16string text;
    for (std::size_t i = 0; i < content.size(); i += 2) {
      text.push_back(static_cast<char16_t>(bigEndian(content.substr(i, 2))));
    }
    return text;
  }

  /// Archives hold these; the platform shows them as such a dictionary.
  static PropertyList uid(Cursor& cursor, unsigned size) {
    if (size > 7) cursor.fail("a UID of more than 8 bytes");
    const auto number = static_cast<std::int64_t>(bigEndian(cursor.take(size + 1)));
    if (number < 0) cursor.fail("a UID that does not fit");
    return PropertyList::Dictionary{{u"CF$UID", number}};
  }

  void enter(const Cursor& cursor) {
    if (++nesting > maxPropertyListNesting) cursor.fail("objects within each other too deeply, or within themselves");
  }

  std::uint64_t reference(std::string_view references, std::size_t index) const {
    return bigEndian(references.substr(index * referenceSize, referenceSize));
  }

  PropertyList array(Cursor& cursor, unsigned size, std::size_t offset) {
    enter(cursor);
    const auto count = cursor.count(size);
    const auto references = cursor.take(count, referenceSize);
    PropertyList::Array values;
    for (std::size_t i = 0; i < count; ++i)
      values.push_back(object(reference(references, i), offset));
    --nesting;
    return values;
  }

  PropertyList dictionary(Cursor& cursor, unsigned size, std::size_t offset) {
    enter(cursor);
    const auto count = cursor.count(size);
    const auto keys = cursor.take(count, referenceSize);
    const auto references = cursor.take(count, referenceSize);
    PropertyList::Dictionary values;
    for (std::size_t i = 0; i < count; ++i) {
      auto key = object(reference(keys, i), offset);
      auto* text = key.as<std::u16string>();
      if (text == nullptr) cursor.fail("a dictionary with a key that is not a string");
      values.insert_or_assign(std::move(*text), object(reference(references, i), offset));
    }
    --nesting;
    return values;
  }
};

} // namespace

PropertyListReading parseBinaryPropertyList(std::string_view bytes) {
  try {
    return {BinaryReader(bytes).document(), {}};
  } catch (const BinaryFault& fault) {
    return {{}, "offset " + std::to_string(fault.at) + ": " + fault.what};
  }
}

} // namespace desktop
