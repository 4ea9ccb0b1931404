// The program of this desktop: not compiled in, but the Mac application beside the command, as it is shipped.

#include "desktop/foundation/CoreFoundation.hpp"
#include "macos/shipped/Imports.hpp"
#include "macos/shipped/Refusal.hpp"
#include "macos/shipped/Slice.hpp"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <sys/resource.h>
#include <unistd.h>

int tarnwickMain();

namespace {

/// Whether the stand-in is ending the process (`desktop::stop`) and has told why.
volatile std::sig_atomic_t isTold = 0;

} // namespace

// What this command's own code means by `abort` (the linker's option --wrap): the program and the C library go to the
// real one directly.
extern "C" {
[[noreturn]] void __real_abort();
[[noreturn]] void __wrap_abort();

void __wrap_abort() {
  isTold = 1;
  __real_abort();
}
}

namespace {

constexpr unsigned minute = 60;

/// The ways in which machine code fails, told in a sentence instead of a core dump.
const char* sentenceFor(int signal) {
  switch (signal) {
  case SIGXCPU:
    return "tarnwick: the program has computed for too long and was ended\n";
  case SIGALRM:
    return "tarnwick: the program has waited for too long and was ended\n";
  case SIGABRT:
    return "tarnwick: the program was aborted, by itself or by the C library\n";
  case SIGILL:
  case SIGTRAP:
    return "tarnwick: the program came to an instruction that stops it\n";
  default:
    return "tarnwick: the program reached for memory that is not there\n";
  }
}

void endWithSentence(int signal) {
  if (signal == SIGABRT && isTold != 0) {
    // Ends as the native command does. The emulator would say so too, after the sentence.
    close(STDERR_FILENO);
    return;
  }
  const char* const sentence = sentenceFor(signal);
  static_cast<void>(write(STDERR_FILENO, sentence, __builtin_strlen(sentence)));
  _exit(2);
}

/// An exception of the stand-in's that the program's calls have led to. The program catches none.
[[noreturn]] void endWithException() {
  std::string reason = "an error without a name";
  try {
    if (const auto thrown = std::current_exception()) std::rethrow_exception(thrown);
  } catch (const std::exception& error) {
    reason = error.what();
  } catch (...) { // keeps the reason
  }
  shipped::refuse("the program asked for what the stand-in cannot do: " + reason);
}

/// A program that never comes back is ended after a minute of the processor's time, or earlier where the caller's own
/// limit (`ulimit -S -t`) is lower. What this process has used before, for another run of the program, is no part of
/// it.
void limitTime() {
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

/// So is one that only waits and lets a minute pass between two commands of the session, or less where the caller has
/// set an earlier alarm. Not at a terminal: the user may take that long to type one, and can end the program.
void limitWaiting() {
  static const unsigned longest = [] {
    const unsigned callers = alarm(0);
    return callers == 0 ? minute : std::min(callers, minute);
  }();
  if (isatty(STDIN_FILENO) != 0) return;
  auto& nextCommand = desktop::RunLoop::current().nextCommand;
  nextCommand = [next = nextCommand] {
    alarm(longest);
    return next();
  };
  alarm(longest);
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
  for (const int signal : {SIGXCPU, SIGALRM, SIGABRT, SIGILL, SIGTRAP, SIGSEGV, SIGBUS, SIGFPE})
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
  limitWaiting();
  const auto outside = std::set_terminate(endWithException);
  const int status = slice.run();
  std::set_terminate(outside);
  alarm(0);
  return status;
}
