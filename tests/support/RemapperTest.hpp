/// A remapper with its tap on a desktop of its own, without the application around it.
#pragma once

#include "remap/KeyRemapper.hpp"
#include "tests/support/TestDesktop.hpp"

namespace tarnwick {

class RemapperTest : public testing::Test {
protected:
  desktop::TestDesktop desktop;
  std::shared_ptr<KeyRemapper> remapper = KeyRemapper::make();

  void SetUp() override { ASSERT_TRUE(remapper->start()); }
  void TearDown() override {
    if (remapper) remapper->stop();
  }

  bool rewrites() { return desktop.press("ctrl+c") == "Cmd+C"; }

  /// Another run of the program: what it reads on starting is read anew.
  void relaunch() {
    remapper->stop();
    remapper = KeyRemapper::make();
    ASSERT_TRUE(remapper->start());
  }
  /// Puts an application of this identifier in front.
  void front(const std::u16string& identifier) {
    auto& application = desktop.machine.start("Application", "");
    application.identifier = desktop::string(identifier);
    desktop.machine.applications.frontmost = desktop::shared(&application);
  }
};

} // namespace tarnwick
