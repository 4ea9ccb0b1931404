/// The stand-in's Quartz event services and Accessibility: who gets the keys that are typed, and who may look on.
///
/// Read Applications first: which ones run, which is in front and which has the keyboard focus. Then EventServices with
/// the window server, its taps and the way of an event, and Accessibility, which answers for the focused element.
#pragma once

namespace desktop {

/// Registers the classes of this folder and of those before it, once.
void registerQuartzClasses();

void registerEventClasses();
void registerAccessibilityClass();

} // namespace desktop
