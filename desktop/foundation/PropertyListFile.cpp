#include "desktop/foundation/PropertyListFile.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace desktop {
namespace {

[[noreturn]] void failWith(std::string_view what, int error) {
  throw FileFault{std::string(what) + ": " + std::generic_category().message(error)};
}

void report(const std::filesystem::path& path, const std::string& sentence) {
  std::fprintf(stderr, "%s: %s\n", path.c_str(), sentence.c_str());
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

/// A file being written beside the one that it is to replace; it vanishes unless it does.
class Replacement {
public:
  explicit Replacement(const std::filesystem::path& replaced)
      : target(replaced), name((replaced.parent_path() / ".defaults-XXXXXX").string()),
        file(::mkostemp(name.data(), O_CLOEXEC)) {
    if (!file) failWith("cannot be saved in its folder", errno);
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement() {
    if (file && !moved) ::unlink(name.c_str());
  }

  void write(std::string_view bytes, std::optional<mode_t> permissions) {
    writeAll(file.get(), bytes);
    if (permissions && ::fchmod(file.get(), *permissions) != 0) failWith("cannot be saved", errno);
    if (::fsync(file.get()) != 0) failWith("cannot be saved", errno);
  }

  void moveIntoPlace() {
    if (::rename(name.c_str(), target.c_str()) != 0) failWith("cannot be replaced", errno);
    moved = true;
    // So far only the contents are sure to be on disk; the folder has to be, too, for the new name to outlast a crash.
    // Some file systems cannot do that for folders, and then nothing better can be done.
    const auto folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    if (const Descriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)); directory) {
      ::fsync(directory.get());
    }
  }

private:
  std::filesystem::path target;
  std::string name;
  Descriptor file;
  bool moved = false;
};

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

/// The permissions of the file to replace, nothing when it is missing. Only a regular, writable file may be replaced.
std::optional<mode_t> permissionsOf(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return std::nullopt;
    failWith("cannot be saved", errno);
  }
  if (!S_ISREG(status.st_mode)) throw FileFault{"cannot be saved: it is not a regular file"};
  // The file is replaced by renaming, which would get past the write protection that somebody gave it.
  if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) failWith("cannot be saved", errno);
  return status.st_mode & 07777;
}

/// Moves the file to the first free NAME.broken. An empty file takes that name first, since a rename would silently
/// replace whatever appears there in between.
void keepAside(const std::filesystem::path& path) {
  for (int count = 1;; ++count) {
    const auto aside = path.string() + ".broken" + (count > 1 ? "-" + std::to_string(count) : "");
    const Descriptor taken(::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!taken && errno == EEXIST) continue;
    if (taken && ::rename(path.c_str(), aside.c_str()) == 0) return;
    const int error = errno;
    if (taken) ::unlink(aside.c_str());
    failWith("cannot be kept as " + aside, error);
  }
}

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
  if (!bytes) return std::nullopt;
  auto reading = parsePropertyList(*bytes);
  if (!reading) throw FileFault{"cannot be understood, " + reading.error};
  if (reading.value.as<PropertyList::Dictionary>() == nullptr) throw FileFault{"does not hold a dictionary"};
  return std::move(reading.value);
}

PropertyListFile::PropertyListFile(std::optional<std::filesystem::path> file) : path(std::move(file)) {
  if (!path) return;
  try {
    if (auto read = readDictionary(*path)) contents = *std::move(read);
  } catch (const FileFault& fault) {
    keepsBroken = true;
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
  save();
}

void PropertyListFile::save() {
  if (!path) return;
  try {
    const auto target = followed(*path);
    const auto permissions = permissionsOf(target);
    const auto bytes = canBeXml(contents) ? writeXml(contents) : writeBinary(contents);
    Replacement replacement(target);
    if (writesFail) {
      replacement.write(std::string_view(bytes).substr(0, bytes.size() / 2), permissions);
      failWith("cannot be saved", ENOSPC);
    }
    replacement.write(bytes, permissions);
    if (keepsBroken && permissions) keepAside(target);
    keepsBroken = false;
    replacement.moveIntoPlace();
  } catch (const FileFault& fault) {
    report(*path, fault.what);
  }
}

} // namespace desktop
