/// The remapping engine: its switches, its event tap, the rules that decide about each key event, the exempt
/// applications.
#pragma once

#include "platform/EventServices.hpp"
#include "platform/Strings.hpp"
#include "remap/TranslationRules.hpp"

#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

namespace tarnwick {

/// Watches the session's key events and rewrites them. One for the whole run, shared by the application delegate and
/// the settings window; main thread only, so nothing is locked. The tap does not own it: whoever called `start()` calls
/// `stop()` before letting go.
class KeyRemapper final {
public:
  /// Everything on, and the exempt applications loaded from the user's defaults. A stored value that is no array of
  /// strings counts as none and stays as it is. The one way to make a remapper: callbacks hold it while they run.
  static std::shared_ptr<KeyRemapper> make();
  KeyRemapper(const KeyRemapper&) = delete;
  KeyRemapper& operator=(const KeyRemapper&) = delete;

  /// Puts the tap at the head of the session's key events, on this thread's run loop. False when the window server
  /// refuses one, usually for want of Accessibility trust.
  bool start();
  /// Takes the tap down; on the thread that called `start()`. Without a tap it does nothing.
  void stop();

  /// Surrounding whitespace is taken off. If nothing is left, nothing happens; otherwise it is added and saved.
  void addExemptBundleID(const platform::NSString& bundleID);
  /// Exactly as given. Saves also when it was no member.
  void removeExemptBundleID(const platform::NSString& bundleID);
  /// Sorted by code point after canonical composition.
  [[nodiscard]] std::vector<platform::NSString> allExemptBundleIDs() const;
  /// Writes the sorted list to the user's defaults.
  void saveExemptions() const;

  /// The master switch: when off, every event passes unchanged.
  bool enabled = true;

  // One switch for each family of shortcuts; its keys stand in the tables below or in a rule of its own.
  bool mapClipboard = true;
  bool mapRedo = true;
  bool mapNewFile = true;
  bool mapSave = true;
  bool mapWordSkip = true;
  bool mapFind = true;
  bool mapAtQuoteSwap = true;
  bool mapLockScreen = true;
  bool mapBold = true;
  bool mapUnderline = true;
  bool mapItalic = true;
  bool mapFinderDeleteToBin = true;
  bool mapFinderRename = true;
  /// Ask before the Finder's Forward Delete moves anything.
  bool mapFinderDeleteConfirm = true;

private:
  /// Keys whose Control becomes Command; of Y, which becomes Cmd+Shift+Z, only the switch stands here.
  static constexpr KeyCodeTable<KeyRemapper> commandKeyCodes{
      {kVK_ANSI_C, &KeyRemapper::mapClipboard}, {kVK_ANSI_V, &KeyRemapper::mapClipboard},
      {kVK_ANSI_X, &KeyRemapper::mapClipboard}, {kVK_ANSI_A, &KeyRemapper::mapClipboard},
      {kVK_ANSI_Z, &KeyRemapper::mapClipboard}, {kVK_ANSI_Y, &KeyRemapper::mapRedo},
      {kVK_ANSI_N, &KeyRemapper::mapNewFile},   {kVK_ANSI_S, &KeyRemapper::mapSave},
      {kVK_ANSI_F, &KeyRemapper::mapFind},      {kVK_ANSI_B, &KeyRemapper::mapBold},
      {kVK_ANSI_U, &KeyRemapper::mapUnderline}, {kVK_ANSI_I, &KeyRemapper::mapItalic},
  };
  /// Keys whose Control becomes Option.
  static constexpr KeyCodeTable<KeyRemapper> optionKeyCodes{
      {kVK_LeftArrow, &KeyRemapper::mapWordSkip},
      {kVK_RightArrow, &KeyRemapper::mapWordSkip},
  };
  static_assert(!commandKeyCodes.sharesKeyWith(optionKeyCodes), "a key stands in both tables");
  /// The modifiers that the rules count as held.
  static constexpr CGEventFlags primaryModifierFlags =
      kCGEventFlagMaskShift | kCGEventFlagMaskControl | kCGEventFlagMaskAlternate | kCGEventFlagMaskCommand;
  static constexpr platform::Literal finderBundleID = "com.apple.finder";

  /// For the callbacks: the tap's, which holds the remapper while it runs, and the confirmation's, which does not keep
  /// it.
  std::weak_ptr<KeyRemapper> self;
  platform::CF<CFMachPortRef> eventTap;
  platform::CF<CFRunLoopSourceRef> runLoopSource;
  /// From the request for a confirmation until its alert has been answered.
  bool isDeleteConfirmationPending = false;
  const platform::NSString exemptionsDefaultsKey = "exemptBundleIDs";
  std::unordered_set<platform::NSString, platform::NSStringHash> exemptBundleIDs;

  KeyRemapper();

  static CGEventRef tapCallback(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo) noexcept;
  CGEventRef handleEvent(CGEventTapProxy proxy, CGEventType type, CGEventRef event);
  [[nodiscard]] bool isFrontmostExempt() const;
  Outcome translate(const KeyEvent& key);
  std::optional<Outcome> translateFinderDelete(const KeyEvent& key);
  [[nodiscard]] std::optional<Outcome> translateFinderRename(const KeyEvent& key) const;
  [[nodiscard]] Outcome translateControl(const KeyEvent& key) const;
  [[nodiscard]] static CGEventFlags primaryModifiers(const KeyEvent& key) { return key.flags & primaryModifierFlags; }

  /// Whether the element with the keyboard focus, in whichever application, takes text. False when that cannot be
  /// found out; waits for the application that holds the focus.
  [[nodiscard]] bool isTypingInEditableField() const;
  [[nodiscard]] bool isFinderFrontmost() const;
  /// Of the application that receives the keys; empty when there is none, or when it has no identifier.
  static platform::Lent<platform::NSString> frontmostBundleID();

  /// Asks, after the current event, whether the Finder's selection is to go to the Bin. One question at a time.
  void promptFinderDeleteConfirmation();
  /// Brings the Finder to the front and, a moment later, types its shortcut. Nothing happens when it does not run.
  void activateFinderAndSendCommandDelete();

  void loadExemptions();
};

} // namespace tarnwick
