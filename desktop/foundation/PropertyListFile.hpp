/// Property lists in files, the one behind the user's defaults among them.
#pragma once

#include "desktop/foundation/PropertyList.hpp"

#include <filesystem>
#include <optional>
#include <set>
#include <string>

namespace desktop {

/// Why a file could not be read or written, as a sentence without its name.
struct FileFault {
  std::string what;
};

/// The bytes of a regular file; none when there is no such file. Throws FileFault when it cannot be read.
std::optional<std::string> readFile(const std::filesystem::path& path);
/// The same for the dictionary in a property-list file.
std::optional<PropertyList> readDictionary(const std::filesystem::path& path);

/// The dictionary behind user defaults, kept in a property-list file. For one thread; one object per file.
///
/// Opening never changes anything on disk. A missing file is an empty dictionary. A file that cannot be read is one
/// too, with a sentence on standard error, and moves aside (to NAME.broken, NAME.broken-2, ...) when something is first
/// saved.
///
/// Several processes may keep their defaults in one file: a save changes the keys that were set and leaves the others
/// as they are by then.
class PropertyListFile {
public:
  /// Without a path the dictionary lives in memory only.
  explicit PropertyListFile(std::optional<std::filesystem::path> path = std::nullopt);
  PropertyListFile(const PropertyListFile&) = delete;
  PropertyListFile& operator=(const PropertyListFile&) = delete;

  /// Null when there is none; valid until the next change.
  const PropertyList* value(const std::u16string& key) const;

  /// Saves at once. What cannot be saved stays in memory, is reported on standard error, and goes along with the
  /// next change. A crash at any moment leaves the old file or the new one whole; a broken one may already be aside,
  /// too. What a crash leaves of the writing (.defaults-saving-USER, in the same folder) the next save takes away.
  ///
  /// The file keeps its owner, group, mode and access list, or is not saved; other attributes where that is possible.
  /// Waits some seconds while another process has the folder locked to save in it; then it is not saved either.
  void set(const std::u16string& key, PropertyList value);

  /// False when something that was set has not reached the file.
  bool isSaved() const { return unsaved.empty(); }

  /// From now on only half is written and a save fails at its last step, or works again.
  void failWrites(bool fail) { writesFail = fail; }

private:
  std::optional<std::filesystem::path> path;
  PropertyList contents = PropertyList::Dictionary();
  /// What the file was last found or made to hold; none when it was missing. The contents are that and what is unsaved.
  std::optional<std::string> known;
  std::set<std::u16string> unsaved;
  bool writesFail = false;

  /// Throws FileFault.
  void save();
  /// Takes over what the file holds, unless that is known. Throws FileFault when the file is not understood, and must
  /// not get lost.
  void read(const std::filesystem::path& target);
};

} // namespace desktop
