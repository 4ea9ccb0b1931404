/// The target as libFuzzer calls it.
#include "tests/fuzz/Fuzz.hpp"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  testing::GTEST_FLAG(break_on_failure) = true; // an expectation that fails is a find
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  desktop::play(desktop::Bytes({reinterpret_cast<const char*>(data), size}));
  return 0;
}
