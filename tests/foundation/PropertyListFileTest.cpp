#include "desktop/foundation/PropertyListFile.hpp"

#include "tests/support/TestDesktop.hpp"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <random>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace desktop {
namespace {

namespace fs = std::filesystem;

// What users see of it, and what becomes of links and of files of other kinds, the transcript of defaults shows.

class PropertyListFileTest : public testing::Test {
protected:
  const TemporaryFolder own;
  const fs::path& folder = own.path;
  const fs::path path = folder / "defaults.plist";

  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }

  /// Runs the action and answers what it said on standard error.
  template <typename Action> static std::string complaint(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
  }
  static std::size_t lines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }
};

TEST_F(PropertyListFileTest, ChangesOutliveTheObjectInAFormThatHoldsThem) {
  const PropertyList odd = std::u16string(u"\0\xD800", 2); // not for XML
  for (const auto& [value, beginning] : {std::pair(PropertyList(u"value"), "<?xml"), std::pair(odd, "bplist00")}) {
    EXPECT_EQ(complaint([&, &kept = value] {
                PropertyListFile file(path);
                file.set(u"key", 1);
                file.set(u"key", kept);
              }),
              "");
    EXPECT_TRUE(contentsOf(path).starts_with(beginning)) << contentsOf(path);
    const PropertyListFile file(path);
    ASSERT_NE(file.value(u"key"), nullptr);
    EXPECT_EQ(*file.value(u"key"), value);
    EXPECT_EQ(filesInFolder(), 1U);
  }
}

TEST_F(PropertyListFileTest, BrokenFilesStayWhereTheyAreUntilTheirSuccessorIsWritten) {
  writeFile(path, "precious");
  complaint([&] {
    PropertyListFile file(path);
    file.failWrites(true);
    file.set(u"key", 1);
    EXPECT_EQ(contentsOf(path), "precious");
    file.failWrites(false);
    file.set(u"key", 2);
    file.set(u"key", 3);
  });
  EXPECT_EQ(contentsOf(folder / "defaults.plist.broken"), "precious");
  EXPECT_EQ(*PropertyListFile(path).value(u"key"), PropertyList(3));
  EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(PropertyListFileTest, FailedWritesLoseNothing) {
  PropertyListFile file(path);
  file.set(u"key", 1);
  const auto saved = contentsOf(path);
  file.failWrites(true);
  const auto said = complaint([&] {
    file.set(u"key", 2);
    file.set(u"other", 3);
  });
  EXPECT_EQ(lines(said), 2U) << said;
  EXPECT_NE(said.find(path.string() + ": cannot be saved"), std::string::npos) << said;
  EXPECT_EQ(contentsOf(path), saved);
  EXPECT_EQ(filesInFolder(), 1U) << "no temporary file stays behind";
  EXPECT_EQ(*file.value(u"key"), PropertyList(2));
  file.failWrites(false);
  file.set(u"other", 4);
  EXPECT_EQ(*PropertyListFile(path).value(u"key"), PropertyList(2));
}

TEST_F(PropertyListFileTest, EachSaveStartsFromWhatTheFileHoldsByThen) {
  PropertyListFile file(path);
  file.set(u"key", 1);
  for (const int number : {2, 3}) {
    PropertyListFile(path).set(u"other", number);
    file.set(u"key", number);
    const PropertyListFile saved(path);
    ASSERT_NE(saved.value(u"other"), nullptr);
    EXPECT_EQ(*saved.value(u"other"), PropertyList(number)) << "of the same size as before";
  }
  fs::remove(path);
  file.set(u"key", 4);
  EXPECT_EQ(PropertyListFile(path).value(u"other"), nullptr) << "it went with its file";
}

TEST_F(PropertyListFileTest, AccessListsStay) {
  PropertyListFile(path).set(u"key", 1);
  // Version 2; then owner, user 12, group, mask and others, each with its kind, rights and number.
  const std::vector<std::uint32_t> list{2, 0x6'0001, ~0U, 0x4'0002, 12, 0x0'0004, ~0U, 0x4'0010, ~0U, 0x0'0020, ~0U};
  const char* const name = "system.posix_acl_access";
  if (::setxattr(path.c_str(), name, list.data(), 4 * list.size(), 0) != 0) GTEST_SKIP() << "no access lists here";
  EXPECT_EQ(::setxattr(path.c_str(), "user.note", "mine", 4, 0), 0);
  PropertyListFile(path).set(u"key", 2);
  std::vector<std::uint32_t> kept(list.size());
  EXPECT_EQ(::getxattr(path.c_str(), name, kept.data(), 4 * kept.size()), static_cast<ssize_t>(4 * list.size()));
  EXPECT_EQ(kept, list);
  EXPECT_EQ(::getxattr(path.c_str(), "user.note", nullptr, 0), 4);
  // Nor does a file get the list that its folder has for new ones.
  EXPECT_EQ(::setxattr(folder.c_str(), "system.posix_acl_default", list.data(), 4 * list.size(), 0), 0);
  EXPECT_EQ(::removexattr(path.c_str(), name), 0);
  PropertyListFile(path).set(u"key", 3);
  EXPECT_EQ(::getxattr(path.c_str(), name, nullptr, 0), -1);
}

TEST_F(PropertyListFileTest, OwnersStay) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can give files away";
  PropertyListFile(path).set(u"key", 1);
  const auto isAs = [&](uid_t owner, gid_t group, mode_t mode) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && status.st_uid == owner && status.st_gid == group &&
           (status.st_mode & 07777) == mode;
  };
  ASSERT_EQ(::chown(path.c_str(), 12, 34), 0);
  fs::permissions(path, fs::perms(0666));
  PropertyListFile(path).set(u"key", 2);
  EXPECT_TRUE(isAs(12, 34, 0666));

  constexpr uid_t somebody = 65534;
  ASSERT_EQ(::chown(folder.c_str(), somebody, static_cast<gid_t>(-1)), 0);
  ASSERT_EQ(::seteuid(somebody), 0);
  EXPECT_EQ(lines(complaint([&] {
              PropertyListFile file(path);
              file.set(u"key", 3);
              EXPECT_FALSE(file.isSaved());
            })),
            1U);
  EXPECT_EQ(::seteuid(0), 0);
  EXPECT_TRUE(isAs(12, 34, 0666)) << "who may not give it back does not take it";
  EXPECT_EQ(filesInFolder(), 1U);
}

