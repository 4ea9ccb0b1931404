#include "desktop/foundation/UserDefaults.hpp"

#include "desktop/foundation/Foundation.hpp"

namespace desktop {
namespace {

UserDefaults* standardUserDefaults() {
  return StandardDefaults::current().get();
}

} // namespace

Ref<Array> UserDefaults::arrayForKey(String* key) const {
  const PropertyList* value = file->value(key->text);
  if (value == nullptr || value->as<PropertyList::Array>() == nullptr) return nullptr;
  return shared(as<Array>(objectOf(*value).get()));
}

void UserDefaults::setObject(Object* value, String* key) {
  auto list = propertyListOf(value);
  if (!list) stop("user defaults hold property lists only; '" + textOf(key) + "' was given something else");
  file->set(key->text, *std::move(list));
}

StandardDefaults::StandardDefaults() : Ref(create<UserDefaults>()) {
  get()->file = std::make_unique<PropertyListFile>();
}

void registerUserDefaultsClass() {
  NativeClass<UserDefaults>("NSUserDefaults", "NSObject")
      .classMethod<"standardUserDefaults", &standardUserDefaults>()
      .fallibleMethod<"arrayForKey:", &UserDefaults::arrayForKey>()
      .method<"setObject:forKey:", &UserDefaults::setObject>();
}

} // namespace desktop
