#include "macos/shipped/Imports.hpp"

#include "desktop/runtime/Runtime.hpp"
#include "macos/shipped/Messages.hpp"
#include "macos/shipped/Refusal.hpp"
#include "platform/Accessibility.hpp"

#include <cstring>
#include <dlfcn.h>
#include <map>

namespace shipped {
namespace {

/// A function whose result is narrower than 32 bits, which a Mac's callers take as widened to those; compilers here do
/// not promise it.
template <auto function> struct Widened;
template <class Result, class... Arguments, Result (*function)(Arguments...)> struct Widened<function> {
  static_assert(std::is_unsigned_v<Result> && sizeof(Result) < sizeof(unsigned));
  static unsigned call(Arguments... arguments) { return function(arguments...); }
};

/// A method's encoding as the program has it, in the spelling of this machine: a BOOL is `c` on a Mac with an x86-64
/// processor, `B` here. Stops the process when an argument is narrower than 32 bits: the program takes it as widened to
/// those, and callers here do not promise it.
std::string encodingHere(SEL selector, std::string encoding) {
  int depth = 0; // in structures, whose names have letters of their own: {CGSize=dd}
  for (std::size_t index = 0; index < encoding.size(); ++index) {
    depth += (encoding[index] == '{' ? 1 : 0) - (encoding[index] == '}' ? 1 : 0);
    if (index != 0 && depth == 0 && std::strchr("BcCsS", encoding[index]) != nullptr)
      desktop::stop(std::string("'") + desktop::selectorText(selector) + "' takes a narrow argument: " + encoding);
  }
#if defined(__x86_64__)
  if (encoding.front() == 'B')
    desktop::stop(std::string("'") + desktop::selectorText(selector) + "' answers a bool, which is no BOOL there");
  if (encoding.front() == 'c') encoding.front() = 'B';
#endif
  return encoding;
}

unsigned addMethod(Class cls, SEL name, IMP implementation, const char* types) {
  return class_addMethod(cls, name, implementation, encodingHere(name, types).c_str()) ? 1 : 0;
}

#if defined(__x86_64__)
/// Compared by the program with its copies of it.
const std::uintptr_t stackGuard = 0x595E9FBD94FDA766;
#endif

template <class Pointer> void* address(Pointer* pointer) {
  return const_cast<void*>(reinterpret_cast<const void*>(pointer));
}

/// What is not simply the function of that name.
const std::map<std::string, void*>& adapted() {
  static const auto table = [] {
    std::map<std::string, void*> entries{
        {"_AXIsProcessTrustedWithOptions", address(&Widened<AXIsProcessTrustedWithOptions>::call)},
        {"_CFEqual", address(&Widened<CFEqual>::call)},
        {"_class_addIvar", address(&Widened<class_addIvar>::call)},
        {"_class_addMethod", address(&addMethod)},
        {"_class_addProtocol", address(&Widened<class_addProtocol>::call)},
        {"_objc_msgSend", address(&objc_msgSend)},
        {"_objc_msgSendSuper", address(&objc_msgSendSuper)},
        // Compiled into whoever calls them here.
        {"_objc_release", address(&objc_release)},
        {"_objc_retain", address(&objc_retain)},
    };
#if defined(__x86_64__)
    entries["_objc_msgSend_stret"] = address(&objc_msgSend_stret);
    entries["___stack_chk_guard"] = address(&stackGuard);
#endif
    return entries;
  }();
  return table;
}

} // namespace

void* addressOf(const std::string& symbol) {
  const auto found = adapted().find(symbol);
  if (found != adapted().end()) return found->second;
  void* const here = symbol.starts_with('_') ? dlsym(RTLD_DEFAULT, symbol.c_str() + 1) : nullptr;
  if (here == nullptr) refuse("the program imports " + symbol + ", which the stand-in does not have");
  return here;
}

} // namespace shipped
