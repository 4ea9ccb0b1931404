/// What the fuzz targets share. A target is one function that plays any bytes and expects (with GoogleTest's macros)
/// what must hold whatever they are. `./dev fuzz` looks for bytes that break it; `./dev test` plays those in corpus/.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

namespace desktop {

/// Takes an input apart. What it no longer holds is 0, or empty.
class Bytes {
public:
  explicit Bytes(std::string_view input) : left(input) {}

  bool empty() const { return left.empty(); }
  std::string_view take(std::size_t count) {
    const auto taken = left.substr(0, count);
    left.remove_prefix(taken.size());
    return taken;
  }
  std::string_view rest() { return take(left.size()); }
  template <class Number> Number number() {
    Number value{};
    const auto bytes = take(sizeof value);
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  std::uint8_t byte() { return number<std::uint8_t>(); }
  template <class List> const auto& oneOf(const List& list) { return std::data(list)[byte() % std::size(list)]; }

private:
  std::string_view left;
};

/// Each target's own.
void play(Bytes input);

} // namespace desktop
