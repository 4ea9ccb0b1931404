/// Registers the program's own run-time classes: members of a C++ class become the methods of an Objective-C one.
///
///   const Class cls = RuntimeClass<Delegate, "Delegate", "NSObject">()
///                         .method<"applicationWillTerminate:", &Delegate::applicationWillTerminate>()
///                         .registered();
///
/// Each instance carries one C++ object, its state: `attach` makes it once the instance is initialised, before any
/// method that uses it can be called, and it is destroyed with the instance. A static member that takes the instance
/// first becomes a method that needs no state; a class of such methods alone has `void` for its state. Encodings come
/// from the C++ types. Every method opens an autorelease pool. The program throws no exception; on a Mac one that the
/// platform throws under a method passes through it to whoever sent the message (macos/CMakeLists.txt).
#pragma once

#include "platform/Send.hpp"

namespace platform {

template <class State> class InstanceState {
public:
  /// Makes the state of a new instance.
  template <class... Arguments> static State& attach(id self, Arguments&&... arguments) {
    slot(self) = new State(std::forward<Arguments>(arguments)...);
    return *slot(self);
  }
  /// The state of an instance that has been initialised.
  static State& of(id self) { return *slot(self); }
  static void destroy(id self) { delete std::exchange(slot(self), nullptr); }

  static inline std::ptrdiff_t offset = 0;

private:
  static State*& slot(id self) { return *reinterpret_cast<State**>(reinterpret_cast<char*>(self) + offset); }
};

namespace wire {

/// What the run-time calls for a message to an instance of the program's own classes.
template <auto member> struct OwnMethod;

template <class State, class Result, class... Arguments, Result (State::*member)(Arguments...)>
struct OwnMethod<member> : MethodType<Result, Arguments...> {
  static Sent<Result> call(id self, SEL, Sent<Arguments>... arguments) noexcept {
    const AutoreleasePool pool;
    return (InstanceState<State>::of(self).*member)(Passing<Arguments>::in(arguments)...);
  }
};

template <class Result, class... Arguments, Result (*function)(id, Arguments...)>
struct OwnMethod<function> : MethodType<Result, Arguments...> {
  static Sent<Result> call(id self, SEL, Sent<Arguments>... arguments) noexcept {
    const AutoreleasePool pool;
    return function(self, Passing<Arguments>::in(arguments)...);
  }
};

} // namespace wire

/// An `init` for classes whose state is made from the instance alone.
template <class State, Literal superclass> id initialise(id self) {
  const id initialised = sendSuper<superclass, "init", id>(self);
  if (initialised != nullptr) InstanceState<State>::attach(initialised, initialised);
  return initialised;
}

template <class State, Literal name, Literal superclass> class RuntimeClass {
public:
  RuntimeClass() : cls(objc_allocateClassPair(theClass<superclass>.found(), name.text, 0)) {
    if (cls == nullptr) __builtin_trap(); // no such superclass, or another class has the name
    if constexpr (hasState) {
      class_addIvar(cls, "state", sizeof(State*), 3, "^v");
      method<"dealloc", &RuntimeClass::dealloc>();
    }
  }

  template <Literal selector, auto member> RuntimeClass& method() {
    using Own = wire::OwnMethod<member>;
    class_addMethod(cls, selectorNamed<selector>(), reinterpret_cast<IMP>(&Own::call), Own::encoding.text);
    return *this;
  }

  RuntimeClass& conformsTo(const char* protocol) {
    if (Protocol* const found = objc_getProtocol(protocol)) class_addProtocol(cls, found);
    return *this;
  }

  Class registered() {
    objc_registerClassPair(cls);
    if constexpr (hasState) {
      InstanceState<State>::offset = ivar_getOffset(class_getInstanceVariable(cls, "state"));
    }
    return cls;
  }

private:
  static constexpr bool hasState = !std::is_void_v<State>;

  static void dealloc(id self) {
    InstanceState<State>::destroy(self);
    sendSuper<superclass, "dealloc">(self);
  }

  Class cls;
};

} // namespace platform
