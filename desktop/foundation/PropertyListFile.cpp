#include "desktop/foundation/PropertyListFile.hpp"

#include "desktop/runtime/Printing.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#ifdef __linux__
#include <linux/limits.h>
#include <sys/xattr.h>
#endif

namespace desktop {
namespace {

[[noreturn]] void failWith(std::string_view what, int error) {
  throw FileFault{std::string(what) + ": " + std::generic_category().message(error)};
}

void report(const std::filesystem::path& path, const std::string& sentence) {
  complain(path.string() + ": " + sentence);
}

class Descriptor {
public:
  explicit Descriptor(int opened) : number(opened) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number >= 0) ::close(number);
  }

  int get() const { return number; }
  explicit operator bool() const { return number >= 0; }

private:
  int number;
};

void writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) failWith("cannot be saved", errno);
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

/// The folder of a file that is to be replaced, locked for one saver at a time. A lock on the file itself would end
/// with the file, and one on a file beside it would have to stay there.
class LockedFolder {
public:
  explicit LockedFolder(const std::filesystem::path& file)
      : path(file.has_parent_path() ? file.parent_path() : "."),
        directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    // Whoever may read the folder may lock it, for ever.
    int patience = 300;
    int answer = 0;
    while ((answer = ::flock(directory.get(), LOCK_EX | LOCK_NB)) != 0 && (errno == EWOULDBLOCK || errno == EINTR)) {
      if (--patience == 0) throw FileFault{"cannot be saved: somebody keeps its folder locked"};
      ::usleep(10000);
    }
    // In a folder that several users share, what one of them left the others cannot take away.
    replacement = path / (".defaults-saving-" + std::to_string(::geteuid()));
    // Some file systems of networks cannot lock folders. There savers do not wait for each other, so each has a name of
    // its own for what it writes, and the last one wins.
    if (answer != 0) replacement += "-" + std::to_string(::getpid());
  }

  /// Where the next contents are written. Under the lock nobody else does: what is there was left by a saver that was
  /// killed.
  const std::filesystem::path& replacementPath() const { return replacement; }

  /// So far only the contents are sure to be on disk; the folder has to be, too, for a new name to outlast a crash.
  /// Some file systems cannot do that for folders, and then nothing better can be done.
  void sync() const { ::fsync(directory.get()); }

private:
  std::filesystem::path path;
  Descriptor directory;
  std::filesystem::path replacement;
};

#ifdef __linux__
/// Gives the file the access list and the other attributes of another; the attributes as far as that is allowed.
void takeAttributes(int file, const std::filesystem::path& from) {
  const std::string_view accessList = "system.posix_acl_access";
  // The one that its folder gave it.
  ::fremovexattr(file, accessList.data());
  std::string names(XATTR_LIST_MAX, '\0');
  const auto length = ::llistxattr(from.c_str(), names.data(), names.size());
  if (length < 0 && errno != ENOTSUP) failWith("cannot be saved and keep its access list", errno);
  names.resize(static_cast<std::size_t>(std::max(length, ssize_t{0})));
  std::string value(XATTR_SIZE_MAX, '\0');
  for (std::string_view rest = names; !rest.empty();) {
    const std::string name(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(name.size() + 1);
    const auto size = ::lgetxattr(from.c_str(), name.c_str(), value.data(), value.size());
    const bool taken =
        size >= 0 && ::fsetxattr(file, name.c_str(), value.data(), static_cast<std::size_t>(size), 0) == 0;
    if (!taken && name == accessList) failWith("cannot be saved and keep its access list", errno);
  }
}
#else
/// Files have neither here.
void takeAttributes(int /*file*/, const std::filesystem::path& /*from*/) {}
#endif

/// A file being written beside the one that it is to replace; it vanishes unless it does.
class Replacement {
public:
  explicit Replacement(const LockedFolder& lockedFolder)
      : folder(lockedFolder), file(created(folder.replacementPath())) {
    if (!file) failWith("cannot be saved in its folder", errno);
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement() {
    if (file && !moved) ::unlink(folder.replacementPath().c_str());
  }

  void write(std::string_view bytes) {
    writeAll(file.get(), bytes);
    if (::fsync(file.get()) != 0) failWith("cannot be saved", errno);
  }

  /// As who may read and change it, and whose it is.
  void becomeLike(const struct stat& replaced, const std::filesystem::path& path) {
    struct stat own {};
    if (::fstat(file.get(), &own) != 0) failWith("cannot be saved", errno);
    const bool isOthers = own.st_uid != replaced.st_uid || own.st_gid != replaced.st_gid;
    if (isOthers && ::fchown(file.get(), replaced.st_uid, replaced.st_gid) != 0)
      failWith("cannot be saved and stay its owner's", errno);
    takeAttributes(file.get(), path);
    if (::fchmod(file.get(), replaced.st_mode & 07777) != 0) failWith("cannot be saved", errno);
  }

  void moveTo(const std::filesystem::path& target) {
    if (::rename(folder.replacementPath().c_str(), target.c_str()) != 0) failWith("cannot be replaced", errno);
    moved = true;
    folder.sync();
  }

private:
  const LockedFolder& folder;
  Descriptor file;
  bool moved = false;

  static int created(const std::filesystem::path& path) {
    ::unlink(path.c_str());
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  }
};

/// Throws FileFault when there is none.
PropertyList dictionaryIn(std::string_view bytes) {
  auto reading = parsePropertyList(bytes);
  if (!reading) throw FileFault{"cannot be understood, " + reading.error};
  if (reading.value.as<PropertyList::Dictionary>() == nullptr) throw FileFault{"does not hold a dictionary"};
  return std::move(reading.value);
}

/// Where a chain of symbolic links ends, whether or not a file is there.
std::filesystem::path followed(std::filesystem::path path) {
  std::error_code error;
  for (int links = 0; std::filesystem::is_symlink(path, error); ++links) {
    if (links == 40) failWith("cannot be saved", ELOOP);
    const auto next = std::filesystem::read_symlink(path, error);
    if (error) failWith("cannot be saved", error.value());
    path = path.parent_path() / next;
  }
  return path;
}

/// The file to replace, nothing when it is missing. Only a regular, writable file may be replaced.
std::optional<struct stat> replaceable(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return std::nullopt;
    failWith("cannot be saved", errno);
  }
  if (!S_ISREG(status.st_mode)) throw FileFault{"cannot be saved: it is not a regular file"};
  // The file is replaced by renaming, which would get past the write protection that somebody gave it.
  if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) failWith("cannot be saved", errno);
  return status;
}

