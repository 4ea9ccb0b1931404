/// The Objective-C runtime's C interface: objects, classes, selectors.
///
/// Everything here may be called on any thread; the program stays on the main one.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__APPLE__)
#include <objc/message.h>
#include <objc/runtime.h>
#else
extern "C" {
using id = struct objc_object*;
using Class = struct objc_class*;
using SEL = struct objc_selector*;
using Ivar = struct objc_ivar*;
using Method = struct objc_method*;
using Protocol = struct objc_object;
using IMP = void (*)();

using BOOL = bool;

/// Where a message to a superclass starts: at `super_class`, not at the receiver's own class.
struct objc_super {
  id receiver;
  Class super_class;
};

/// Null when no such class is loaded.
Class objc_getClass(const char* name);
Protocol* objc_getProtocol(const char* name);
/// Null when a class of that name exists.
Class objc_allocateClassPair(Class superclass, const char* name, std::size_t extraBytes);
void objc_registerClassPair(Class cls);
BOOL class_addMethod(Class cls, SEL name, IMP implementation, const char* types);
/// `alignment` is the power of two. Only between allocating and registering the class.
BOOL class_addIvar(Class cls, const char* name, std::size_t size, std::uint8_t alignment, const char* types);
BOOL class_addProtocol(Class cls, Protocol* protocol);
Ivar class_getInstanceVariable(Class cls, const char* name);
std::ptrdiff_t ivar_getOffset(Ivar variable);
/// Null when neither the class nor one that it derives from has such a method.
Method class_getInstanceMethod(Class cls, SEL name);
Method class_getClassMethod(Class cls, SEL name);
const char* method_getTypeEncoding(Method method);
SEL sel_registerName(const char* name);
}

inline constexpr BOOL YES = 1;
inline constexpr BOOL NO = 0;
#endif

// Exported by the runtime for compilers, in no public header.
extern "C" {
id objc_retain(id object);
void objc_release(id object);
void* objc_autoreleasePoolPush(void);
void objc_autoreleasePoolPop(void* pool);
}

namespace platform {

using ::BOOL;
using ::Class;
using ::id;
using ::SEL;

/// What the platform hands over during its life is released at its end. One in every entry from the platform.
class AutoreleasePool {
public:
  AutoreleasePool() : pool(objc_autoreleasePoolPush()) {}
  ~AutoreleasePool() { objc_autoreleasePoolPop(pool); }
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

private:
  void* pool;
};

} // namespace platform
