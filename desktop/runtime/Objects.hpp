/// What objects and classes of the stand-in are made of, and what every message goes through: the look-up of its method
/// and the counts of references. Short enough to be compiled into the sender.
#pragma once

#include "platform/Runtime.hpp"

#include <set>
#include <string>
#include <unordered_map>

namespace desktop {

struct Method {
  IMP implementation = nullptr;
  std::string encoding;
};

} // namespace desktop

struct objc_object {
  Class isa = nullptr;
};

/// A class, or (as the `isa` of one) the holder of its class methods.
struct objc_class : objc_object {
  std::string name;
  Class superclass = nullptr;
  bool isMeta = false;
  /// The class that instances get when they are released for good: every message to them is a fault.
  bool isReleased = false;
  std::size_t instanceSize = 0;
  /// Makes and destroys the C++ part of an instance; inherited.
  void (*construct)(void*) = nullptr;
  void (*destroy)(objc_object*) = nullptr;
  std::unordered_map<SEL, desktop::Method> methods;
  std::unordered_map<std::string, std::ptrdiff_t> variables;
  std::set<std::string> protocols;
  /// It or a class derived from it has been sent a message: what was looked up is remembered, so no method may be
  /// added.
  bool isUsed = false;
  /// The method `dealloc` of its instances, found when the first of them goes.
  void (*dealloc)(id, SEL) = nullptr;
  /// How many instances are alive.
  long live = 0;
};

namespace desktop {

/// What every instance begins with. Made with one reference, which belongs to the maker; none are left when it is
/// released for good.
struct Object : objc_object {
  long references = 1;

  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
};

/// The method that a message ends in. The search starts at `start`, or at the receiver's class when that is null; stops
/// the program with a sentence unless it finds a method `selector` of exactly this encoding.
[[gnu::cold]] IMP methodFor(id receiver, Class start, SEL selector, const char* encoding);

/// One message of the sources: whom it went to last, and the method checked for that class.
struct CallSite {
  Class cls = nullptr;
  SEL selector = nullptr;
  IMP method = nullptr;
};
/// Looks the method up and remembers it. Kept out of its callers, which would save registers for it at each key.
[[gnu::cold, gnu::noinline]] void resolve(CallSite& site, id receiver, const char* selector, const char* encoding);

[[noreturn, gnu::cold]] void stopAsReleased(const Object* object, const char* what);
/// The last reference is gone.
[[gnu::noinline]] void endLife(Object* object);

inline Object* retain(Object* object) {
  if (object->references++ <= 0) [[unlikely]]
    stopAsReleased(object, "retained");
  return object;
}

inline void release(Object* object) {
  if (--object->references <= 0) [[unlikely]]
    endLife(object);
}

} // namespace desktop

extern "C" {

inline id objc_retain(id object) {
  return object != nullptr ? desktop::retain(static_cast<desktop::Object*>(object)) : nullptr;
}

inline void objc_release(id object) {
  if (object != nullptr) desktop::release(static_cast<desktop::Object*>(object));
}
}
