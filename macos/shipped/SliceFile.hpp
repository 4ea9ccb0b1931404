/// One processor's program in the file of a Mac application: read, not yet mapped. Whatever is wrong with the file is
/// refused (Refusal.hpp) with a sentence that names it.
#pragma once

#include "macos/shipped/MachO.hpp"

#include <cstring>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace shipped {

/// A part of a file. Nothing outside it can be read.
class Bytes {
public:
  Bytes(const std::filesystem::path& path, std::string_view part) : file(&path), bytes(part) {}

  /// The structure that lies there.
  template <class Type> Type at(std::uint64_t offset) const {
    Type value;
    std::memcpy(&value, part(offset, sizeof value).bytes.data(), sizeof value);
    return value;
  }
  Bytes part(std::uint64_t offset, std::uint64_t size) const;
  /// A name that ends with a NUL.
  std::string nameAt(std::uint64_t offset) const;
  /// The text when it is one that can be shown: letters, digits, signs.
  std::string name(std::string_view text) const;
  std::string_view all() const { return bytes; }

  [[noreturn]] void refuse(const std::string& what) const;

private:
  const std::filesystem::path* file;
  std::string_view bytes;
};

/// What the load commands say.
struct SliceFile {
  Bytes bytes;
  /// Those that are in memory: what lies below the program is address space that nobody may use.
  std::vector<macho::Segment> segments;
  /// Where `main` is, from the beginning of the program.
  std::uint64_t entry = 0;
  std::optional<macho::Table> fixups;
};

/// The slice for this processor. `whole` is a universal file.
SliceFile readSlice(const Bytes& whole);

} // namespace shipped
