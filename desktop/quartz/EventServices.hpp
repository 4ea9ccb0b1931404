/// The window server: where key events enter, the taps they pass, the application that gets them.
#pragma once

#include "desktop/foundation/CoreFoundation.hpp"
#include "platform/EventServices.hpp"

#include <deque>
#include <optional>
#include <string_view>
#include <vector>

namespace desktop {

/// A keyboard event.
struct Event : Object {
  CGEventType type = kCGEventKeyDown;
  std::int64_t code = 0;
  CGEventFlags flags = 0;
  /// Notes the functions that read or change the event, in the order of their calls. None unless somebody wants to
  /// know.
  std::vector<std::string_view>* calls = nullptr;
};

/// A tap, which the program has as a Mach port. Gone from the server with its last reference.
struct EventTap : MachPort {
  CGEventTapLocation location = kCGSessionEventTap;
  CGEventMask mask = 0;
  CGEventTapCallBack callback = nullptr;
  void* userInfo = nullptr;
  bool enabled = true;
  /// What the program last asked for; none while it never did.
  std::optional<bool> asked;

  ~EventTap();
  bool listens() const { return enabled && scheduled; }
};

/// Whether a tap is granted; `Auto` follows Accessibility trust.
enum class TapGrant { Auto, Allow, Refuse };

class WindowServer : public Part<WindowServer> {
public:
  WindowServer();

  TapGrant grant = TapGrant::Auto;
  /// What the keyboard's last event carried. Events that are made without a source begin with these flags.
  CGEventFlags heldFlags = 0;

  /// A key of the keyboard. Goes through the taps and to the frontmost application before this returns.
  void type(CGEventType type, std::uint16_t code, CGEventFlags flags);
  /// An event made by a program: on its way once the run loop turns.
  void post(const Ref<Event>& event);
  /// Sends the next posted event on its way; false when there is none.
  bool sendPosted();
  /// Disables the listening taps and tells them; false when there are none.
  bool disableTaps(CGEventType notification);

  /// The event as it leaves the taps, or null when one of them kept it.
  Event* throughTaps(Event* event);

  /// Taps in the order in which events pass them. Not owned.
  const std::vector<EventTap*>& installed() const { return taps; }
  void add(EventTap* tap, CGEventTapPlacement placement);
  void remove(EventTap* tap);
  /// The program has ended: its taps and events go with it.
  void forgetProgram();

private:
  void deliver(const Event& event);

  std::vector<EventTap*> taps;
  std::deque<Ref<Event>> posted;
};

} // namespace desktop