/// Another process that saves rising numbers, and how far it has come: this far it is sure, one further it may be.
class Saver {
public:
  Saver(const fs::path& path, const std::u16string& key, int last) {
    EXPECT_NE(saved, MAP_FAILED);
    process = ::fork();
    if (process != 0) return;
    PropertyListFile file(path);
    for (int number = 1; number <= last && file.isSaved(); ++number) {
      file.set(key, number);
      static_cast<std::atomic<int>*>(saved)->store(number);
    }
    ::_exit(file.isSaved() ? 0 : 1);
  }
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;
  ~Saver() { ::munmap(saved, sizeof(std::atomic<int>)); }

  int progress() const { return static_cast<const std::atomic<int>*>(saved)->load(); }
  void kill() const { ::kill(process, SIGKILL); }
  /// True when it came to its end with everything saved.
  bool ended() const {
    int status = -1;
    return ::waitpid(process, &status, 0) == process && status == 0;
  }

private:
  void* saved = ::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  pid_t process = -1;
};

TEST_F(PropertyListFileTest, KilledSaversLoseNothing) {
  constexpr int kills = 15;
  std::mt19937 random(15);
  PropertyListFile(path).set(u"other", std::u16string(2000, u'x'));
  for (int count = 0; count < kills; ++count) {
    const Saver saver(path, u"number", 1 << 30);
    for (int patience = 100000; saver.progress() == 0 && patience > 0; --patience)
      ::usleep(100);
    EXPECT_GT(saver.progress(), 0);
    ::usleep(static_cast<useconds_t>(random() % 20000));
    saver.kill();
    EXPECT_FALSE(saver.ended());
    EXPECT_EQ(complaint([&] {
                PropertyListFile file(path);
                ASSERT_NE(file.value(u"number"), nullptr);
                const auto number = *file.value(u"number")->as<std::int64_t>();
                EXPECT_GE(number, saver.progress());
                EXPECT_LE(number, saver.progress() + 1);
                file.set(u"next", count);
                EXPECT_EQ(file.value(u"other")->as<std::u16string>()->size(), 2000U);
              }),
              "");
    EXPECT_EQ(filesInFolder(), 1U) << "the next save takes away what a killed one left";
  }
}

TEST_F(PropertyListFileTest, SaversAtOnceKeepEachOthersKeys) {
  {
    const Saver one(path, u"one", 100);
    const Saver other(path, u"other", 100);
    EXPECT_TRUE(one.ended());
    EXPECT_TRUE(other.ended());
  }
  const PropertyListFile file(path);
  for (const auto* key : {u"one", u"other"}) {
    ASSERT_NE(file.value(key), nullptr);
    EXPECT_EQ(*file.value(key), PropertyList(100));
  }
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(PropertyListFileTest, WithoutPermission) {
  const std::string stored = "<plist><dict><key>key</key><true/></dict></plist>";
  writeFile(path, stored);
  // As an ordinary user: no folder is closed to the superuser.
  const bool isSuperuser = ::geteuid() == 0;
  constexpr uid_t nobody = 65534;
  if (isSuperuser) {
    ASSERT_EQ(::chown(folder.c_str(), nobody, static_cast<gid_t>(-1)), 0);
    ASSERT_EQ(::seteuid(nobody), 0);
  }
  fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(lines(complaint([&] { PropertyListFile(path).set(u"key", 1); })), 1U) << "the folder is read-only";
  EXPECT_EQ(contentsOf(path), stored);
  fs::permissions(folder, fs::perms::owner_all);
  EXPECT_EQ(::seteuid(::getuid()), 0);
}

} // namespace
} // namespace desktop
