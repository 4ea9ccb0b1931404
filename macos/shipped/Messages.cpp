#include "macos/shipped/Messages.hpp"

#include "desktop/runtime/Runtime.hpp"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace shipped {
namespace {

#if defined(__x86_64__)
constexpr std::ptrdiff_t generalRegisters = 6;
constexpr bool rectanglesTravelThroughMemory = true;
/// Both systems put arguments into memory alike.
constexpr bool memoryDiffers = false;
#else
constexpr std::ptrdiff_t generalRegisters = 8;
constexpr bool rectanglesTravelThroughMemory = false;
/// A Mac packs arguments in memory more tightly.
constexpr bool memoryDiffers = true;
#endif
constexpr std::ptrdiff_t floatRegisters = 8;

std::string quoted(SEL selector) {
  try {
    return std::string("'") + desktop::selectorText(selector) + "'";
  } catch (const std::out_of_range&) {
    return "that nobody has registered";
  }
}

std::string described(id receiver, SEL selector) {
  const Class cls = receiver->isa;
  return quoted(selector) + " of " + (cls->isMeta ? "the class " : "a ") + cls->name;
}

/// The method in `start` or above it.
const desktop::Method& find(id receiver, Class start, SEL selector) {
  if (receiver->isa->isReleased) desktop::stop("message " + quoted(selector) + " to a released " + receiver->isa->name);
  for (Class cls = start; cls != nullptr; cls = cls->superclass) {
    cls->isUsed = true;
    const auto found = cls->methods.find(selector);
    if (found != cls->methods.end()) return found->second;
  }
  desktop::stop("there is no method " + described(receiver, selector));
}

/// Whether no argument has to go into memory. Structures are of doubles (`{CGSize=dd}`), but for `{_NSRange=QQ}`.
bool travelsInRegisters(std::string_view encoding) {
  const auto arguments = encoding.substr(encoding.find("@:"));
  const auto floats =
      std::count(arguments.begin(), arguments.end(), 'd') + std::count(arguments.begin(), arguments.end(), 'f');
  std::ptrdiff_t others = arguments.find("_NSRange") != std::string_view::npos ? 2 : 0;
  int depth = 0;
  for (const char code : arguments) {
    depth += (code == '{' ? 1 : 0) - (code == '}' ? 1 : 0);
    others += depth == 0 && code != '}' && code != 'd' && code != 'f' ? 1 : 0;
  }
  const bool hasRectangle = arguments.find("{CGRect") != std::string_view::npos;
  return floats <= floatRegisters && others <= generalRegisters && !(hasRectangle && rectanglesTravelThroughMemory);
}

Target target(id receiver, Class start, SEL selector, bool throughMemory) {
  if (receiver == nullptr) desktop::stop("message " + quoted(selector) + " to nothing");
  const desktop::Method& method = find(receiver, start != nullptr ? start : receiver->isa, selector);
  const std::string& encoding = method.encoding;
  if ((rectanglesTravelThroughMemory && encoding.starts_with("{CGRect")) != throughMemory)
    desktop::stop(described(receiver, selector) + " answers " + encoding +
                  ", but was asked for another kind of result");
  const bool answersBool = encoding.front() == 'B';
  if ((answersBool || memoryDiffers) && !travelsInRegisters(encoding)) {
    desktop::stop(described(receiver, selector) +
                  " takes arguments in memory, which the loader does not know: " + encoding);
  }
  return {method.implementation, answersBool ? 1U : 0U};
}

} // namespace
} // namespace shipped

extern "C" {

shipped::Target shippedMethod(id receiver, SEL selector) {
  return shipped::target(receiver, nullptr, selector, false);
}

shipped::Target shippedMethodOfSuper(const objc_super* start, SEL selector) {
  Class above = start->receiver != nullptr ? start->receiver->isa->superclass : start->super_class;
  while (above != start->super_class && above != nullptr)
    above = above->superclass;
  if (above == nullptr) desktop::stop("a message to super starts at no class above the receiver's");
  return shipped::target(start->receiver, start->super_class, selector, false);
}

#if defined(__x86_64__)
shipped::Target shippedMethodAnsweringStructure(id receiver, SEL selector) {
  return shipped::target(receiver, nullptr, selector, true);
}
#endif
}
