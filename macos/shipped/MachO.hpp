/// The format of Mach-O programs, as far as the linker of the Mac application uses it: what lies in the file, field by
/// field.
#pragma once

#include <cstddef>
#include <cstdint>

namespace shipped::macho {

constexpr std::uint32_t universalMagic = 0xBEBAFECA; // 0xCAFEBABE, read from the most significant byte on
constexpr std::uint32_t magic64 = 0xFEEDFACF;
constexpr std::uint32_t executableType = 2;
#if defined(__aarch64__)
constexpr std::uint32_t processor = 0x0100000C;
#else
constexpr std::uint32_t processor = 0x01000007;
#endif

/// One entry of a universal file's list. Its numbers and those of the list begin with the most significant byte.
struct SliceEntry {
  std::uint32_t processor, subtype, offset, size, alignment;
};

struct Header {
  std::uint32_t magic, processor, subtype, type, commandCount, commandSize, flags, reserved;
};

/// What every load command begins with.
struct Command {
  std::uint32_t kind, size;
};
constexpr std::uint32_t segmentCommand = 0x19;
constexpr std::uint32_t mainCommand = 0x80000028;
constexpr std::uint32_t chainedFixupsCommand = 0x80000034;
constexpr std::uint32_t exportsCommand = 0x80000033;
/// In the kind of a command that a loader must understand.
constexpr std::uint32_t mustBeKnown = 0x80000000;
/// The older kind of fixups, without `mustBeKnown`.
constexpr std::uint32_t olderFixupsCommand = 0x22;

struct Segment {
  Command command;
  char name[16];
  std::uint64_t address, memorySize, fileOffset, fileSize;
  std::uint32_t mostProtection, protection, sectionCount, flags;
};
constexpr std::uint32_t readOnlyAfterFixups = 0x10;

struct Section {
  char name[16], segment[16];
  std::uint64_t address, size;
  std::uint32_t offset, alignment, relocations, relocationCount, flags, reserved[3];
};
constexpr std::uint32_t sectionTypeMask = 0xFF;

struct Main {
  Command command;
  std::uint64_t entry, stackSize;
};

/// Where a table lies that no segment describes.
struct Table {
  Command command;
  std::uint32_t offset, size;
};

// Chained fixups: the pointers of the program that depend on where it and its libraries lie. Each holds the distance to
// the next one of its page.

struct Fixups {
  std::uint32_t version, startsOffset, importsOffset, symbolsOffset, importCount, importFormat, symbolsFormat;
};
constexpr std::uint32_t plainImports = 1;
constexpr std::uint32_t plainSymbols = 0;

/// Where the chains of one segment begin; followed by `pageCount` offsets of 16 bits.
struct SegmentStarts {
  std::uint32_t size;
  std::uint16_t pageSize, pointerFormat;
  std::uint64_t segmentOffset;
  std::uint32_t mostValidPointer;
  std::uint16_t pageCount;
};
constexpr std::size_t firstPageStart = 22; // SegmentStarts without its padding
constexpr std::uint16_t pointer64 = 2;
constexpr std::uint16_t pageWithoutFixups = 0xFFFF;
constexpr std::size_t chainUnit = 4; // bytes

/// One such pointer before it is fixed.
class ChainedPointer {
public:
  explicit constexpr ChainedPointer(std::uint64_t word) : raw(word) {}

  /// The next pointer's distance in `chainUnit`; 0 in the last one.
  constexpr std::uint64_t next() const { return raw >> 51 & 0xFFF; }
  /// Whether it is an import's address, else one of the program's own.
  constexpr bool binds() const { return raw >> 63 != 0; }
  constexpr std::uint64_t import() const { return raw & 0xFFFFFF; }
  constexpr std::uint64_t addend() const { return raw >> 24 & 0xFF; }
  constexpr std::uint64_t ownAddress() const { return raw & 0xFFFFFFFFF; }

private:
  std::uint64_t raw;
};

} // namespace shipped::macho
