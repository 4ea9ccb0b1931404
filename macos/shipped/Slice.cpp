#include "macos/shipped/Slice.hpp"

#include "macos/shipped/Refusal.hpp"
#include "macos/shipped/SliceFile.hpp"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <sys/mman.h>

namespace shipped {

using namespace macho;

namespace {

/// Where the program is mapped when there is room: a place that is not the linker's own, so that every pointer has to
/// be fixed, and always the same one, so that execution.py knows which instructions are the program's.
constexpr std::uintptr_t usualPlace = 0x6000000000;
constexpr std::uint64_t mostMemory = std::uint64_t{1} << 30;

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream) refuse(file.string() + " cannot be read: " + std::strerror(errno));
  return bytes;
}

/// The program's memory while it is being made.
class Memory {
public:
  explicit Memory(const SliceFile& file) : slice(file) {
    std::uint64_t end = 0;
    for (const Segment& segment : slice.segments) {
      if (segment.memorySize > mostMemory || segment.address > ~std::uint64_t{0} - mostMemory)
        slice.bytes.refuse("has a segment that nobody has room for");
      first = std::min(first, segment.address);
      end = std::max(end, segment.address + segment.memorySize);
    }
    size = end > first ? end - first : 0;
    void* const room = size == 0 || size > mostMemory
                           ? MAP_FAILED
                           : mmap(reinterpret_cast<void*>(usualPlace), size, PROT_READ | PROT_WRITE,
                                  MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) slice.bytes.refuse("cannot be mapped");
    base = static_cast<char*>(room);
  }

  void load() {
    for (const Segment& segment : slice.segments) {
      if (segment.fileSize > segment.memorySize) slice.bytes.refuse("has a segment that is larger than its memory");
      const auto bytes = slice.bytes.part(segment.fileOffset, segment.fileSize).all();
      std::copy(bytes.begin(), bytes.end(), placeOf(segment));
    }
  }

  /// Gives every pointer that depends on where things lie its value.
  void fix(const Resolver& addressOf) {
    const Bytes table = slice.bytes.part(slice.fixups->offset, slice.fixups->size);
    const auto header = table.at<Fixups>(0);
    if (header.importFormat != plainImports || header.symbolsFormat != plainSymbols)
      table.refuse("has imports of a kind that the loader does not know");
    for (std::uint64_t index = 0; index < header.importCount; ++index) {
      const auto name = table.at<std::uint32_t>(header.importsOffset + index * sizeof(std::uint32_t)) >> 9;
      imports.push_back(
          reinterpret_cast<std::uintptr_t>(addressOf(table.nameAt(std::uint64_t{header.symbolsOffset} + name))));
    }
    const auto segmentCount = table.at<std::uint32_t>(header.startsOffset);
    for (std::uint64_t index = 0; index < segmentCount; ++index) {
      const auto offset = table.at<std::uint32_t>(header.startsOffset + (1 + index) * sizeof(std::uint32_t));
      if (offset != 0) fixSegment(table, std::uint64_t{header.startsOffset} + offset);
    }
  }

  /// From here on only what the file says may be written or executed.
  void protect() const {
    // The three bits mean the same on both systems.
    static_assert(PROT_READ == 1 && PROT_WRITE == 2 && PROT_EXEC == 4);
    for (const Segment& segment : slice.segments) {
      const bool isConstant = (segment.flags & readOnlyAfterFixups) != 0;
      char* const place = placeOf(segment);
      if (mprotect(place, segment.memorySize, isConstant ? PROT_READ : static_cast<int>(segment.protection)) != 0)
        slice.bytes.refuse("has a segment that cannot be protected");
      __builtin___clear_cache(place, place + segment.memorySize);
    }
  }

  /// Where an offset into the program's code is.
  char* code(std::uint64_t offset) const {
    for (const Segment& segment : slice.segments) {
      const std::uint64_t start = segment.address - first;
      if ((segment.protection & PROT_EXEC) != 0 && offset >= start && offset - start < segment.fileSize)
        return base + offset;
    }
    slice.bytes.refuse("has its entry outside its code");
  }

private:
  char* placeOf(const Segment& segment) const { return base + (segment.address - first); }

  /// Follows the chains of one segment, page by page.
  void fixSegment(const Bytes& table, std::uint64_t starts) {
    const auto segment = table.at<SegmentStarts>(starts);
    if (segment.pointerFormat != pointer64) table.refuse("has pointers of a kind that the loader does not know");
    for (std::uint64_t page = 0; page < segment.pageCount; ++page) {
      const auto start = table.at<std::uint16_t>(starts + firstPageStart + page * sizeof(std::uint16_t));
      if (start != pageWithoutFixups) fixChain(segment.segmentOffset + page * segment.pageSize + start);
    }
  }

  void fixChain(std::uint64_t offset) {
    for (std::uint64_t next = 1; next != 0; offset += next * chainUnit) {
      std::uint64_t raw = 0;
      if (offset > size || size - offset < sizeof raw) slice.bytes.refuse("has a pointer outside of itself");
      std::memcpy(&raw, base + offset, sizeof raw);
      const std::uint64_t value = valueOf(ChainedPointer(raw));
      std::memcpy(base + offset, &value, sizeof value);
      next = ChainedPointer(raw).next();
    }
  }

  std::uint64_t valueOf(ChainedPointer pointer) const {
    if (!pointer.binds()) return pointer.ownAddress() - first + reinterpret_cast<std::uintptr_t>(base);
    if (pointer.import() >= imports.size()) slice.bytes.refuse("has a pointer to an import that it does not list");
    return imports[pointer.import()] + pointer.addend();
  }

  const SliceFile& slice;
  /// The linker's address of what is at `base`.
  std::uint64_t first = ~std::uint64_t{0};
  std::uint64_t size = 0;
  char* base = nullptr;
  std::vector<std::uintptr_t> imports;
};

} // namespace

Slice::Slice(const std::filesystem::path& file, const Resolver& addressOf) {
  const std::string bytes = contentsOf(file);
  const SliceFile slice = readSlice(Bytes(file, bytes));
  Memory memory(slice);
  memory.load();
  if (slice.fixups) memory.fix(addressOf);
  memory.protect();
  main = reinterpret_cast<Main>(memory.code(slice.entry));
}

int Slice::run() const {
  char name[] = "Tarnwick";
  char* words[] = {static_cast<char*>(name), nullptr};
  char* nothing[] = {nullptr};
  return main(1, static_cast<char**>(words), static_cast<char**>(nothing), static_cast<char**>(nothing));
}

} // namespace shipped
