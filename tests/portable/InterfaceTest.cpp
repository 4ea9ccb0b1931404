/// What the program asks of the platform, against what is there. The program's functions and variables need no test:
/// where one were missing, this test program would not start.
#include "tests/portable/Portable.hpp"

#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <sstream>

namespace tarnwick {
namespace {

#if defined(__x86_64__)
constexpr auto thisProcessor = "x86_64";
#else
constexpr auto thisProcessor = "arm64";
#endif

/// A method's encoding as calls go by it: without offsets and qualifiers, all pointers alike, and 64 bits as they are,
/// with or without a sign.
std::string essential(const std::string& encoding) {
  std::string left;
  int braces = 0;
  bool isPointedAt = false;
  for (const char each : encoding) {
    braces += each == '{' ? 1 : each == '}' ? -1 : 0;
    if ((each >= '0' && each <= '9') || (braces == 0 && std::string_view("rnNoORV").find(each) != std::string::npos))
      continue;
    if (isPointedAt) {
      isPointedAt = braces > 0 || each == '^';
      continue;
    }
    if (each == '?') continue; // a block is an object
    isPointedAt = each == '^';
    left += each == '*' ? '^' : each == 'Q' ? 'q' : each;
  }
  return left;
}

class InterfacePortableTest : public PortableTest {};

TEST_F(InterfacePortableTest, HasEveryMessageThatTheProgramSends) {
  const char* const list = std::getenv("TARNWICK_MESSAGES");
  if (list == nullptr)
    GTEST_SKIP() << "the list of messages is made by ./dev test on a Mac, elsewhere ./dev test macos";
  std::ifstream lines(list);
  std::size_t held = 0;
  for (std::string line; std::getline(lines, line); ++held) {
    std::istringstream words(line);
    std::string kind, name, selector, encoding;
    words >> kind >> name >> selector >> encoding;
    const Class cls = objc_getClass(name.c_str());
    ASSERT_TRUE(cls) << "there is no class " << name;
    const SEL registered = sel_registerName(selector.c_str());
    const auto method = kind == "+" ? class_getClassMethod(cls, registered) : class_getInstanceMethod(cls, registered);
    ASSERT_TRUE(method) << "there is no " << kind << '[' << name << ' ' << selector << ']';
    EXPECT_EQ(essential(method_getTypeEncoding(method)), essential(encoding)) << kind << name << ' ' << selector;
  }
  EXPECT_GT(held, 100U) << list << " is no list of messages";
}

/// The application takes each symbol from the library that macos/imports.txt names.
TEST_F(InterfacePortableTest, HasEverySymbolWhereTheApplicationTakesItFrom) {
  if (isStandIn()) GTEST_SKIP() << "the stand-in is no set of libraries";
  std::ifstream lines(TARNWICK_SOURCE_DIR "/macos/imports.txt");
  void* library = nullptr;
  std::string place;
  std::size_t held = 0;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    std::string name, processor;
    if (!(words >> name)) continue;
    if (line.front() != ' ') {
      words >> place;
      library = dlopen(place.c_str(), RTLD_LAZY);
      ASSERT_NE(library, nullptr) << dlerror();
      continue;
    }
    std::string first, source;
    words >> first >> source >> processor;
    if (!processor.empty() && processor != thisProcessor) continue;
    EXPECT_NE(dlsym(library, name.c_str()), nullptr) << name << " is not in " << place;
    ++held;
  }
  EXPECT_GT(held, 50U) << "macos/imports.txt no longer reads as this test expects";
}

} // namespace
} // namespace tarnwick
