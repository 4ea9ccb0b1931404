/// The program of a Mac application, mapped into this process.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace shipped {

/// Where something is that the program takes from a library. A symbol is spelt as in the file, with its underscore:
/// `_CFEqual`.
using Resolver = std::function<void*(const std::string& symbol)>;

/// It stays mapped until the process ends. Main thread only.
class Slice {
public:
  /// Maps the slice for this processor and binds what it imports. A file that is no such program, or has what the
  /// loader does not know, ends the process with a sentence (Refusal.hpp).
  Slice(const std::filesystem::path& file, const Resolver& addressOf);

  /// The program's `main`; it may be called again once it has returned.
  int run() const;

private:
  using Main = int (*)(int count, char** words, char** environment, char** platform);
  Main main = nullptr;
};

} // namespace shipped
