/// The stand-in's Foundation: the classes behind texts, collections, URLs, bundles and user defaults.
#pragma once

#include "desktop/foundation/PropertyList.hpp"
#include "desktop/foundation/PropertyListFile.hpp"
#include "desktop/foundation/Text.hpp"
#include "desktop/runtime/Runtime.hpp"

#include <filesystem>
#include <memory>
#include <optional>

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
  Ref<String> precomposedStringWithCanonicalMapping() const;
};

/// An immutable string; the second form takes UTF-8.
Ref<String> string(std::u16string_view text);
Ref<String> string(std::string_view text);
/// UTF-8 for people and traces, or the units; empty for none.
std::string textOf(const String* string);
std::u16string unitsOf(const String* string);

/// The one set that the desktop has: whitespace and line ends.
struct CharacterSet : Object {};

struct Number : Object {
  PropertyList value;
};

struct Array : Object {
  std::vector<Ref<Object>> elements;

  Array* initWithObjects(const id* objects, NSUInteger count);
  NSUInteger count() const { return elements.size(); }
  Object* objectAtIndex(NSUInteger index) const;
};

struct Dictionary : Object {
  std::map<std::u16string, Ref<Object>> entries;
};

/// Bytes or a date: the program takes neither, they are only kept.
struct Data : Object {
  PropertyList value;
};

struct URL : Object {
  std::string text;
  /// A file URL's path; empty otherwise.
  std::string path;

  Ref<URL> URLByAppendingPathComponent(String* name) const;
};

Ref<URL> fileURL(const std::string& path);
/// The bytes of a regular file; empty when it cannot be read.
std::string contentsOfFile(const std::filesystem::path& file);

/// A property-list value as objects, and back; nothing when an object has no place in a property list.
Ref<Object> objectOf(const PropertyList& value);
std::optional<PropertyList> propertyListOf(id object);

struct Bundle : Object {
  std::filesystem::path folder;
  /// Contents/Info.plist, or an empty dictionary.
  PropertyList information = PropertyList::Dictionary();
  /// Made once, so that asking for it is as cheap as on the platform.
  Ref<String> identifier;
  bool isMain = false;

  Bundle* initWithURL(URL* url);
  /// Whatever the folder lacks is missing, nothing more.
  void open(const std::filesystem::path& path);
  String* bundleIdentifier() const;
  Ref<Object> objectForInfoDictionaryKey(String* key) const;
  Ref<URL> URLForResource(String* name, String* extension) const;
  Ref<URL> privateFrameworksURL() const;
  /// The class of the update framework is there from now on if the executable names it; false without an executable.
  BOOL load() const;
};

struct UserDefaults : Object {
  std::unique_ptr<PropertyListFile> file;

  Ref<Array> arrayForKey(String* key) const;
  void setObject(Object* value, String* key);
};

void registerStringClasses();
void registerCollectionClasses();
void registerBundleClasses();

} // namespace desktop
