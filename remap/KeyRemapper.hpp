/// The remapping engine: its switches, its event tap, the rules that decide about each key event, the exempt
/// applications.
#pragma once

#include "platform/EventServices.hpp"
#include "platform/Foundation.hpp"
#include "remap/TranslationRules.hpp"

#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

namespace tarnwick {

/// Watches the session's key events and rewrites them. One for the whole run, shared by the application delegate and
/// the settings window; main thread only, so nothing is locked. The tap does not own it: whoever called `start()` calls
/// `stop()` before letting go. Always held by a `std::shared_ptr`, so that a callback can hold it while it runs.
class KeyRemapper final : public std::enable_shared_from_this<KeyRemapper> {
public:
  /// Everything on, and the exempt applications loaded from the user's defaults. A stored value that is no array of
  /// strings counts as none and stays as it is.
  KeyRemapper();
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

private:
  static constexpr platform::Name finderBundleID = "com.apple.finder";

  platform::CF<CFMachPortRef> eventTap;
  platform::CF<CFRunLoopSourceRef> runLoopSource;
  /// From the request for a confirmation until its alert has been answered.
  bool isDeleteConfirmationPending = false;
  const platform::NSString exemptionsDefaultsKey = platform::NSString::utf8("exemptBundleIDs");
  std::unordered_set<platform::NSString, platform::NSStringHash> exemptBundleIDs;

public:
  /// The master switch: when off, every event passes unchanged.
  bool enabled = true;
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
  /// Keys whose Control becomes Command.
  static constexpr KeyCodeSet commandKeyCodes{kVK_ANSI_C, kVK_ANSI_V, kVK_ANSI_X, kVK_ANSI_A, kVK_ANSI_Z, kVK_ANSI_Y,
                                              kVK_ANSI_N, kVK_ANSI_S, kVK_ANSI_F, kVK_ANSI_B, kVK_ANSI_U, kVK_ANSI_I};
  /// Keys whose Control becomes Option.
  static constexpr KeyCodeSet optionKeyCodes{kVK_LeftArrow, kVK_RightArrow};
  /// The modifiers that the rules count as held.
  static constexpr CGEventFlags primaryModifierFlags =
      kCGEventFlagMaskShift | kCGEventFlagMaskControl | kCGEventFlagMaskAlternate | kCGEventFlagMaskCommand;

  static CGEventRef tapCallback(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo) noexcept;
  CGEventRef handleEvent(CGEventTapProxy proxy, CGEventType type, CGEventRef event);
  [[nodiscard]] bool isFrontmostExempt() const;
  Outcome translate(CGEventType type, Key key);
  std::optional<Outcome> translateFinderDelete(CGEventType type, Key key);
  [[nodiscard]] std::optional<Outcome> translateFinderRename(Key key) const;
  [[nodiscard]] Outcome translateControl(Key key) const;
  /// The switch of one of `commandKeyCodes`.
  [[nodiscard]] bool isMapped(std::int64_t commandKeyCode) const;
  [[nodiscard]] static bool hasPrimaryModifier(Key key) { return (key.flags & primaryModifierFlags) != 0; }

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
