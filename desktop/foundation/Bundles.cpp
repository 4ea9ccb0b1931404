#include "desktop/foundation/Bundles.hpp"

#include "desktop/foundation/Foundation.hpp"
#include "desktop/foundation/PropertyListFile.hpp"
#include "desktop/runtime/Faults.hpp"
#include "desktop/runtime/Printing.hpp"

#include <cstdio>

namespace desktop {
namespace {

constexpr std::string_view fileScheme = "file://";

bool hasScheme(std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  const auto scheme = text.substr(0, colon);
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return isLetter(scheme.front()) && scheme.find_first_of(" \"<>\\^`{|}/?#") == std::string_view::npos;
}

/// Empty when the text cannot be a URL.
Ref<URL> URLWithString(String* text) {
  const std::string characters = textOf(text);
  if (!hasScheme(characters) || characters.find_first_of(" \"<>\\^`{|}\n\t") != std::string::npos) return nullptr;
  auto url = create<URL>();
  url->text = characters;
  return url;
}

Ref<URL> fileURLWithPath(String* path) {
  return fileURL(textOf(path));
}

/// What cannot be looked at is not there.
bool isThere(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

/// An empty dictionary, with a sentence on standard error, when the file is there and cannot be understood.
PropertyList readInformation(const std::filesystem::path& file) {
  try {
    return readDictionary(file).value_or(PropertyList::Dictionary());
  } catch (const FileFault& fault) {
    complain(file.string() + ": " + fault.what);
    return PropertyList::Dictionary();
  }
}

Bundle* mainBundle() {
  return MainBundle::current().get();
}

using RegisterClass = void (*)();
std::map<std::string, RegisterClass>& loadableClasses() {
  static auto* const only = new std::map<std::string, RegisterClass>;
  return *only;
}

} // namespace

std::string contentsOfFile(const std::filesystem::path& file) {
  try {
    return readFile(file).value_or("");
  } catch (const FileFault&) {
    return {};
  }
}

Ref<URL> fileURL(const std::string& path) {
  auto url = create<URL>();
  url->path = path;
  url->text = std::string(fileScheme) + path;
  return url;
}

Bundle* Bundle::initWithURL(URL* url) {
  std::error_code error;
  if (std::filesystem::is_directory(url->path, error)) {
    open(url->path);
    return this;
  }
  const auto& installed = InstalledBundles::current();
  if (const auto found = installed.find(url->path); found != installed.end()) {
    if (const auto text = utf16(found->second); text && !text->empty()) identifier = string(*text);
    return this;
  }
  release(this);
  return nullptr;
}

void Bundle::open(const std::filesystem::path& path) {
  folder = path;
  information = readInformation(folder / "Contents" / "Info.plist");
  identifier = shared(ifIs<String>(objectForInfoDictionaryKey(string(u"CFBundleIdentifier").get()).get()));
}

void Bundle::close() {
  folder.clear();
  information = PropertyList::Dictionary();
  identifier = nullptr;
}

String* Bundle::bundleIdentifier() const {
  if (isMain) ++Queries::current().ownIdentifier;
  if (fails("NSBundle bundleIdentifier")) return nullptr;
  return identifier.get();
}

Ref<Object> Bundle::objectForInfoDictionaryKey(String* key) const {
  const auto& entries = *information.as<PropertyList::Dictionary>();
  const auto found = entries.find(key->text);
  return found != entries.end() ? objectOf(found->second) : nullptr;
}

Ref<URL> Bundle::URLForResource(String* name, String* extension) const {
  const auto file = folder / "Contents" / "Resources" / (textOf(name) + "." + textOf(extension));
  return isThere(file) ? fileURL(file.string()) : nullptr;
}

Ref<URL> URL::URLByAppendingPathComponent(String* name) const {
  return fileURL(path + "/" + textOf(name));
}

Ref<URL> Bundle::privateFrameworksURL() const {
  return fileURL((folder / "Contents" / "Frameworks").string());
}

BOOL Bundle::load() const {
  const std::string code = contentsOfFile(folder / folder.stem());
  for (const auto& [name, registerClass] : loadableClasses()) {
    if (code.find(name) != std::string::npos) registerClass();
  }
  return !code.empty();
}

MainBundle::MainBundle() {
  static Bundle* const bundle = create<Bundle>().detach();
  bundle->isMain = true;
  Ref<Bundle>::operator=(shared(bundle));
}

MainBundle::~MainBundle() {
  get()->close();
}

void addLoadableClass(const std::string& name, void (*registerClass)()) {
  loadableClasses()[name] = registerClass;
}

void registerBundleClasses() {
  NativeClass<URL>("NSURL", "NSObject")
      .method<"path", &URL::itsPath>()
      .fallibleMethod<"URLByAppendingPathComponent:", &URL::URLByAppendingPathComponent>()
      .fallibleClassMethod<"URLWithString:", &URLWithString>()
      .classMethod<"fileURLWithPath:", &fileURLWithPath>();
  NativeClass<Bundle>("NSBundle", "NSObject")
      .classMethod<"mainBundle", &mainBundle>()
      .fallibleMethod<"initWithURL:", &Bundle::initWithURL>()
      .method<"bundleIdentifier", &Bundle::bundleIdentifier>()
      .fallibleMethod<"objectForInfoDictionaryKey:", &Bundle::objectForInfoDictionaryKey>()
      .fallibleMethod<"URLForResource:withExtension:", &Bundle::URLForResource>()
      .fallibleMethod<"privateFrameworksURL", &Bundle::privateFrameworksURL>()
      .fallibleMethod<"load", &Bundle::load>();
}

} // namespace desktop
