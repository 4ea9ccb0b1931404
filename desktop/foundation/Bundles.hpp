/// URLs, and bundles: folders with a dictionary of their own, resources and perhaps code.
#pragma once

#include "desktop/foundation/Collections.hpp"
#include "desktop/foundation/Strings.hpp"
#include "desktop/runtime/Part.hpp"

#include <filesystem>

namespace desktop {

struct URL : Object {
  std::string text;
  /// A file URL's path; empty otherwise.
  std::string path;

  Ref<URL> URLByAppendingPathComponent(String* name) const;
  Ref<String> itsPath() const { return string(path); }
};

Ref<URL> fileURL(const std::string& path);
/// The bytes of a regular file; empty when it cannot be read.
std::string contentsOfFile(const std::filesystem::path& file);

struct Bundle : Object {
  std::filesystem::path folder;
  /// Contents/Info.plist, or an empty dictionary.
  PropertyList information = PropertyList::Dictionary();
  /// Made once, so that asking for it is as cheap as on the platform.
  Ref<String> identifier;
  /// Its identifier is asked for with every key, which is counted.
  bool isMain = false;

  Bundle* initWithURL(URL* url);
  /// Whatever the folder lacks is missing, nothing more.
  void open(const std::filesystem::path& path);
  /// As before it was opened.
  void close();
  String* bundleIdentifier() const;
  Ref<Object> objectForInfoDictionaryKey(String* key) const;
  Ref<URL> URLForResource(String* name, String* extension) const;
  Ref<URL> privateFrameworksURL() const;
  /// The classes that the executable names are there from now on (see `addLoadableClass`); false without an executable.
  BOOL load() const;
};

/// The program's own bundle, without a folder until it is opened. As on the platform it is one object for the life of
/// the process, which the program may hold; with its desktop it is closed.
struct MainBundle : Part<MainBundle>, Ref<Bundle> {
  MainBundle();
  ~MainBundle();
};

/// The bundles of applications that have been started, which have no folder here: their identifiers by the path that
/// they have on the machine, `/Applications/Mail.app`. Empty where an application has none.
struct InstalledBundles : Part<InstalledBundles>, std::map<std::string, std::string> {};

/// From now on loading a bundle whose executable names this class calls `registerClass`.
void addLoadableClass(const std::string& name, void (*registerClass)());

} // namespace desktop
