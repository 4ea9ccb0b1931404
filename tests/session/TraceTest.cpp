#include "desktop/session/Trace.hpp"

#include <gtest/gtest.h>

using namespace desktop;
using namespace std::string_literals;

namespace {

TEST(Trace, KeepsEachFactOnOneLineAndEachFieldApart) {
  EXPECT_EQ(traceLine({"terminate"}), "terminate");
  EXPECT_EQ(traceLine({"item", "", "-"}), "item\t-\t-");
  EXPECT_EQ(traceLine({"a\tb\nc\rd\\", "\0\x1f\x7f\""s, "é…\xff"}), "a\\tb\\nc\\rd\\\\\t\\x00\\x1f\\x7f\"\té…\xff");
}

TEST(Trace, WritesNumbersAsScriptsExpectThem) {
  EXPECT_EQ(traceCode(8), "0x08");
  EXPECT_EQ(traceCode(0xffff), "0xffff");
  EXPECT_EQ(traceFlags(0), "0x0");
  EXPECT_EQ(traceFlags(~0ull), "0xffffffffffffffff");
  EXPECT_EQ(traceSize(400), "400");
  EXPECT_EQ(traceSize(312.5), "312.5");
}

} // namespace
