/// Keys and the list of exempt applications. The list is kept in the defaults of the test program, not in Tarnwick's.
#include "platform/Accessibility.hpp"
#include "platform/UserDefaults.hpp"
#include "remap/KeyRemapper.hpp"
#include "tests/portable/Portable.hpp"

#include <string>
#include <unordered_set>

namespace tarnwick {

struct Callback {
  friend constexpr auto memberOf(Callback);
};
template struct Opened<Callback, &KeyRemapper::tapCallback>;

namespace {

using namespace platform;

constexpr CGEventFlags shift = kCGEventFlagMaskShift;
constexpr CGEventFlags control = kCGEventFlagMaskControl;
constexpr CGEventFlags command = kCGEventFlagMaskCommand;
/// Bits that keyboards add: which of two like keys is held, that the event stands alone, that the key is an arrow.
constexpr CGEventFlags left = 0x1, right = 0x2000, alone = 0x100, arrow = 0xa00000;

class KeysTest : public PortableTest {
protected:
  std::shared_ptr<KeyRemapper> remapper = KeyRemapper::make();

  void expectRewrite(CGKeyCode code, CGEventFlags flags, CGKeyCode wantedCode, CGEventFlags wantedFlags) {
    for (const bool down : {true, false}) {
      const CF<CGEventRef> event(adopt, CGEventCreateKeyboardEvent(nullptr, code, down));
      ASSERT_TRUE(event);
      CGEventSetFlags(event.get(), flags);
      const auto type = down ? kCGEventKeyDown : kCGEventKeyUp;
      EXPECT_EQ(memberOf(Callback())(nullptr, type, event.get(), remapper.get()), event.get()) << "key " << code;
      EXPECT_EQ(CGEventGetIntegerValueField(event.get(), kCGKeyboardEventKeycode), wantedCode) << "key " << code;
      EXPECT_EQ(CGEventGetFlags(event.get()), wantedFlags) << "key " << code << std::hex << ", flags " << flags;
    }
  }
};

TEST_F(KeysTest, AreRewrittenAndKeepWhatTheKeyboardSays) {
  expectRewrite(kVK_ANSI_C, control | left | alone, kVK_ANSI_C, command | left | alone);
  expectRewrite(kVK_ANSI_Y, control | right, kVK_ANSI_Z, command | shift | right);
  expectRewrite(kVK_LeftArrow, control | arrow, kVK_LeftArrow, kCGEventFlagMaskAlternate | arrow);
  expectRewrite(kVK_ANSI_L, command | alone, kVK_ANSI_Q, command | control | alone);
  expectRewrite(kVK_ANSI_2, shift | alone, kVK_ANSI_Quote, shift | alone);
  expectRewrite(kVK_ANSI_C, alone, kVK_ANSI_C, alone);
}

TEST_F(KeysTest, AreWatchedOnlyWithPermission) {
  const auto silently = make<"NSDictionary", "init", NSDictionary>();
  const bool trusted = AXIsProcessTrustedWithOptions(silently.asCFDictionary()) != 0;
  EXPECT_EQ(remapper->start(), trusted);
  remapper->stop();
  remapper->stop();
}

/// One text has several kinds of objects there: constants, short ones inside the pointer, ones that can be changed.
TEST_F(KeysTest, TextsAreTheSameWhateverObjectsHoldThem) {
  const std::pair<std::string, std::string> halves[] = {
      {"com.apple.", "finder"}, {"AX", "Role"}, {"", ""}, {"Gr", "öße"}, {"a longer text than any ", "in a pointer"}};
  for (const auto& [head, tail] : halves) {
    const std::string text = head + tail;
    const NSString whole(text);
    const std::unordered_set<NSString, NSStringHash> set{whole};
    const auto changeable = make<"NSMutableString", "initWithBytes:length:encoding:", NSString>(
        static_cast<const void*>(text.data()), static_cast<NSUInteger>(text.size()), NSUTF8StringEncoding);
    for (const NSString& other : {changeable, NSString(head).stringByAppendingString(NSString(tail))}) {
      EXPECT_TRUE(whole == other) << text;
      EXPECT_TRUE(set.contains(other)) << text << ": equal, with another hash";
    }
  }
  EXPECT_TRUE(NSString::constant<"com.apple.finder">() == NSString("com.apple.finder"));
  EXPECT_FALSE(NSString("\u00e9") == NSString("e\u0301")) << "equality is that of the units";
}

TEST_F(KeysTest, ExemptionsAreTrimmedSortedAndReadBack) {
  // Both spellings of the accent compose to the same, which is above every ASCII letter.
  const std::vector<std::u16string> sorted{u"a", u"z", u"e\u0301", u"\u00e9", u"\uFF5E", u"\U0001F600"};
  for (const char* added : {"\U0001F600", "\uFF5E", "\u00e9", "e\u0301", "z", "\u3000 a\t\u00a0\r\n", " \n"})
    remapper->addExemptBundleID(added);
  const auto readBack = KeyRemapper::make()->allExemptBundleIDs();
  std::vector<std::u16string> found;
  for (const NSString& each : readBack) {
    found.push_back(each.characters());
    remapper->removeExemptBundleID(each);
  }
  EXPECT_EQ(found, sorted);
  EXPECT_EQ(NSUserDefaults::standardUserDefaults().arrayForKey("exemptBundleIDs").count(), 0U);
}

} // namespace
} // namespace tarnwick