/// A file that its successor must not take away: under a second name, the first free NAME.broken, and until the
/// successor is there under its own as well.
class Aside {
public:
  explicit Aside(std::filesystem::path kept) : file(std::move(kept)) {
    for (int count = 1;; ++count) {
      aside = file.string() + ".broken" + (count > 1 ? "-" + std::to_string(count) : "");
      std::error_code unknown;
      if (::link(file.c_str(), aside.c_str()) == 0) return;
      // A saver that was killed may have come this far.
      if (std::filesystem::equivalent(file, aside, unknown)) return;
      if (std::filesystem::exists(std::filesystem::symlink_status(aside, unknown))) continue;
      // Some file systems know no second names; there it is gone from its own until the successor is there.
      if (::rename(file.c_str(), aside.c_str()) == 0) return;
      failWith("cannot be kept as " + aside, errno);
    }
  }
  Aside(const Aside&) = delete;
  Aside& operator=(const Aside&) = delete;
  ~Aside() {
    if (isSucceeded) return;
    // Of two names of one file the first call takes away neither, and the second the second.
    if (::rename(aside.c_str(), file.c_str()) == 0) ::unlink(aside.c_str());
  }

  void succeed() {
    isSucceeded = true;
    report(file, "could not be understood, and is kept as " + aside);
  }

private:
  std::filesystem::path file;
  std::string aside;
  bool isSucceeded = false;
};

} // namespace

std::optional<std::string> readFile(const std::filesystem::path& path) {
  // A named pipe is refused below; opened in the ordinary way it would make us wait until somebody writes to it.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file && errno == ENOENT) return std::nullopt;
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) failWith("cannot be read", errno);
  if (!S_ISREG(status.st_mode)) throw FileFault{"is not a regular file"};
  std::string bytes;
  std::array<char, 16384> block{};
  for (;;) {
    const auto count = ::read(file.get(), block.data(), block.size());
    if (count == 0) return bytes;
    if (count < 0 && errno != EINTR) failWith("cannot be read", errno);
    if (count > 0) bytes.append(block.data(), static_cast<std::size_t>(count));
  }
}

std::optional<PropertyList> readDictionary(const std::filesystem::path& path) {
  const auto bytes = readFile(path);
  return bytes ? std::optional(dictionaryIn(*bytes)) : std::nullopt;
}

PropertyListFile::PropertyListFile(std::optional<std::filesystem::path> file) : path(std::move(file)) {
  if (!path) return;
  try {
    read(*path);
  } catch (const FileFault& fault) {
    report(*path, fault.what + "; starting empty, the file stays as it is until something is saved");
  }
}

const PropertyList* PropertyListFile::value(const std::u16string& key) const {
  const auto& entries = *contents.as<PropertyList::Dictionary>();
  const auto found = entries.find(key);
  return found == entries.end() ? nullptr : &found->second;
}

void PropertyListFile::set(const std::u16string& key, PropertyList value) {
  contents.as<PropertyList::Dictionary>()->insert_or_assign(key, std::move(value));
  if (!path) return;
  unsaved.insert(key);
  try {
    save();
    unsaved.clear();
  } catch (const FileFault& fault) {
    report(*path, fault.what);
  }
}

void PropertyListFile::read(const std::filesystem::path& target) {
  auto bytes = readFile(target);
  if (bytes == known) return;
  PropertyList found = bytes ? dictionaryIn(*bytes) : PropertyList::Dictionary();
  for (const auto& key : unsaved)
    found.as<PropertyList::Dictionary>()->insert_or_assign(key, *value(key));
  contents = std::move(found);
  known = std::move(bytes);
}

void PropertyListFile::save() {
  const auto target = followed(*path);
  const LockedFolder folder(target);
  const auto replaced = replaceable(target);
  bool isUnderstood = true;
  try {
    read(target);
  } catch (const FileFault&) {
    isUnderstood = false;
  }
  auto bytes = canBeXml(contents) ? writeXml(contents) : writeBinary(contents);
  Replacement replacement(folder);
  if (replaced) replacement.becomeLike(*replaced, target);
  replacement.write(std::string_view(bytes).substr(0, writesFail ? bytes.size() / 2 : bytes.size()));
  std::optional<Aside> aside;
  if (!isUnderstood) aside.emplace(target);
  if (writesFail) failWith("cannot be saved", ENOSPC);
  replacement.moveTo(target);
  known = std::move(bytes);
  if (aside) aside->succeed();
}

} // namespace desktop
