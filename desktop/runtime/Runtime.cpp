#include "desktop/runtime/Runtime.hpp"

#include "desktop/runtime/Printing.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <set>

namespace desktop {
namespace {

/// Everything registered: kept until the process ends, as on the platform.
struct Registry {
  std::map<std::string, std::unique_ptr<objc_class>> classes;
  std::vector<std::unique_ptr<objc_class>> metaclasses;
  std::unordered_map<std::string, SEL> selectors;
  std::unordered_map<SEL, std::string> selectorTexts;
  /// A protocol is its name; it is known once somebody asked for it.
  std::set<std::string> protocols;
  /// Those that somebody asked for in vain, so that nobody is blamed for not conforming to them.
  std::set<std::string> missingProtocols;
  /// Classes of released instances, by the class they had.
  std::unordered_map<Class, std::unique_ptr<objc_class>> released;
  /// Memory of the last released instances, round and round: kept aside so that a late message is found out. A key
  /// press leaves four, the settings window fifty; so a late message may come many commands after, and yet a short
  /// session needs as much memory as a long one.
  std::array<void*, 1 << 12> remains{};
  std::size_t buried = 0;
};

Registry& registry() {
  static auto* const only = new Registry;
  return *only;
}

/// What waits for the end of a pool, oldest first. A pool is known by how many waited when it began.
std::vector<id>* waiting = nullptr;
std::size_t poolDepth = 0;

const Method* findMethod(Class start, SEL selector) {
  for (Class cls = start; cls != nullptr; cls = cls->superclass) {
    const auto found = cls->methods.find(selector);
    if (found != cls->methods.end()) return &found->second;
  }
  return nullptr;
}

std::string describeReceiver(id receiver) {
  const Class cls = receiver->isa;
  return cls->isMeta ? "the class " + cls->name : "a " + cls->name;
}

Class releasedClass(Class cls) {
  auto& made = registry().released[cls];
  if (!made) {
    made = std::make_unique<objc_class>();
    made->name = cls->name;
    made->isReleased = true;
  }
  return made.get();
}

/// The last act of every instance's life: counts, the C++ part, the memory kept aside.
void deallocate(Object* object) {
  const Class cls = object->isa;
  --cls->live;
  cls->destroy(object);
  object->isa = releasedClass(cls);
  auto& remains = registry().remains;
  ::operator delete(std::exchange(remains[registry().buried++ % remains.size()], object));
}

id alloc(id self, SEL) {
  if (fails(reinterpret_cast<Class>(self)->name.c_str(), "alloc")) return nullptr;
  return allocate(reinterpret_cast<Class>(self));
}
id initialise(id self, SEL) {
  return self;
}
void dealloc(id self, SEL) {
  deallocate(static_cast<Object*>(self));
}
BOOL isKindOfClass(id self, SEL, Class cls) {
  return isKindOf(self, cls);
}

template <class Result, class... Arguments>
void addRootMethod(Class to, const char* selector, Result (*function)(id, SEL, Arguments...)) {
  class_addMethod(to, sel_registerName(selector), reinterpret_cast<IMP>(function),
                  platform::methodEncoding<Result, Arguments...>.text);
}

/// The class of an object that is used otherwise than by a message; stops the program when it has been released.
Class livingClass(const objc_object* object) {
  if (object->isa->isReleased) stop("a released " + object->isa->name + " was used");
  return object->isa;
}

} // namespace

void stop(std::string_view sentence) {
  std::fflush(stdout);
  complain("tarnwick: " + std::string(sentence));
  std::abort();
}

bool isKindOf(const objc_object* object, Class cls) {
  for (Class each = livingClass(object); each != nullptr; each = each->superclass) {
    if (each == cls) return true;
  }
  return false;
}

void checkKind(const objc_object* object, Class wanted) {
  if (!isKindOf(object, wanted)) stop("a " + object->isa->name + " was given where a " + wanted->name + " is wanted");
}

bool respondsTo(id object, const char* selector) {
  return findMethod(livingClass(object), sel_registerName(selector)) != nullptr;
}

bool conformsTo(id object, const std::string& protocol) {
  for (Class each = livingClass(object); each != nullptr; each = each->superclass) {
    if (each->protocols.count(protocol) != 0) return true;
  }
  return false;
}

void checkDelegate(id object, const std::string& protocol) {
  if (object != nullptr && !conformsTo(object, protocol) && registry().missingProtocols.count(protocol) == 0)
    stop("a " + object->isa->name + " is no " + protocol);
}

IMP methodFor(id receiver, Class start, SEL selector, const char* encoding) {
  const auto name = [&] { return std::string("'") + selectorText(selector) + "'"; };
  if (receiver->isa->isReleased) stop("message " + name() + " to a released " + receiver->isa->name);
  const Class cls = start != nullptr ? start : receiver->isa;
  const Method* const method = findMethod(cls, selector);
  if (method == nullptr)
    stop(describeReceiver(receiver) + " has no method " + name() + " (called as " + std::string(encoding) + ")");
  if (method->encoding != encoding) {
    stop(name() + " of " + describeReceiver(receiver) + " has the type " + method->encoding + " but was called as " +
         encoding);
  }
  for (Class each = cls; each != nullptr && !each->isUsed; each = each->superclass)
    each->isUsed = true;
  return method->implementation;
}

void resolve(CallSite& site, id receiver, const char* selector, const char* encoding) {
  const SEL registered = sel_registerName(selector);
  site = {receiver->isa, registered, methodFor(receiver, nullptr, registered, encoding)};
}

void stopAsReleased(const Object* object, const char* what) {
  stop("a released " + object->isa->name + " was " + what);
}

void endLife(Object* object) {
  if (object->references < 0) stopAsReleased(object, "released again");
  static const SEL selector = sel_registerName("dealloc");
  const Class cls = object->isa;
  if (cls->dealloc == nullptr) {
    const IMP method = methodFor(object, nullptr, selector, platform::methodEncoding<void>.text);
    cls->dealloc = reinterpret_cast<void (*)(id, SEL)>(method);
  }
  cls->dealloc(object, selector);
}

id autorelease(id object) {
  if (object == nullptr) return nullptr;
  if (poolDepth == 0) stop("a " + object->isa->name + " was autoreleased outside of any pool");
  waiting->push_back(object);
  return object;
}

std::size_t autoreleasedObjects() {
  return waiting != nullptr ? waiting->size() : 0;
}

Object* allocate(Class cls) {
  void* const memory = std::memset(::operator new(cls->instanceSize), 0, cls->instanceSize);
  cls->construct(memory);
  auto* const object = static_cast<Object*>(memory);
  object->isa = cls;
  ++cls->live;
  return object;
}

long liveObjects(const std::string& className) {
  const Class asked = objc_getClass(className.c_str());
  long sum = 0;
  for (const auto& [name, cls] : registry().classes) {
    for (Class each = cls.get(); each != nullptr; each = each->superclass) {
      if (each == asked) sum += cls->live;
    }
  }
  return sum;
}

std::vector<std::pair<std::string, long>> liveObjects() {
  std::vector<std::pair<std::string, long>> counts;
  for (const auto& [name, cls] : registry().classes) {
    if (cls->live != 0) counts.emplace_back(name, cls->live);
  }
  return counts;
}

const char* selectorText(SEL selector) {
  return registry().selectorTexts.at(selector).c_str();
}

std::vector<RegisteredMethod> registeredMethods() {
  std::vector<RegisteredMethod> all;
  for (const auto& [name, cls] : registry().classes) {
    const std::string superclass = cls->superclass != nullptr ? cls->superclass->name : "";
    for (const bool isOfClass : {false, true}) {
      for (const auto& [selector, method] : (isOfClass ? cls->isa : cls.get())->methods) {
        all.push_back({name, superclass, isOfClass, selectorText(selector), method.encoding});
      }
    }
  }
  return all;
}

void sendAction(SEL selector, id target, id sender) {
  if (target == nullptr || selector == nullptr) return;
  const bool takesSender = std::strchr(selectorText(selector), ':') != nullptr;
  if (takesSender) {
    perform<void, id>(target, selector, sender);
  } else {
    perform<void>(target, selector);
  }
}

void registerRootClass() {
  const NativeClass<Object> root("NSObject", nullptr);
  const Class cls = nativeClass<Object>;
  addRootMethod(cls->isa, "alloc", alloc);
  addRootMethod(cls, "init", initialise);
  addRootMethod(cls, "dealloc", dealloc);
  addRootMethod(cls, "isKindOfClass:", isKindOfClass);
}

} // namespace desktop

