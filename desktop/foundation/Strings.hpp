/// Strings, and their conversion from and to what the stand-in itself works with.
#pragma once

#include "desktop/foundation/Text.hpp"
#include "desktop/runtime/Runtime.hpp"
#include "platform/Strings.hpp"

namespace desktop {

struct String : Object {
  std::u16string text;

  String* initWithBytes(const void* bytes, NSUInteger length, NSUInteger encoding);
  NSUInteger length() const { return text.size(); }
  NSUInteger hash() const;
  BOOL isEqualToString(String* other) const;
  void getCharacters(char16_t* units, NSRange range) const;
  Ref<String> stringByAppendingString(String* tail) const;
  Ref<String> stringByTrimmingCharactersInSet(Object* set) const;
  Ref<String> precomposedStringWithCanonicalMapping();
};

/// Nothing here changes one.
struct MutableString : String {};

/// An immutable string; the second form takes UTF-8.
Ref<String> string(std::u16string_view text);
Ref<String> string(std::string_view text);
/// UTF-8 for people and traces, or the units, which the string keeps; empty for none.
std::string textOf(const String* string);
const std::u16string& unitsOf(const String* string);

/// A constant of the platform: there before the program begins, never released.
CFStringRef constantString(std::u16string_view text);

/// The one set that the desktop has: whitespace and line ends.
struct CharacterSet : Object {};

} // namespace desktop
