#include "tests/support/RemapperTest.hpp"

namespace tarnwick {
namespace {

using namespace std::string_literals;
using desktop::PropertyList;

constexpr auto exemptionsKey = u"exemptBundleIDs";

class FrontmostTest : public RemapperTest {
protected:
  desktop::Desktop& machine = desktop.machine;

  void exempt(PropertyList stored) {
    desktop.store(exemptionsKey, std::move(stored));
    relaunch();
  }
  bool rewrites() { return press(ctrlC) == cmdC; }
};

TEST_F(FrontmostTest, DecidesWhetherKeysAreRewritten) {
  exempt(PropertyList::Array{u"com.example.exempt", u"com.apple.finder"});
  const struct {
    std::optional<std::u16string> identifier;
    bool rewritten;
  } applications[] = {
      {u"com.example.other", true},
      {u"com.example.exempt", false},
      {u"com.apple.finder", false},
      {u"app.tarnwick.Tarnwick", false},
      {u"com.example.Exempt", true},
      {u"com.example.exempt ", true},
      {u"com.example.exempt.more", true},
      {u"app.tarnwick.tarnwick", true},
      {u"", true},
      {std::nullopt, true},
  };
  for (const auto& [identifier, rewritten] : applications) {
    front(identifier);
    EXPECT_EQ(rewrites(), rewritten) << testing::PrintToString(identifier);
  }
  machine.frontmost = nullptr;
  EXPECT_EQ(send(kCGEventKeyDown, ctrlC), (Received{"", cmdC}));
}

TEST_F(FrontmostTest, IsNeverThisProgramWhenItsBundleHasNoIdentifier) {
  machine.mainBundle->open("/nowhere");
  front(u"app.tarnwick.Tarnwick");
  EXPECT_TRUE(rewrites());
  front(std::nullopt);
  EXPECT_TRUE(rewrites()) << "two that have none are not the same";
}

TEST_F(FrontmostTest, IsAskedForAtEveryKeyAndOnce) {
  exempt(PropertyList::Array{u"com.example.exempt"});
  // The Finder's shortcuts ask for themselves.
  remapper->mapFinderDeleteToBin = remapper->mapFinderRename = false;
  for (const char16_t* identifier : {u"com.example.other", u"com.example.exempt", u"app.tarnwick.Tarnwick"}) {
    front(identifier);
    machine.queries = {};
    for (long keys = 1; keys <= 3; ++keys) {
      send(kCGEventKeyDown, {0x00, 0});
      EXPECT_EQ(machine.queries.frontmost, keys);
      EXPECT_EQ(machine.queries.ownIdentifier, keys);
      EXPECT_EQ(machine.queries.focusedElement + machine.queries.role, 0);
    }
  }
  remapper->enabled = false;
  machine.queries = {};
  press(ctrlC);
  EXPECT_EQ(machine.queries.frontmost + machine.queries.ownIdentifier, 0);
}

TEST_F(FrontmostTest, IsNotRememberedFromKeyToKey) {
  exempt(PropertyList::Array{u"com.example.exempt"});
  front(u"com.example.other");
  EXPECT_TRUE(rewrites());
  machine.frontmost->identifier = desktop::string(u"com.example.exempt");
  EXPECT_FALSE(rewrites());
  machine.frontmost->identifier = nullptr;
  EXPECT_TRUE(rewrites());
  machine.frontmost->identifier = desktop::string(u"com.example.other");
  machine.mainBundle->identifier = desktop::string(u"com.example.other");
  EXPECT_FALSE(rewrites());
  machine.mainBundle->identifier = nullptr;
  EXPECT_TRUE(rewrites());
}

TEST_F(FrontmostTest, IsComparedWithTheStoredListAsItIsOrNotAtAll) {
  const struct {
    const char* what;
    PropertyList stored;
    std::vector<std::u16string> exempt;
  } lists[] = {
      {"a string", u"com.a", {}},
      {"a dictionary", PropertyList::Dictionary{{u"com.a", u"com.a"}}, {}},
      {"data", PropertyList::Data(3), {}},
      {"a number behind a string", PropertyList::Array{u"com.a", 5}, {}},
      {"a truth in it", PropertyList::Array{u"com.a", false, u"com.b"}, {}},
      {"a list in it", PropertyList::Array{PropertyList(PropertyList::Array{u"com.a"})}, {}},
      {"repeated", PropertyList::Array{u"com.b", u"com.a", u"com.b"}, {u"com.a", u"com.b"}},
      {"empty and blank", PropertyList::Array{u"", u" com.a\n"}, {u"", u" com.a\n"}},
  };
  for (const auto& [what, stored, exemptOnes] : lists) {
    exempt(stored);
    std::vector<std::u16string> loaded;
    for (const auto& bundleID : remapper->allExemptBundleIDs())
      loaded.push_back(bundleID.characters());
    EXPECT_EQ(loaded, exemptOnes) << what;
    for (const auto& identifier : exemptOnes) {
      front(identifier);
      EXPECT_FALSE(rewrites()) << what;
    }
    front(u"com.example");
    EXPECT_TRUE(rewrites()) << what;
    EXPECT_EQ(*machine.defaults->file->value(exemptionsKey), stored) << what << ": reading must not write";
  }
}

} // namespace
} // namespace tarnwick
