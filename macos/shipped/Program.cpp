// The program of this desktop: not compiled in, but the Mac application beside the command, as it is shipped.

#include "macos/shipped/Imports.hpp"
#include "macos/shipped/Slice.hpp"

#include <algorithm>
#include <csignal>
#include <cstdio>
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
/// limit (`ulimit -S -t`) is lower. What this process has used before, for another run of the program, is no part of
/// it.
void limitTime() {
  constexpr rlim_t minute = 60;
  static const rlimit callers = [] {
    rlimit limit{};
    getrlimit(RLIMIT_CPU, &limit);
    return limit;
  }();
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  rlimit limit = callers;
  limit.rlim_cur =
      std::min(callers.rlim_cur, minute + static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec));
  setrlimit(RLIMIT_CPU, &limit);
}

/// From now on a program that fails is told in a sentence, after all that was printed until then.
void tellFailures() {
  setvbuf(stdout, nullptr, _IOLBF, 0);
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
    tellFailures();
    const auto here = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return shipped::Slice(here / "Tarnwick.app" / "Contents" / "MacOS" / "Tarnwick", shipped::addressOf);
  }();
  limitTime();
  return slice.run();
}
