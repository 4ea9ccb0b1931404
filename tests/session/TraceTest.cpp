#include "desktop/session/Trace.hpp"

#include <gtest/gtest.h>

using namespace desktop;
using namespace std::string_literals;

namespace {

TEST(Trace, KeepsEachFactOnOneLineAndEachFieldApart) {
  EXPECT_EQ(traceLine({"terminate"}), "terminate");
  EXPECT_EQ(traceLine({"item", "", "-"}), "item\t-\t-");
  EXPECT_EQ(traceLine({"a\tb\nc\rd\\", "\0\x1f\x7f\""s, "é…\xff"}), "a\\tb\\nc\\rd\\\\\t\\x00\\x1f\\x7f\"\té…\xff");
  EXPECT_EQ(escaped("a\u0085b\u2028c\xc2"), "a\\xc2\\x85b\\xe2\\x80\\xa8c\xc2") << "line ends of Unicode";
}

TEST(Facts, WriteNumbersAsScriptsExpectThem) {
  EXPECT_EQ(factCode(8), "0x08");
  EXPECT_EQ(factCode(0xffff), "0xffff");
  EXPECT_EQ(factFlags(0), "0x0");
  EXPECT_EQ(factFlags(~0ull), "0xffffffffffffffff");
  EXPECT_EQ(factSize(400), "400");
  EXPECT_EQ(factSize(312.5), "312.5");
}

} // namespace
