/// The target as libFuzzer calls it.
#include "tests/fuzz/Fuzz.hpp"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  desktop::play(desktop::Bytes({reinterpret_cast<const char*>(data), size}));
  if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed()) std::abort(); // libFuzzer keeps the input
  return 0;
}
