#include "desktop/quartz/EventServices.hpp"

#include "desktop/quartz/Accessibility.hpp"
#include "desktop/quartz/Applications.hpp"
#include "desktop/quartz/Quartz.hpp"
#include "desktop/runtime/Journal.hpp"

namespace desktop {
namespace {

bool wants(const EventTap& tap, const Event& event) {
  return tap.listens() && (tap.mask & (CGEventMask{1} << event.type)) != 0;
}

/// What a tap makes of an event: null when it swallows it.
Event* answerOf(const EventTap& tap, Event& event) {
  const std::size_t before = autoreleasedObjects();
  const CGEventRef answer = tap.callback(nullptr, event.type, referenceTo<CGEventRef>(&event), tap.userInfo);
  if (autoreleasedObjects() != before) stop("a tap's callback left behind what a pool of its own would release");
  return objectBehind<Event>(answer);
}

/// Name, direction and numbers of an event, as entries tell it.
JournalEntry entryOf(std::initializer_list<std::string> start, const Event& event) {
  JournalEntry entry(start);
  entry.emplace_back(event.type == kCGEventKeyDown ? "down" : "up");
  entry.push_back(codeText(static_cast<std::uint16_t>(event.code)));
  entry.push_back(flagsText(event.flags));
  return entry;
}

Ref<Event> makeEvent(CGEventType type, std::uint16_t code, CGEventFlags flags) {
  auto event = create<Event>();
  event->type = type;
  event->code = code;
  event->flags = flags;
  return event;
}

[[gnu::cold, gnu::noinline]] void note(std::string_view function, const Event& event) {
  event.calls->push_back(function);
}

/// The event behind a reference, in a call of the function of that name.
inline Event& eventIn(std::string_view function, CGEventRef reference) {
  Event& event = *objectBehind<Event>(reference);
  if (event.calls != nullptr) [[unlikely]]
    note(function, event);
  return event;
}

/// The same for the functions about a field.
Event& eventIn(std::string_view function, CGEventRef reference, CGEventField field) {
  if (field != kCGKeyboardEventKeycode) stop("of an event's fields only the key code (9) is known here");
  return eventIn(function, reference);
}

} // namespace

EventTap::~EventTap() {
  WindowServer::current().remove(this);
}

WindowServer::WindowServer() {
  RunLoop::current().sendNextEvent = [this] { return sendPosted(); };
}

void WindowServer::add(EventTap* tap, CGEventTapPlacement placement) {
  taps.insert(placement == kCGHeadInsertEventTap ? taps.begin() : taps.end(), tap);
}

void WindowServer::remove(EventTap* tap) {
  std::erase(taps, tap);
}

void WindowServer::forgetProgram() {
  const auto gone = std::exchange(taps, {});
  for (EventTap* tap : gone)
    tap->scheduled = nullptr;
  posted.clear();
}

Event* WindowServer::throughTaps(Event* event) {
  for (EventTap* tap : taps) {
    if (!wants(*tap, *event)) continue;
    event = answerOf(*tap, *event);
    if (event == nullptr) return nullptr;
  }
  return event;
}

void WindowServer::type(CGEventType type, std::uint16_t code, CGEventFlags flags) {
  const platform::AutoreleasePool pool;
  heldFlags = flags;
  const auto event = makeEvent(type, code, flags);
  if (const Event* left = throughTaps(event.get())) {
    deliver(*left);
  } else {
    tell(entryOf({"swallowed"}, *makeEvent(type, code, flags)));
  }
}

void WindowServer::post(const Ref<Event>& event) {
  tell(entryOf({"post"}, *event));
  // The server takes a copy: what its maker does to the event afterwards has no effect.
  posted.push_back(makeEvent(event->type, static_cast<std::uint16_t>(event->code), event->flags));
}

bool WindowServer::sendPosted() {
  if (posted.empty()) return false;
  const auto event = posted.front();
  posted.pop_front();
  if (const Event* left = throughTaps(event.get())) deliver(*left);
  return true;
}

bool WindowServer::disableTaps(CGEventType notification) {
  bool any = false;
  for (EventTap* tap : std::vector(taps)) {
    if (!tap->listens()) continue;
    any = true;
    tap->enabled = false;
    answerOf(*tap, *makeEvent(notification, 0, 0));
  }
  return any;
}

void WindowServer::deliver(const Event& event) {
  const auto receiver = Applications::current().frontmost;
  tell(entryOf({"key", receiver ? receiver->name : ""}, event));
  if (receiver && receiver->reaction != nullptr) receiver->reaction(*receiver, event);
}

void registerEventClasses() {
  NativeClass<Event>("CGEvent", "NSObject");
  NativeClass<EventTap>("CGEventTap", "CFMachPort");
}

} // namespace desktop

using namespace desktop;

extern "C" {

CFMachPortRef CGEventTapCreate(CGEventTapLocation location, CGEventTapPlacement placement, CGEventTapOptions options,
                               CGEventMask mask, CGEventTapCallBack callback, void* userInfo) {
  WindowServer& server = WindowServer::current();
  const bool granted =
      server.grant == TapGrant::Auto ? Accessibility::current().trusted : server.grant == TapGrant::Allow;
  if (!granted || fails("CGEventTapCreate")) return nullptr;
  if (options != kCGEventTapOptionDefault) stop("only active taps (option 0) are known here");
  auto tap = create<EventTap>();
  tap->location = location;
  tap->mask = mask;
  tap->callback = callback;
  tap->userInfo = userInfo;
  server.add(tap.get(), placement);
  return referenceTo<CFMachPortRef>(tap.detach());
}

void CGEventTapEnable(CFMachPortRef tap, bool enable) {
  if (enable && !objectBehind<EventTap>(tap)->scheduled) stop("a tap is enabled once it is on a run loop");
  if (!enable && objectBehind<EventTap>(tap)->scheduled) stop("a tap is disabled once it has left its run loop");
  objectBehind<EventTap>(tap)->enabled = enable;
  objectBehind<EventTap>(tap)->asked = enable;
}

CGEventFlags CGEventGetFlags(CGEventRef event) {
  return eventIn(__func__, event).flags;
}
void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
  eventIn(__func__, event).flags = flags;
}

std::int64_t CGEventGetIntegerValueField(CGEventRef event, CGEventField field) {
  return eventIn(__func__, event, field).code;
}

void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, std::int64_t value) {
  eventIn(__func__, event, field).code = value;
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef, CGKeyCode virtualKey, bool keyDown) {
  if (fails("CGEventCreateKeyboardEvent")) return nullptr;
  auto event = makeEvent(keyDown ? kCGEventKeyDown : kCGEventKeyUp, virtualKey, WindowServer::current().heldFlags);
  return referenceTo<CGEventRef>(event.detach());
}

void CGEventPost(CGEventTapLocation location, CGEventRef event) {
  if (location != kCGHIDEventTap) stop("events are posted at the HID level (0) only");
  WindowServer::current().post(shared(objectBehind<Event>(event)));
}
}
