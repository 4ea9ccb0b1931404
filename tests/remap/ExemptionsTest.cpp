#include "tests/support/RemapperTest.hpp"

namespace tarnwick {
namespace {

using namespace std::string_literals;
using desktop::PropertyList;
using platform::NSString;

// In what order they are, a session and the portable tests tell.

using Texts = std::vector<std::u16string>;

class ExemptionsTest : public RemapperTest {
protected:
  /// As the program holds such a text: NUL, lone surrogates and all.
  static NSString text(const std::u16string& units) { return {platform::share, desktop::string(units).get()}; }
  void add(const std::u16string& units) { remapper->addExemptBundleID(text(units)); }
  void remove(const std::u16string& units) { remapper->removeExemptBundleID(text(units)); }

  Texts listed() {
    Texts texts;
    for (const NSString& each : remapper->allExemptBundleIDs())
      texts.push_back(each.characters());
    return texts;
  }
  const PropertyList* storedValue() { return desktop.machine.defaults->file->value(u"exemptBundleIDs"); }
  /// The list, which must be what is stored, too.
  Texts both() {
    const Texts list = listed();
    EXPECT_TRUE(*storedValue() == PropertyList(PropertyList::Array(list.begin(), list.end()))) << "another is stored";
    return list;
  }
};

TEST_F(ExemptionsTest, AreTrimmedOfWhitespaceAtBothEndsOnly) {
  add(u"");
  add(u" \n\u2003\u3000");
  EXPECT_EQ(storedValue(), nullptr) << "nothing was written";
  // Unicode's space, line and paragraph separators, and the controls that count as white.
  const std::u16string whites =
      u"\t\n\u000B\u000C\r \u0085\u00A0\u1680\u2000\u2005\u200A\u2028\u2029\u202F\u205F\u3000";
  for (const char16_t white : whites) {
    add(white + u"a"s + white + u"b"s + white);
    EXPECT_EQ(both(), (Texts{u"a"s + white + u"b"s})) << std::hex << int{white};
    remove(u"a"s + white + u"b"s);
  }
  for (const char16_t other : u"\u0008\u000E\u001F\u0084\u180E\u200B\u2060\uFEFF"s) {
    add(other + u"a"s);
    EXPECT_EQ(both(), (Texts{other + u"a"s})) << std::hex << int{other};
    remove(other + u"a"s);
  }
}

TEST_F(ExemptionsTest, TellApartAndKeepOddIdentifiers) {
  const Texts odd{std::u16string(10'000, u'x'),
                  std::u16string(10'001, u'x'),
                  u"com.example.two words",
                  u"com.Example.two words",
                  u"with\nline\r\nbreaks",
                  u"with\0NUL"s,
                  u"with\0another"s,
                  u"lone \xD800 surrogate"s,
                  u"<&>\"'",
                  u"\u202Eright to left"};
  for (const auto& identifier : odd)
    add(identifier);
  EXPECT_EQ(both().size(), odd.size());
  relaunch();
  EXPECT_EQ(both().size(), odd.size());
  for (const auto& identifier : odd) {
    front(identifier);
    EXPECT_FALSE(rewrites());
    remove(identifier);
    EXPECT_TRUE(rewrites()) << "a change counts from the next key on";
  }
  EXPECT_EQ(both(), Texts());
}

TEST_F(ExemptionsTest, AreWrittenWholeAtEveryChangeAndNonChange) {
  desktop.store(u"exemptBundleIDs", PropertyList::Array{u"b", u"a", u"b"});
  relaunch();
  add(u"a");
  EXPECT_EQ(both(), (Texts{u"a", u"b"})) << "no new member, yet the duplicate is gone from the file";
  desktop.store(u"exemptBundleIDs", PropertyList::Array{u"a", 7});
  remove(u" a ");
  EXPECT_EQ(both(), (Texts{u"a", u"b"})) << "removed exactly as given, which is no member";
  remove(u"a");
  remove(u"b");
  ASSERT_NE(storedValue(), nullptr) << "the key stays";
  EXPECT_EQ(both(), Texts());
}

} // namespace
} // namespace tarnwick
