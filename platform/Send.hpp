/// Typed messages, and the values that the platform's objects are held in: owning ones, and for the key path lent ones.
#pragma once

#include "platform/Encoding.hpp"

#include <concepts>
#include <utility>

#if !defined(__APPLE__)
#include "desktop/runtime/Objects.hpp"
#endif

namespace platform {

struct Adopt {};
struct Share {};
/// Takes over a reference that the caller owns: the result of new, copy and Create.
inline constexpr Adopt adopt;
/// Takes a reference of one's own on something that another keeps.
inline constexpr Share share;

/// One reference to one of the platform's objects, or none. Copies share the object. There is no move, since a `Lent`,
/// which derives from this, holds an object without a reference: moved from, it would give away what it never had.
class NSObject {
public:
  NSObject() = default;
  NSObject(Adopt, id taken) : held(taken) {}
  NSObject(Share, id shared) : held(shared != nullptr ? objc_retain(shared) : nullptr) {}
  NSObject(const NSObject& other) : NSObject(share, other.held) {}
  NSObject& operator=(NSObject other) noexcept {
    std::swap(held, other.held);
    return *this;
  }
  ~NSObject() {
    if (held != nullptr) objc_release(held);
  }

  explicit operator bool() const { return held != nullptr; }
  /// The object itself, still owned by this value.
  [[nodiscard]] id object() const { return held; }
  /// Gives the reference away to the caller.
  [[nodiscard]] id detach() { return std::exchange(held, nullptr); }

private:
  id held = nullptr;
};

template <class Type>
concept Wrapper = std::derived_from<Type, NSObject>;

/// An object that is used without a reference of one's own, for the key path's sake. A message's result is valid as
/// long as both its receiver and the autorelease pool around it; what is to outlast them is copied into a `Type`.
template <class Type> class Lent : public Type {
public:
  Lent() = default;
  explicit Lent(id lent) : Type(adopt, lent) {}
  Lent(const Lent&) = delete;
  Lent& operator=(const Lent&) = delete;
  ~Lent() { static_cast<void>(Type::detach()); }

  id detach() = delete;
};

template <Literal name> SEL selectorNamed() {
  // Not a guarded static: registering twice is harmless, and the key path stays short.
  static SEL registered = nullptr;
  if (registered == nullptr) registered = sel_registerName(name.text);
  return registered;
}

/// A class, as receiver or argument of a message; while it is not loaded it is nothing.
template <Literal name> struct ClassNamed {
  [[nodiscard]] Class found() const {
    static Class cls = nullptr;
    if (cls == nullptr) cls = objc_getClass(name.text);
    return cls;
  }
};
template <Literal name> inline constexpr ClassNamed<name> theClass;

namespace wire {

/// How a value is passed in a message: wrappers as the object they hold, everything else as it is.
template <class Type> struct Passing {
  using Sent = Type;
  static Type out(Type value) { return value; }
  static Type in(Type value) { return value; }
};
template <> struct Passing<void> { using Sent = void; };
template <Wrapper Type> struct Passing<Type> {
  using Sent = id;
  static id out(const Type& value) { return value.object(); }
  static Type in(id value) { return Type(share, value); }
};
template <class Type> struct Passing<Lent<Type>> : Passing<Type> {
  static Lent<Type> in(id value) { return Lent<Type>(value); }
};
template <Literal name> struct Passing<ClassNamed<name>> {
  using Sent = Class;
  static Class out(ClassNamed<name> value) { return value.found(); }
};
template <> struct Passing<std::nullptr_t> {
  using Sent = id;
  static id out(std::nullptr_t) { return nullptr; }
};
template <class Type> using Sent = typename Passing<Type>::Sent;

/// Base of what implements a method: how the platform knows the type of a C++ function's result and arguments.
template <class Result, class... Arguments> struct MethodType {
  static constexpr auto encoding = methodEncoding<Sent<Result>, Sent<Arguments>...>;
};

template <class Receiver> id target(const Receiver& receiver) {
  return reinterpret_cast<id>(Passing<Receiver>::out(receiver));
}

template <class Result, class... Arguments> using Method = Result (*)(id, SEL, Arguments...);
template <class Result, class... Arguments> using SuperMethod = Result (*)(objc_super*, SEL, Arguments...);

#if defined(__APPLE__)
/// x86-64 returns what does not fit two registers through memory, by another entry; arm64 has only the one.
template <class Result> constexpr bool returnsThroughMemory() {
#if defined(__x86_64__)
  if constexpr (!std::is_void_v<Result>) return sizeof(Result) > 16;
#endif
  return false;
}

template <Literal name, class Receiver, class Result, class... Arguments>
Result call(id receiver, Arguments... arguments) {
  const SEL selector = selectorNamed<name>();
#if defined(__x86_64__)
  if constexpr (returnsThroughMemory<Result>()) {
    return reinterpret_cast<Method<Result, Arguments...>>(objc_msgSend_stret)(receiver, selector, arguments...);
  }
#endif
  return reinterpret_cast<Method<Result, Arguments...>>(objc_msgSend)(receiver, selector, arguments...);
}

template <class Result, class... Arguments>
Result callSuper(id receiver, Class superclass, SEL selector, Arguments... arguments) {
  static_assert(!returnsThroughMemory<Result>(), "no message to super returns a structure");
  objc_super start{receiver, superclass};
  return reinterpret_cast<SuperMethod<Result, Arguments...>>(objc_msgSendSuper)(&start, selector, arguments...);
}
#else
template <class Result, class... Arguments>
Result callSuper(id receiver, Class superclass, SEL selector, Arguments... arguments) {
  const IMP method = desktop::methodFor(receiver, superclass, selector, methodEncoding<Result, Arguments...>.text);
  return reinterpret_cast<Method<Result, Arguments...>>(method)(receiver, selector, arguments...);
}

template <Literal name, class Receiver, class Result, class... Arguments>
Result call(id receiver, Arguments... arguments) {
  static desktop::CallSite site;
  if (receiver->isa != site.cls) desktop::resolve(site, receiver, name.text, methodEncoding<Result, Arguments...>.text);
  // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): every receiver has a class, so the first one is resolved
  return reinterpret_cast<Method<Result, Arguments...>>(site.method)(receiver, site.selector, arguments...);
}
#endif

} // namespace wire

/// Sends a message. A wrapper as result shares the object that comes back, unless it is `Lent`; `Result` is void unless
/// named. A message to nothing answers zero without a call.
template <Literal selector, class Result = void, class Receiver, class... Arguments>
Result send(const Receiver& receiver, const Arguments&... arguments) {
  const id target = wire::target(receiver);
  if constexpr (std::is_void_v<Result>) {
    if (target == nullptr) return;
    wire::call<selector, Receiver, void, wire::Sent<Arguments>...>(target, wire::Passing<Arguments>::out(arguments)...);
  } else {
    if (target == nullptr) return Result{};
    return wire::Passing<Result>::in(wire::call<selector, Receiver, wire::Sent<Result>, wire::Sent<Arguments>...>(
        target, wire::Passing<Arguments>::out(arguments)...));
  }
}

/// Sends a message to `receiver` as an instance of its superclass `superclass`.
template <Literal superclass, Literal selector, class Result = void, class... Arguments>
Result sendSuper(id receiver, const Arguments&... arguments) {
  return static_cast<Result>(wire::callSuper<wire::Sent<Result>, wire::Sent<Arguments>...>(
      receiver, theClass<superclass>.found(), selectorNamed<selector>(), wire::Passing<Arguments>::out(arguments)...));
}

/// Makes an object: alloc and init in one, since init takes over alloc's reference. Empty when the class is not
/// loaded or init refuses.
template <Literal className, Literal initializer, class Result = NSObject, class... Arguments>
Result make(const Arguments&... arguments) {
  const id raw = send<"alloc", id>(theClass<className>);
  return Result(adopt, send<initializer, id>(raw, arguments...));
}

} // namespace platform
