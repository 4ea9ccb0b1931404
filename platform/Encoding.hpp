/// Names as template arguments, and the encodings of C++ types that the runtime keeps for methods.
#pragma once

#include "platform/Geometry.hpp"
#include "platform/Runtime.hpp"

#include <algorithm>
#include <type_traits>

namespace platform {

/// A text known at compile time: a class, a selector, a type encoding.
template <std::size_t size> struct Literal {
  char text[size]{};

  constexpr Literal() = default;
  // Implicit: a literal stands for its name.
  constexpr Literal(const char (&literal)[size]) { std::copy_n(literal, size, text); }

  template <std::size_t other> constexpr Literal<size + other - 1> operator+(const Literal<other>& tail) const {
    Literal<size + other - 1> joined;
    std::copy_n(text, size - 1, joined.text);
    std::copy_n(tail.text, other, joined.text + size - 1);
    return joined;
  }
};

template <class Type> constexpr auto integerCode() {
  constexpr bool isSigned = std::is_signed_v<Type>;
  if constexpr (sizeof(Type) == 1) {
    return isSigned ? Literal("c") : Literal("C");
  } else if constexpr (sizeof(Type) == 2) {
    return isSigned ? Literal("s") : Literal("S");
  } else if constexpr (sizeof(Type) == 4) {
    return isSigned ? Literal("i") : Literal("I");
  } else {
    return isSigned ? Literal("q") : Literal("Q");
  }
}

/// The code of one type. Integers go by size and sign, since one width has several spellings.
template <class Type> constexpr auto typeCode() {
  if constexpr (std::is_void_v<Type>) {
    return Literal("v");
  } else if constexpr (std::is_same_v<Type, id>) {
    return Literal("@");
  } else if constexpr (std::is_same_v<Type, Class>) {
    return Literal("#");
  } else if constexpr (std::is_same_v<Type, SEL>) {
    return Literal(":");
  } else if constexpr (std::is_same_v<Type, bool>) {
    return Literal("B");
  } else if constexpr (std::is_enum_v<Type>) {
    return typeCode<std::underlying_type_t<Type>>();
  } else if constexpr (std::is_integral_v<Type>) {
    return integerCode<Type>();
  } else if constexpr (std::is_same_v<Type, float>) {
    return Literal("f");
  } else if constexpr (std::is_same_v<Type, double>) {
    return Literal("d");
  } else if constexpr (std::is_same_v<Type, CGPoint>) {
    return Literal("{CGPoint=dd}");
  } else if constexpr (std::is_same_v<Type, CGSize>) {
    return Literal("{CGSize=dd}");
  } else if constexpr (std::is_same_v<Type, CGRect>) {
    return Literal("{CGRect={CGPoint=dd}{CGSize=dd}}");
  } else if constexpr (std::is_same_v<Type, NSRange>) {
    return Literal("{_NSRange=QQ}");
  } else {
    static_assert(std::is_pointer_v<Type>, "a type without an encoding");
    return Literal("^v");
  }
}

/// The encoding of a method: result, receiver and selector, arguments.
template <class Result, class... Arguments>
inline constexpr auto methodEncoding = ((typeCode<Result>() + Literal("@:")) + ... + typeCode<Arguments>());

} // namespace platform
