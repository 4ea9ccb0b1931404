/// The stand-in's run-time: classes, methods found by selector, reference counts, autorelease pools. Read this header
/// first, then Objects, which a message goes through. Part holds the machine's state, Journal tells what happens to it,
/// and Faults makes calls fail.
///
/// Classes of the desktop itself are C++ structures deriving from `Object`; they are registered once with
/// `NativeClass`. Everything runs on the main thread. What would be silent memory corruption on a Mac (an unknown
/// selector, a call of another type, a message to a released object) stops the program with a sentence.
#pragma once

#include "platform/Send.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace desktop {

using platform::NSInteger;
using platform::NSRange;
using platform::NSUInteger;

/// Prints "tarnwick: SENTENCE" on standard error and ends the process by abort.
[[noreturn, gnu::cold]] void stop(std::string_view sentence);

/// Released when the innermost pool ends.
id autorelease(id object);
/// How many objects wait for the end of a pool.
std::size_t autoreleasedObjects();

/// One reference to a desktop object, or none.
template <class Type> class Ref {
public:
  Ref() = default;
  // Implicit, as null is none.
  Ref(std::nullptr_t) {}
  Ref(platform::Adopt, Type* taken) : held(taken) {}
  Ref(platform::Share, Type* shared) : held(shared) {
    if (held != nullptr) retain(held);
  }
  Ref(const Ref& other) : Ref(platform::share, other.held) {}
  Ref(Ref&& other) noexcept : held(std::exchange(other.held, nullptr)) {}
  template <std::derived_from<Type> Other>
  // Implicit, to a base.
  Ref(const Ref<Other>& other) : Ref(platform::share, other.get()) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(held, other.held);
    return *this;
  }
  ~Ref() {
    if (held != nullptr) release(held);
  }

  Type* get() const { return held; }
  Type* operator->() const { return held; }
  Type& operator*() const { return *held; }
  explicit operator bool() const { return held != nullptr; }
  Type* detach() { return std::exchange(held, nullptr); }

private:
  Type* held = nullptr;
};

template <class Type> Ref<Type> shared(Type* object) {
  return {platform::share, object};
}

/// An instance with one reference, which is the caller's.
Object* allocate(Class cls);
bool isKindOf(const objc_object* object, Class cls);
bool respondsTo(id object, const char* selector);
bool conformsTo(id object, const std::string& protocol);
/// Stops the program unless the delegate, if there is one, conforms to the protocol or that could not be found.
void checkDelegate(id object, const std::string& protocol);
/// Alive instances of a class and of those derived from it; 0 for an unknown one.
long liveObjects(const std::string& className);
/// Everything alive, by class: what a test compares before and after.
std::vector<std::pair<std::string, long>> liveObjects();
const char* selectorText(SEL selector);

struct RegisteredMethod {
  std::string owner;
  /// Empty for the root class.
  std::string superclass;
  bool isOfClass;
  std::string selector;
  std::string encoding;
};
/// Everything that can be sent here, to be held against what the platform has.
std::vector<RegisteredMethod> registeredMethods();

/// The class that a C++ structure was registered as.
template <class Type> inline Class nativeClass = nullptr;

/// Makes an instance without an initialiser.
template <class Type> Ref<Type> create() {
  return {platform::adopt, static_cast<Type*>(allocate(nativeClass<Type>))};
}

/// Stops the program unless `object` is of the class or of one derived from it.
void checkKind(const objc_object* object, Class wanted);

/// `object` as what a method asks for; stops the program when it is of another class.
template <class Type> Type* as(id object) {
  if (object != nullptr && object->isa != nativeClass<Type>) checkKind(object, nativeClass<Type>);
  return static_cast<Type*>(object);
}

/// What the platform's C interface calls by an opaque pointer.
template <class Type> Type* objectBehind(const void* reference) {
  return as<Type>(static_cast<id>(const_cast<void*>(reference)));
}
/// The pointer by which the C interface calls the object. Without `detach` it owns nothing.
template <class Reference> Reference referenceTo(Object* object) {
  return reinterpret_cast<Reference>(static_cast<id>(object));
}

/// `object` when it is of this class, else null.
template <class Type> Type* ifIs(id object) {
  return object != nullptr && isKindOf(object, nativeClass<Type>) ? static_cast<Type*>(object) : nullptr;
}

/// A class of the desktop. The platform's C types are declared and never defined.
template <class Type>
concept NativeObject = requires {
  sizeof(Type);
}
&&std::derived_from<Type, Object>;

} // namespace desktop

namespace platform::wire {

template <desktop::NativeObject Type> struct Passing<Type*> {
  using Sent = id;
  static Type* in(id value) { return desktop::as<Type>(value); }
  static id out(Type* value) { return value; }
};
/// A result that the caller does not own.
template <class Type> struct Passing<desktop::Ref<Type>> {
  using Sent = id;
  static id out(desktop::Ref<Type> value) { return desktop::autorelease(value.detach()); }
};

} // namespace platform::wire

