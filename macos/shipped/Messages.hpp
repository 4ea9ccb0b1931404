/// What the program's messages end in: `objc_msgSend` and its siblings (Messages.S) ask here for the method.
#pragma once

#include "platform/Runtime.hpp"

namespace shipped {

struct Target {
  IMP method;
  /// 1 when the method answers a BOOL, which Messages.S then widens to 32 bits: a Mac's callers rely on it.
  std::uintptr_t answersBool;
};

} // namespace shipped

extern "C" {

// Each stops the process with a sentence when the receiver's class has no such method, when the receiver has been
// released, or when the program asks for the result in another way than the method answers it.
shipped::Target shippedMethod(id receiver, SEL selector);
shipped::Target shippedMethodOfSuper(const objc_super* start, SEL selector);
#if defined(__x86_64__)
/// Of results that travel through memory.
shipped::Target shippedMethodAnsweringStructure(id receiver, SEL selector);
#endif

// Called by the program only, with the arguments of the message.
void objc_msgSend();
void objc_msgSendSuper();
#if defined(__x86_64__)
void objc_msgSend_stret();
#endif
}
