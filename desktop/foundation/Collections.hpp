/// Arrays, dictionaries, numbers and data: what property lists hold besides strings.
#pragma once

#include "desktop/foundation/PropertyList.hpp"
#include "desktop/runtime/Runtime.hpp"

#include <optional>

namespace desktop {

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

/// A property-list value as objects, and back; nothing when an object has no place in a property list.
Ref<Object> objectOf(const PropertyList& value);
std::optional<PropertyList> propertyListOf(id object);

} // namespace desktop