namespace desktop {
namespace native {

using platform::wire::MethodType;
using platform::wire::Passing;
using platform::wire::Sent;

/// What the run-time calls for a message to an object of the desktop.
template <auto member> struct NativeMethod;

/// Makes the call, whose result goes out as messages pass it.
template <class Result, class Call> Sent<Result> answer(Call call) {
  if constexpr (std::is_void_v<Result>) {
    call();
  } else {
    return Passing<Result>::out(call());
  }
}

template <class Type, class Result, class... Arguments, Result (Type::*member)(Arguments...)>
struct NativeMethod<member> : MethodType<Result, Arguments...> {
  static Sent<Result> call(id self, SEL, Sent<Arguments>... arguments) {
    return answer<Result>([&] { return (static_cast<Type*>(self)->*member)(Passing<Arguments>::in(arguments)...); });
  }
};

template <class Type, class Result, class... Arguments, Result (Type::*member)(Arguments...) const>
struct NativeMethod<member> : MethodType<Result, Arguments...> {
  static Sent<Result> call(id self, SEL, Sent<Arguments>... arguments) {
    return answer<Result>(
        [&] { return (static_cast<const Type*>(self)->*member)(Passing<Arguments>::in(arguments)...); });
  }
};

/// A function that takes the instance first, as a reference.
template <class Type, class Result, class... Arguments, Result (*function)(Type&, Arguments...)>
struct NativeMethod<function> : MethodType<Result, Arguments...> {
  static Sent<Result> call(id self, SEL, Sent<Arguments>... arguments) {
    return answer<Result>([&] { return function(static_cast<Type&>(*self), Passing<Arguments>::in(arguments)...); });
  }
};

/// Any other function: a method that looks neither at its class nor at its instance.
template <class Result, class... Arguments, Result (*function)(Arguments...)>
requires(!(std::is_reference_v<Arguments> || ...)) struct NativeMethod<function> : MethodType<Result, Arguments...> {
  static Sent<Result> call(id, SEL, Sent<Arguments>... arguments) {
    return answer<Result>([&] { return function(Passing<Arguments>::in(arguments)...); });
  }
};

} // namespace native

/// Whether a test makes any call fail (see `Faults`). While none does nobody counts calls: keys pass here.
inline bool anyFails = false;
[[gnu::cold]] bool isToFail(const char* name, const char* selector);
/// Whether a call is to fail: a function by its name, or a method by its class and selector.
inline bool fails(const char* name, const char* selector = nullptr) {
  if (!anyFails) [[likely]]
    return false;
  return isToFail(name, selector);
}

namespace native {

/// A method that answers nothing or no when it is to fail; a failing initialiser releases its instance.
template <platform::Literal selector, auto method> struct Fallible;
template <platform::Literal selector, class Result, class... Arguments, Result (*method)(id, SEL, Arguments...)>
struct Fallible<selector, method> {
  /// The class that it was registered for.
  static inline const char* owner = nullptr;

  static Result call(id self, SEL registered, Arguments... arguments) {
    if (!fails(owner, selector.text)) return method(self, registered, arguments...);
    if constexpr (std::string_view(selector.text).starts_with("init")) release(static_cast<Object*>(self));
    return Result();
  }
};

} // namespace native

/// Registers a C++ structure as a class of the desktop.
///
///   NativeClass<Menu>("NSMenu", "NSObject").method<"addItem:", &Menu::addItem>();
///
/// A fallible method is one that may answer nothing or no on the platform, and here when a test wants it.
///
/// A method returning a plain pointer lends what the receiver keeps (or, for an initialiser, gives back the receiver);
/// one returning `Ref` autoreleases its result.
template <class Type> class NativeClass {
public:
  NativeClass(const char* name, const char* superclass)
      : cls(objc_allocateClassPair(superclass != nullptr ? objc_getClass(superclass) : nullptr, name, 0)) {
    cls->instanceSize = sizeof(Type);
    cls->construct = [](void* memory) { new (memory) Type(); };
    cls->destroy = [](objc_object* object) { static_cast<Type*>(object)->~Type(); };
    nativeClass<Type> = cls;
    objc_registerClassPair(cls);
  }

  template <platform::Literal selector, auto member> NativeClass& method() { return add<selector, member>(cls); }
  template <platform::Literal selector, auto member> NativeClass& fallibleMethod() {
    return addFallible<selector, member>(cls);
  }
  template <platform::Literal selector, auto function> NativeClass& classMethod() {
    return add<selector, function>(cls->isa);
  }
  template <platform::Literal selector, auto function> NativeClass& fallibleClassMethod() {
    return addFallible<selector, function>(cls->isa);
  }

private:
  template <platform::Literal selector, auto member> NativeClass& add(Class to) {
    using Native = native::NativeMethod<member>;
    class_addMethod(to, sel_registerName(selector.text), reinterpret_cast<IMP>(&Native::call), Native::encoding.text);
    return *this;
  }
  template <platform::Literal selector, auto member> NativeClass& addFallible(Class to) {
    using Native = native::NativeMethod<member>;
    using Fallible = native::Fallible<selector, &Native::call>;
    Fallible::owner = cls->name.c_str();
    class_addMethod(to, sel_registerName(selector.text), reinterpret_cast<IMP>(&Fallible::call), Native::encoding.text);
    return *this;
  }

  Class cls;
};

/// Sends a message whose selector is known only now.
template <class Result, class... Arguments> Result perform(id receiver, SEL selector, Arguments... arguments) {
  return platform::wire::callSuper<Result, Arguments...>(receiver, nullptr, selector, arguments...);
}

/// Sends an action: `selector` with or without its sender, as the selector's colon says.
void sendAction(SEL selector, id target, id sender);

/// The root class; called before any other registration.
void registerRootClass();

} // namespace desktop
