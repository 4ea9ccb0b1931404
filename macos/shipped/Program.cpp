// The program of this desktop: not compiled in, but the Mac application beside the command, as it is shipped.

#include "macos/shipped/Imports.hpp"
#include "macos/shipped/Slice.hpp"

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

int tarnwickMain();

namespace {

/// The ways in which machine code fails, told in a sentence instead of a core dump.
const char* sentenceFor(int signal) {
  switch (signal) {
  case SIGXCPU:
    return "tarnwick: the program has computed for too long and was ended\n";
  case SIGILL:
  case SIGTRAP:
    return "tarnwick: the program came to an instruction that stops it\n";
  default:
    return "tarnwick: the program reached for memory that is not there\n";
  }
}

void endWithSentence(int signal) {
  const char* const sentence = sentenceFor(signal);
  static_cast<void>(write(STDERR_FILENO, sentence, __builtin_strlen(sentence)));
  _exit(2);
}

/// A program that never comes back is ended after a minute of the processor's time, or earlier where the caller's own
/// limit (`ulimit -S -t`) is lower.
void watch() {
  constexpr rlim_t minute = 60;
  rlimit limit{};
  getrlimit(RLIMIT_CPU, &limit);
  if (limit.rlim_cur > minute) {
    limit.rlim_cur = minute;
    setrlimit(RLIMIT_CPU, &limit);
  }
  // On a stack of its own, for a program that calls itself until there is none left.
  static char stack[1 << 16];
  const stack_t room{static_cast<void*>(stack), 0, sizeof stack};
  sigaltstack(&room, nullptr);
  struct sigaction action {};
  action.sa_handler = endWithSentence;
  action.sa_flags = SA_ONSTACK;
  for (const int signal : {SIGXCPU, SIGILL, SIGTRAP, SIGSEGV, SIGBUS, SIGFPE})
    sigaction(signal, &action, nullptr);
}

} // namespace

int tarnwickMain() {
  static const shipped::Slice slice = [] {
    watch();
    const auto here = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return shipped::Slice(here / "Tarnwick.app" / "Contents" / "MacOS" / "Tarnwick", shipped::addressOf);
  }();
  return slice.run();
}