using desktop::registry;

extern "C" {

Class objc_getClass(const char* name) {
  const auto found = registry().classes.find(name);
  return found != registry().classes.end() ? found->second.get() : nullptr;
}

Class objc_allocateClassPair(Class superclass, const char* name, std::size_t /*extraBytes*/) {
  auto& cls = registry().classes[name];
  if (cls) return nullptr;
  auto& meta = registry().metaclasses.emplace_back(std::make_unique<objc_class>());
  meta->name = name;
  meta->isMeta = true;
  cls = std::make_unique<objc_class>();
  cls->name = name;
  cls->isa = meta.get();
  cls->superclass = superclass;
  if (superclass != nullptr) {
    meta->superclass = superclass->isa;
    cls->instanceSize = superclass->instanceSize;
    cls->construct = superclass->construct;
    cls->destroy = superclass->destroy;
    cls->variables = superclass->variables;
  }
  return cls.get();
}

void objc_registerClassPair(Class) {}

BOOL class_addMethod(Class cls, SEL name, IMP implementation, const char* types) {
  if (cls->isUsed) desktop::stop(cls->name + " was given a method after it had been sent messages");
  return cls->methods.try_emplace(name, desktop::Method{implementation, types}).second;
}

BOOL class_addIvar(Class cls, const char* name, std::size_t size, std::uint8_t alignment, const char* /*types*/) {
  const std::size_t unit = std::size_t{1} << alignment;
  const std::size_t offset = (cls->instanceSize + unit - 1) / unit * unit;
  cls->variables[name] = static_cast<std::ptrdiff_t>(offset);
  cls->instanceSize = offset + size;
  return true;
}

Protocol* objc_getProtocol(const char* name) {
  if (desktop::fails("objc_getProtocol")) {
    registry().missingProtocols.insert(name);
    return nullptr;
  }
  const auto known = registry().protocols.insert(name).first;
  return reinterpret_cast<Protocol*>(const_cast<std::string*>(&*known));
}

BOOL class_addProtocol(Class cls, Protocol* protocol) {
  return cls->protocols.insert(*reinterpret_cast<std::string*>(protocol)).second;
}

Method class_getInstanceMethod(Class cls, SEL name) {
  return reinterpret_cast<Method>(const_cast<desktop::Method*>(desktop::findMethod(cls, name)));
}
Method class_getClassMethod(Class cls, SEL name) {
  return class_getInstanceMethod(cls->isa, name);
}
const char* method_getTypeEncoding(Method method) {
  return reinterpret_cast<desktop::Method*>(method)->encoding.c_str();
}

Ivar class_getInstanceVariable(Class cls, const char* name) {
  const auto found = cls->variables.find(name);
  return found != cls->variables.end() ? reinterpret_cast<Ivar>(&found->second) : nullptr;
}

std::ptrdiff_t ivar_getOffset(Ivar variable) {
  return *reinterpret_cast<std::ptrdiff_t*>(variable);
}

SEL sel_registerName(const char* name) {
  SEL& selector = registry().selectors[name];
  if (selector == nullptr) {
    const auto number = registry().selectors.size();
    selector = reinterpret_cast<SEL>(number << 4);
    registry().selectorTexts[selector] = name;
  }
  return selector;
}

void* objc_autoreleasePoolPush() {
  if (desktop::waiting == nullptr) desktop::waiting = new std::vector<id>;
  ++desktop::poolDepth;
  return reinterpret_cast<void*>(desktop::waiting->size());
}

void objc_autoreleasePoolPop(void* pool) {
  while (desktop::waiting->size() > reinterpret_cast<std::size_t>(pool)) {
    const id object = desktop::waiting->back();
    desktop::waiting->pop_back();
    objc_release(object);
  }
  --desktop::poolDepth;
}
}
