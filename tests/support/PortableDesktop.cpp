/// The machine on which tests/portable runs here: nobody has allowed anything, and nobody sits in front of it.
#include "desktop/Desktop.hpp"

#include <gtest/gtest.h>

namespace {

class Machine : public testing::Environment {
  platform::AutoreleasePool pool;
  desktop::Desktop machine;

public:
  Machine() {
    machine.accessibility.trusted = false;
    machine.applications.tarnwick = desktop::shared(&machine.start("portable_tests", ""));
    machine.runLoop.nextCommand = [this] {
      machine.runLoop.wait(0.1);
      return true;
    };
  }
};

const auto* const machine = testing::AddGlobalTestEnvironment(new Machine);

} // namespace
