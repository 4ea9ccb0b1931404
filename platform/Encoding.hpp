/// Names as template arguments, and the encodings of C++ types that the runtime keeps for methods.
#pragma once

#include "platform/Geometry.hpp"
#include "platform/Runtime.hpp"

#include <algorithm>
#include <type_traits>

namespace platform {

/// A text known at compile time: a class, a selector, a type encoding.
template <std::size_t size> struct Name {
  char text[size]{};

  constexpr Name() = default;
  // Implicit: a literal stands for its name.
  constexpr Name(const char (&literal)[size]) { std::copy_n(literal, size, text); }

  template <std::size_t other> constexpr Name<size + other - 1> operator+(const Name<other>& tail) const {
    Name<size + other - 1> joined;
    std::copy_n(text, size - 1, joined.text);
    std::copy_n(tail.text, other, joined.text + size - 1);
    return joined;
  }
};

template <class Type> constexpr auto integerCode() {
  constexpr bool isSigned = std::is_signed_v<Type>;
  if constexpr (sizeof(Type) == 1) {
    return isSigned ? Name("c") : Name("C");
  } else if constexpr (sizeof(Type) == 2) {
    return isSigned ? Name("s") : Name("S");
  } else if constexpr (sizeof(Type) == 4) {
    return isSigned ? Name("i") : Name("I");
  } else {
    return isSigned ? Name("q") : Name("Q");
  }
}

/// The code of one type. Integers go by size and sign, since one width has several spellings.
template <class Type> constexpr auto typeCode() {
  if constexpr (std::is_void_v<Type>) {
    return Name("v");
  } else if constexpr (std::is_same_v<Type, id>) {
    return Name("@");
  } else if constexpr (std::is_same_v<Type, Class>) {
    return Name("#");
  } else if constexpr (std::is_same_v<Type, SEL>) {
    return Name(":");
  } else if constexpr (std::is_same_v<Type, bool>) {
    return Name("B");
  } else if constexpr (std::is_enum_v<Type>) {
    return typeCode<std::underlying_type_t<Type>>();
  } else if constexpr (std::is_integral_v<Type>) {
    return integerCode<Type>();
  } else if constexpr (std::is_same_v<Type, float>) {
    return Name("f");
  } else if constexpr (std::is_same_v<Type, double>) {
    return Name("d");
  } else if constexpr (std::is_same_v<Type, CGPoint>) {
    return Name("{CGPoint=dd}");
  } else if constexpr (std::is_same_v<Type, CGSize>) {
    return Name("{CGSize=dd}");
  } else if constexpr (std::is_same_v<Type, CGRect>) {
    return Name("{CGRect={CGPoint=dd}{CGSize=dd}}");
  } else if constexpr (std::is_same_v<Type, NSRange>) {
    return Name("{_NSRange=QQ}");
  } else {
    static_assert(std::is_pointer_v<Type>, "a type without an encoding");
    return Name("^v");
  }
}

/// The encoding of a method: result, receiver and selector, arguments.
template <class Result, class... Arguments>
inline constexpr auto methodEncoding = ((typeCode<Result>() + Name("@:")) + ... + typeCode<Arguments>());

} // namespace platform
