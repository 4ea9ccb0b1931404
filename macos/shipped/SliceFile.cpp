#include "macos/shipped/SliceFile.hpp"

#include "macos/shipped/Refusal.hpp"

#include <algorithm>
#include <cstdio>

namespace shipped {

using namespace macho;

namespace {

Bytes findSlice(const Bytes& whole) {
  if (whole.at<std::uint32_t>(0) != universalMagic) whole.refuse("is not a universal program");
  const auto count = __builtin_bswap32(whole.at<std::uint32_t>(4));
  for (std::uint64_t index = 0; index < count; ++index) {
    const auto entry = whole.at<SliceEntry>(8 + index * sizeof(SliceEntry));
    if (__builtin_bswap32(entry.processor) == processor)
      return whole.part(__builtin_bswap32(entry.offset), __builtin_bswap32(entry.size));
  }
  whole.refuse("has no slice for this processor");
}

std::string hexadecimal(std::uint32_t number) {
  char text[11];
  std::snprintf(static_cast<char*>(text), sizeof text, "0x%x", number);
  return static_cast<char*>(text);
}

/// Sections that want more than mapping are refused.
void checkSections(const Bytes& slice, std::uint64_t first, std::uint32_t count) {
  // Static initialisers and finalisers, and those of thread-local variables with their templates.
  constexpr std::uint32_t unknown[] = {0x09, 0x0A, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16};
  for (std::uint32_t index = 0; index < count; ++index) {
    const auto section = slice.at<Section>(first + index * sizeof(Section));
    const auto name = slice.name({section.name, strnlen(section.name, sizeof section.name)});
    const bool isObjectiveC = name.starts_with("__objc_") && name != "__objc_imageinfo";
    if (isObjectiveC || std::count(std::begin(unknown), std::end(unknown), section.flags & sectionTypeMask) != 0)
      slice.refuse("has a section " + name + ", which the loader does not know");
  }
}

void take(SliceFile& slice, const Command& command, std::uint64_t position) {
  switch (command.kind) {
  case segmentCommand: {
    const auto segment = slice.bytes.at<Segment>(position);
    checkSections(slice.bytes, position + sizeof segment, segment.sectionCount);
    if (segment.protection != 0) slice.segments.push_back(segment);
    break;
  }
  case mainCommand:
    slice.entry = slice.bytes.at<Main>(position).entry;
    break;
  case chainedFixupsCommand:
    slice.fixups = slice.bytes.at<Table>(position);
    break;
  case exportsCommand: // for those who link with the program: nobody
    break;
  default:
    if ((command.kind & mustBeKnown) != 0 || command.kind == olderFixupsCommand)
      slice.bytes.refuse("has a load command " + hexadecimal(command.kind) + ", which the loader does not know");
  }
}

} // namespace

Bytes Bytes::part(std::uint64_t offset, std::uint64_t size) const {
  if (offset > bytes.size() || size > bytes.size() - offset) refuse("is cut off");
  return {*file, bytes.substr(offset, size)};
}

std::string Bytes::nameAt(std::uint64_t offset) const {
  const auto end = bytes.find('\0', offset);
  if (end == std::string_view::npos) refuse("is cut off");
  return name(bytes.substr(offset, end - offset));
}

std::string Bytes::name(std::string_view text) const {
  if (!std::all_of(text.begin(), text.end(), [](char letter) { return letter > ' ' && letter <= '~'; }))
    refuse("has a name that is not readable");
  return std::string(text);
}

void Bytes::refuse(const std::string& what) const {
  shipped::refuse(file->string() + " " + what);
}

SliceFile readSlice(const Bytes& whole) {
  SliceFile slice{findSlice(whole), {}, 0, {}};
  const auto header = slice.bytes.at<Header>(0);
  if (header.magic != magic64 || header.processor != processor || header.type != executableType)
    slice.bytes.refuse("has a slice that is not a program for this processor");
  std::uint64_t position = sizeof header;
  for (std::uint32_t index = 0; index < header.commandCount; ++index) {
    const auto command = slice.bytes.at<Command>(position);
    if (command.size < sizeof command) slice.bytes.refuse("has a load command without a size");
    take(slice, command, position);
    position += command.size;
  }
  if (slice.entry == 0) slice.bytes.refuse("has no entry");
  return slice;
}

} // namespace shipped
