/// Lines that a person types at a terminal, with editing and history by libedit. The history goes with it.
#pragma once

#include <memory>
#include <optional>
#include <string>

namespace desktop {

/// Standard input as long as it lives.
class Lines {
public:
  Lines();
  ~Lines();
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  /// Shows the prompt and waits for a line, which comes without its end; none when there are no more.
  std::optional<std::string> next();

private:
  struct Editor;
  std::unique_ptr<Editor> editor;
};

} // namespace desktop
