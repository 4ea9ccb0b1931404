/// The stand-in's Foundation, CoreFoundation and main dispatch queue: all that has no picture and types no key.
///
/// Read Strings, Collections, Bundles and UserDefaults first, which are the classes of platform/'s headers of the same
/// names, then Dispatch and CoreFoundation, which hold the clock and the run loop. The rest serves these: Text turns
/// UTF-16 into UTF-8 and back, and the PropertyList files read and write what Info.plist and user defaults hold.
#pragma once

namespace desktop {

/// Registers the classes of this folder and of those before it, once.
void registerFoundationClasses();

void registerStringClasses();
void registerCollectionClasses();
void registerBundleClasses();
void registerUserDefaultsClass();
void registerCoreFoundationClasses();

} // namespace desktop
