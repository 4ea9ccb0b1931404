/// The user's defaults: a dictionary that outlasts the program.
#pragma once

#include "desktop/foundation/Collections.hpp"
#include "desktop/foundation/PropertyListFile.hpp"
#include "desktop/foundation/Strings.hpp"
#include "desktop/runtime/Part.hpp"

#include <memory>

namespace desktop {

struct UserDefaults : Object {
  std::unique_ptr<PropertyListFile> file;

  Ref<Array> arrayForKey(String* key) const;
  void setObject(Object* value, String* key);
};

/// The program's own, in memory only until they get a file.
struct StandardDefaults : Part<StandardDefaults>, Ref<UserDefaults> {
  StandardDefaults();
};

} // namespace desktop
