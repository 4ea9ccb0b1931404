#include "desktop/foundation/Collections.hpp"

#include "desktop/foundation/Foundation.hpp"
#include "desktop/foundation/Strings.hpp"

namespace desktop {
namespace {

template <class Type> Ref<Type> holding(const PropertyList& value) {
  auto made = create<Type>();
  made->value = value;
  return made;
}

struct ObjectMaker {
  Ref<Object> operator()(const std::u16string& text) const { return string(text); }
  Ref<Object> operator()(bool value) const { return holding<Number>(value); }
  Ref<Object> operator()(std::int64_t value) const { return holding<Number>(value); }
  Ref<Object> operator()(double value) const { return holding<Number>(value); }
  Ref<Object> operator()(const PropertyList::Data& value) const { return holding<Data>(value); }
  Ref<Object> operator()(PropertyList::Date value) const { return holding<Data>(value); }
  Ref<Object> operator()(const PropertyList::Array& values) const {
    auto array = create<Array>();
    for (const PropertyList& value : values)
      array->elements.push_back(objectOf(value));
    return array;
  }
  Ref<Object> operator()(const PropertyList::Dictionary& values) const {
    auto dictionary = create<Dictionary>();
    for (const auto& [key, value] : values)
      dictionary->entries[key] = objectOf(value);
    return dictionary;
  }
};

Ref<Number> numberWithBool(BOOL value) {
  return holding<Number>(value);
}

Ref<Dictionary> dictionaryWithObjectForKey(Object* object, String* key) {
  auto made = create<Dictionary>();
  made->entries[key->text] = shared(object);
  return made;
}

} // namespace

Array* Array::initWithObjects(const id* objects, NSUInteger count) {
  for (NSUInteger index = 0; index < count; ++index) {
    if (objects[index] == nullptr) stop("nothing (nil) was put into an NSArray");
    elements.push_back(shared(static_cast<Object*>(objects[index])));
  }
  return this;
}

Object* Array::objectAtIndex(NSUInteger index) const {
  if (index >= elements.size()) stop("an NSArray was asked for an element beyond its end");
  return elements[index].get();
}

Ref<Object> objectOf(const PropertyList& value) {
  return std::visit(ObjectMaker(), value.value);
}

std::optional<PropertyList> propertyListOf(id object) {
  if (const auto* text = ifIs<String>(object)) return PropertyList(text->text);
  if (const auto* number = ifIs<Number>(object)) return number->value;
  if (const auto* data = ifIs<Data>(object)) return data->value;
  if (const auto* array = ifIs<Array>(object)) {
    PropertyList::Array values;
    values.reserve(array->elements.size());
    for (const auto& element : array->elements) {
      auto value = propertyListOf(element.get());
      if (!value) return std::nullopt;
      values.push_back(*std::move(value));
    }
    return PropertyList(std::move(values));
  }
  if (const auto* dictionary = ifIs<Dictionary>(object)) {
    PropertyList::Dictionary values;
    for (const auto& [key, entry] : dictionary->entries) {
      auto value = propertyListOf(entry.get());
      if (!value) return std::nullopt;
      values[key] = *std::move(value);
    }
    return PropertyList(std::move(values));
  }
  return std::nullopt;
}

void registerCollectionClasses() {
  NativeClass<Number>("NSNumber", "NSObject").classMethod<"numberWithBool:", &numberWithBool>();
  NativeClass<Data>("NSData", "NSObject");
  NativeClass<Array>("NSArray", "NSObject")
      .method<"initWithObjects:count:", &Array::initWithObjects>()
      .method<"count", &Array::count>()
      .method<"objectAtIndex:", &Array::objectAtIndex>();
  NativeClass<Dictionary>("NSDictionary", "NSObject")
      .classMethod<"dictionaryWithObject:forKey:", &dictionaryWithObjectForKey>();
}

} // namespace desktop
