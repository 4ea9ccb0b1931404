/// What the program asks of the platform, against what is there.
#include "tests/portable/Portable.hpp"

#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>

namespace tarnwick {
namespace {

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

using Row = std::array<std::string, 4>;

/// What the program asks for, each row of these words: kind, class or library, selector or symbol, encoding.
std::vector<Row> asked(bool symbols) {
  std::ifstream list(std::getenv("TARNWICK_MESSAGES"));
  std::vector<Row> rows;
  for (Row row; list >> row[0] >> row[1] >> row[2] >> row[3];) {
    if ((row[0] == "symbol") == symbols) rows.push_back(row);
  }
  EXPECT_GT(rows.size(), 40U) << "the list is no list";
  return rows;
}

class InterfacePortableTest : public PortableTest {
protected:
  void SetUp() override {
    if (std::getenv("TARNWICK_MESSAGES") == nullptr)
      GTEST_SKIP() << "the list of messages is made by ./dev test on a Mac, elsewhere by ./dev test macos";
  }
};

TEST_F(InterfacePortableTest, HasEveryMessageThatTheProgramSends) {
  for (const auto& [kind, name, selector, encoding] : asked(false)) {
    const Class cls = objc_getClass(name.c_str());
    ASSERT_TRUE(cls) << "there is no class " << name;
    const SEL registered = sel_registerName(selector.c_str());
    const auto method = kind == "+" ? class_getClassMethod(cls, registered) : class_getInstanceMethod(cls, registered);
    ASSERT_TRUE(method) << "there is no " << kind << '[' << name << ' ' << selector << ']';
    EXPECT_EQ(essential(method_getTypeEncoding(method)), essential(encoding)) << kind << name << ' ' << selector;
  }
}

TEST_F(InterfacePortableTest, HasEverySymbolWhereTheApplicationTakesItFrom) {
  if (isStandIn()) GTEST_SKIP() << "the stand-in is no set of libraries";
  for (const auto& [kind, library, name, none] : asked(true))
    EXPECT_NE(dlsym(dlopen(library.c_str(), RTLD_LAZY), name.c_str()), nullptr) << name << " is not in " << library;
}

} // namespace
} // namespace tarnwick
