#include "platform/RuntimeClass.hpp"
#include "tests/support/TestDesktop.hpp"

namespace platform {
namespace {

/// How many states of the classes below are alive.
int states = 0;

class Account {
public:
  explicit Account(id instance) : self(instance) { ++states; }
  ~Account() { --states; }

  void deposit(double amount) { sum += amount; }
  double balance() { return sum; }
  /// Through a message, so that a derived class has its say.
  double balanceAsked() { return send<"balance", double>(self); }
  void fail() { static_cast<void>(std::string().at(1)); }

  static BOOL isAccount(id instance) { return instance != nullptr; }
  static Class runtimeClass() {
    static const Class registered = RuntimeClass<Account, "TestAccount", "NSObject">()
                                        .method<"init", &initialise<Account, "NSObject">>()
                                        .method<"deposit:", &Account::deposit>()
                                        .method<"balance", &Account::balance>()
                                        .method<"balanceAsked", &Account::balanceAsked>()
                                        .method<"fail", &Account::fail>()
                                        .method<"isAccount", &Account::isAccount>()
                                        .registered();
    return registered;
  }

private:
  id self;
  double sum = 0;
};

/// Pays a bonus on what its superclass answers, and has a state of its own beside that one.
class BonusAccount {
public:
  explicit BonusAccount(id instance) : self(instance) { ++states; }
  ~BonusAccount() { --states; }

  double balance() { return sendSuper<"TestAccount", "balance", double>(self) + bonus; }

  static Class runtimeClass() {
    static const Class registered = RuntimeClass<BonusAccount, "TestBonusAccount", "TestAccount">()
                                        .method<"init", &initialise<BonusAccount, "TestAccount">>()
                                        .method<"balance", &BonusAccount::balance>()
                                        .registered();
    return registered;
  }

private:
  id self;
  double bonus = 0.5;
};

class RuntimeClassTest : public testing::Test {
protected:
  desktop::LeakCheck nothingLeaks;

  void SetUp() override {
    Account::runtimeClass();
    BonusAccount::runtimeClass();
  }
  void TearDown() override { EXPECT_EQ(states, 0) << "a state outlived its instance"; }
};

using RuntimeClassDeathTest = RuntimeClassTest;

TEST_F(RuntimeClassTest, KeepsAStateForEachInstanceThatUsesIt) {
  const auto one = make<"TestAccount", "init">();
  const auto other = make<"TestAccount", "init">();
  const NSObject bare(adopt, send<"alloc", id>(theClass<"TestBonusAccount">));
  EXPECT_EQ(states, 2);
  send<"deposit:">(one, 2.25);
  EXPECT_EQ((send<"balance", double>(one)), 2.25);
  EXPECT_EQ((send<"balance", double>(other)), 0);
  EXPECT_TRUE((send<"isAccount", BOOL>(bare)));
  EXPECT_TRUE((send<"isKindOfClass:", BOOL>(one, theClass<"NSObject">)));
  EXPECT_FALSE((send<"isKindOfClass:", BOOL>(one, theClass<"TestBonusAccount">)));
}

TEST_F(RuntimeClassTest, MayOverrideAndCallItsSuperclass) {
  const auto account = make<"TestBonusAccount", "init">();
  EXPECT_EQ(states, 2) << "one of each class";
  send<"deposit:">(account, 1.0);
  EXPECT_EQ((send<"balance", double>(account)), 1.5);
  const auto plain = make<"TestAccount", "init">();
  EXPECT_EQ((send<"balanceAsked", double>(account)), 1.5) << "what is inherited must find what overrides";
  EXPECT_EQ((send<"balanceAsked", double>(plain)), 0) << "one sender, another class";
  EXPECT_EQ((send<"balanceAsked", double>(account)), 1.5) << "and back";
}

TEST_F(RuntimeClassDeathTest, ChecksMessagesLikeAnyOther) {
  const auto account = make<"TestAccount", "init">();
  EXPECT_DEATH(send<"deposit:">(account, 1), "'deposit:' of a TestAccount has the type v@:d but was called as v@:i");
  EXPECT_DEATH(send<"fail">(account), "terminate") << "no exception crosses into the platform";
}

TEST(RuntimeClasses, DoWithoutAProtocolThatThePlatformDoesNotKnow) {
  desktop::TestDesktop desktop;
  desktop.machine.faults.fail("objc_getProtocol");
  RuntimeClass<void, "TestDelegate", "NSObject">().conformsTo("NSWindowDelegate").registered();
  const auto made = make<"TestDelegate", "init">();
  EXPECT_TRUE(made);
  EXPECT_FALSE(desktop::conformsTo(made.object(), "NSWindowDelegate"));
}

} // namespace
} // namespace platform
