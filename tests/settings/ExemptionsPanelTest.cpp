#include "tests/support/TestDesktop.hpp"

namespace tarnwick {
namespace {

using desktop::PropertyList;

/// A bundle of that identifier; none is left out.
std::filesystem::path makeBundle(const desktop::TemporaryFolder& folder,
                                 const std::optional<PropertyList>& identifier) {
  auto bundle = folder.path / "Chosen.app";
  std::filesystem::create_directories(bundle / "Contents");
  PropertyList::Dictionary information{{u"CFBundleName", u"Chosen"}};
  if (identifier) information[u"CFBundleIdentifier"] = *identifier;
  desktop::writeFile(bundle / "Contents" / "Info.plist", writeXml(information));
  return bundle;
}

/// A choice in the open panel, each time from a running program.
std::string choose(const std::filesystem::path& chosen) {
  desktop::TestDesktop desktop;
  desktop.store(u"exemptBundleIDs", PropertyList::Array{u"org.listed"});
  const std::string trace = desktop.play(
      {"menu Settings…\nclick \"Choose App…\"\nchoose \"" + chosen.string() + "\"\nshow defaults\nshow window"});
  std::string stored = trace.substr(trace.find("default\t"), trace.find("button\tAbout") - trace.find("default\t"));
  const bool isListed = trace.find("label\tcom.example.chosen\n") != std::string::npos;
  EXPECT_EQ(isListed, stored.find("com.example.chosen") != std::string::npos) << "list and store differ";
  return stored;
}

TEST(ExemptionsPanel, TakesTheIdentifierOfTheBundleThatIsChosen) {
  const desktop::TemporaryFolder folder;
  const std::string before = "default\texemptBundleIDs\torg.listed\n";
  const std::string after = "default\texemptBundleIDs\tcom.example.chosen\torg.listed\n";
  EXPECT_EQ(choose(makeBundle(folder, u" com.example.chosen\n")), after);
  for (const std::optional<PropertyList>& useless :
       {std::optional<PropertyList>(u"org.listed"), std::optional<PropertyList>(u"  "), std::optional<PropertyList>(7),
        std::optional<PropertyList>()})
    EXPECT_EQ(choose(makeBundle(folder, useless)), before);
  EXPECT_EQ(choose(folder.path / "none"), before) << "no bundle at all";
}

TEST(ExemptionsPanel, TakesNothingUnlessItIsConfirmed) {
  const desktop::TemporaryFolder folder;
  const auto app = makeBundle(folder, u"com.example.chosen");
  for (const char* end : {"cancel", "# the end of the input"}) {
    desktop::TestDesktop desktop;
    desktop.play({"menu Settings…\nclick \"Choose App…\"",
                  [&] { desktop.machine.appKit.frontPanel()->chosen = desktop::fileURL(app.string()); }, end});
    EXPECT_EQ(desktop.machine.defaults->file->value(u"exemptBundleIDs"), nullptr) << end;
  }
}

TEST(ExemptionsPanel, AsksForOneApplication) {
  desktop::TestDesktop desktop;
  desktop.play({"menu Settings…\nclick \"Choose App…\"", [&] {
                  const desktop::OpenPanel* const panel = desktop.machine.appKit.frontPanel();
                  ASSERT_NE(panel, nullptr);
                  EXPECT_EQ(textOf(panel->title.get()), "Choose Application to Exempt");
                  EXPECT_EQ(textOf(panel->message.get()), "Select an application bundle (.app)");
                  EXPECT_EQ(textOf(panel->prompt.get()), "Add Exemption");
                  EXPECT_EQ(panel->directory->path, "/Applications");
                  EXPECT_TRUE(panel->canChooseFiles);
                  EXPECT_FALSE(panel->canChooseDirectories || panel->allowsMultipleSelection);
                  ASSERT_EQ(panel->allowedContentTypes->count(), 1U);
                  const auto* type = desktop::as<desktop::ContentType>(panel->allowedContentTypes->objectAtIndex(0));
                  EXPECT_EQ(textOf(type->identifier.get()), "com.apple.application-bundle");
                }});
}

TEST(NextRun, HasAllSwitchesOnAgainAndTheExemptionsKept) {
  const desktop::TemporaryFolder folder;
  const auto app = makeBundle(folder, u"com.example.editor");
  const auto run = [&](const std::string& session) {
    desktop::TestDesktop desktop;
    desktop.machine.defaults->file = std::make_unique<desktop::PropertyListFile>(folder.path / "defaults.plist");
    return desktop.play({session});
  };
  run("menu Settings…\nclick \"Bold (Ctrl+B)\"\nclick \"Choose App…\"\nchoose \"" + app.string() +
      "\"\nmenu \"Disable Tarnwick\"");
  const auto received = [](const char* keys) { return desktop::keyLine("key\tEditor\tdown", keys); };
  const std::string next = run("down ctrl+b\nmenu Settings…\nclick Remove\nfront Editor\ndown ctrl+b");
  EXPECT_TRUE(next.starts_with("status\timage\n" + received("ctrl+b"))) << next;
  EXPECT_TRUE(next.ends_with(received("cmd+b") + "terminate\n")) << next;
}

} // namespace
} // namespace tarnwick
