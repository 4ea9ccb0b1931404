#include "platform/StatusBar.hpp"
#include "tests/support/TestDesktop.hpp"

namespace platform {
namespace {

using namespace std::string_literals;

id releasedString() {
  const auto text = NSString("gone");
  return text.object();
}

// On a Mac each of these would corrupt memory, now or later, without a word.
TEST(MessagesDeathTest, StopTheProgramWhenTheyAreWrong) {
  const struct {
    const char* what;
    void (*mistake)();
    const char* sentence;
  } mistakes[] = {
      {"an unknown selector", [] { send<"lenght", NSUInteger>(NSString("text")); },
       "a NSString has no method 'lenght' \\(called as Q@:\\)"},
      {"an instance's method asked of the class", [] { send<"length", NSUInteger>(theClass<"NSString">); },
       "the class NSString has no method 'length'"},
      {"a superclass without it", [] { sendSuper<"NSObject", "length", NSUInteger>(NSString("text").object()); },
       "a NSString has no method 'length'"},
      {"another result", [] { send<"length", double>(NSString("text")); },
       "'length' of a NSString has the type Q@: but was called as d@:"},
      {"another result, after it went well",
       [] {
         const auto text = NSString("text");
         if (text.length() == 4) send<"length", int>(text);
       },
       "'length' of a NSString has the type Q@: but was called as i@:"},
      {"an argument too few", [] { send<"stringByAppendingString:", NSString>(NSString("text")); },
       "'stringByAppendingString:' of a NSString has the type @@:@ but was called as @@:"},
      {"an int for a Boolean", [] { send<"setEnabled:">(NSMenuItem::separatorItem(), 1); },
       "'setEnabled:' of a NSMenuItem has the type v@:B but was called as v@:i"},
      {"an argument of another class", [] { send<"addItem:">(NSMenu::make(), NSString("text")); },
       "a NSString was given where a NSMenuItem is wanted"},
      {"a released receiver, after one that lives",
       [] {
         const auto alive = NSString("text");
         for (const id receiver : {alive.object(), releasedString()})
           send<"length", NSUInteger>(receiver);
       },
       "message 'length' to a released NSString"},
      {"a method for a class in use",
       [] {
         const auto text = NSString("text");
         class_addMethod(objc_getClass("NSString"), selectorNamed<"uppercaseString">(), nullptr, "@@:");
       },
       "NSString was given a method after it had been sent messages"},
      {"a released object kept", [] { objc_retain(releasedString()); }, "a released NSString was retained"},
      {"a released object as argument",
       [] { send<"stringByAppendingString:", NSString>(NSString("text"), Lent<NSString>(releasedString())); },
       "a released NSString was used"},
      {"one release too many", [] { objc_release(releasedString()); }, "a released NSString was released again"},
  };
  for (const auto& [what, mistake, sentence] : mistakes) {
    EXPECT_DEATH(
        {
          const AutoreleasePool pool;
          mistake();
        },
        std::string("tarnwick: ") + sentence)
        << what;
  }
  EXPECT_DEATH(NSMenuItem::separatorItem(), "a NSMenuItem was autoreleased outside of any pool");
}

TEST(Messages, ToNothingAnswerZeroAndOfAnInitialiserThatRefusesLeaveNothingBehind) {
  const desktop::LeakCheck nothingLeaks;
  const NSString nothing;
  EXPECT_EQ(nothing.length(), 0U);
  EXPECT_FALSE(nothing.stringByAppendingString(nothing));
  EXPECT_EQ((send<"frame", CGRect>(nothing).size.width), 0);
  EXPECT_FALSE((make<"NoSuchClass", "init">()));
  EXPECT_FALSE(NSString("\xff"));
  EXPECT_EQ(NSString("a\0b"s).characters(), u"a\0b"s);
}

TEST(AutoreleasePools, ReleaseWhatCameDuringTheirOwnLife) {
  const desktop::LeakCheck nothingLeaks;
  const auto items = [] { return desktop::liveObjects("NSMenuItem"); };
  {
    const AutoreleasePool outer;
    NSMenuItem::separatorItem();
    {
      const AutoreleasePool inner;
      const auto kept = NSMenuItem::separatorItem();
      EXPECT_EQ(items(), 2);
    }
    EXPECT_EQ(items(), 1);
  }
  EXPECT_EQ(items(), 0);
}

long references(id object) {
  return static_cast<desktop::Object*>(object)->references;
}

// That counts stay even where references are copied, lent and let go, every test that plays checks at its end.
TEST(References, OutliveWhatTheProgramDoesNotDoWithThem) {
  const desktop::LeakCheck nothingLeaks;
  NSString text = NSString("text");
  const id object = text.object();
  NSString& itself = text;
  text = itself;
  EXPECT_EQ(references(object), 1) << "given itself";
  const NSString takenBack(adopt, text.detach());
  EXPECT_FALSE(text);
  EXPECT_EQ(references(object), 1) << "taken back";

  CF<CFStringRef> shared(share, takenBack.asCFString());
  CF<CFStringRef> adopted(adopt, static_cast<CFStringRef>(CFRetain(takenBack.asCFString())));
  EXPECT_EQ(references(object), 3);
  shared = std::move(adopted);
  EXPECT_FALSE(adopted); // NOLINT(bugprone-use-after-move): empty is what it must be
  CF<CFStringRef>& itselfToo = shared;
  shared = std::move(itselfToo);
  EXPECT_TRUE(shared);
  EXPECT_EQ(references(object), 2);
  shared = {};
  EXPECT_EQ(references(object), 1);
}

} // namespace
} // namespace platform
