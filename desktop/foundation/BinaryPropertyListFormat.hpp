/// What the reader and the writer of binary property lists share. Such a file is `magic`, the objects, a table of the
/// objects' offsets, and a trailer. Containers name their children by number in that table. Numbers are big-endian.
#pragma once

#include <cstddef>
#include <string_view>

namespace desktop::binaryPropertyList {

inline constexpr std::string_view magic = "bplist00";
inline constexpr std::size_t trailerSize = 32;

/// The upper four bits of an object's first byte; the lower four say its size.
enum Kind : unsigned {
  Simple = 0x0,
  Integer = 0x1,
  Real = 0x2,
  Moment = 0x3,
  Bytes = 0x4,
  Ascii = 0x5,
  Utf16 = 0x6,
  Uid = 0x8,
  List = 0xA,
  Table = 0xD
};
inline constexpr unsigned falseSize = 8;
inline constexpr unsigned trueSize = 9;
inline constexpr unsigned sizeFollows = 15;

} // namespace desktop::binaryPropertyList
