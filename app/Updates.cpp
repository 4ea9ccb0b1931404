#include "app/Updates.hpp"

namespace tarnwick {

using namespace platform;

namespace {

bool isPlaceholder(const NSString& value) {
  // Unit by unit: the platform's own search would miss one that a combining accent follows.
  return value.characters().find(u"REPLACE_WITH") != std::u16string::npos;
}

} // namespace

bool isConfiguredForUpdates(const NSBundle& bundle) {
  const NSString feed = asString(bundle.objectForInfoDictionaryKey("SUFeedURL"));
  if (!feed) return false;
  const NSString publicKey = asString(bundle.objectForInfoDictionaryKey("SUPublicEDKey"));
  if (!publicKey) return false;
  if (feed.length() == 0 || publicKey.length() == 0) return false;
  return !isPlaceholder(feed) && !isPlaceholder(publicKey);
}

SPUStandardUpdaterController startUpdater(const NSBundle& bundle) {
  const NSURL place = bundle.privateFrameworksURL().URLByAppendingPathComponent("Sparkle.framework");
  const NSBundle framework = place ? NSBundle::withURL(place) : NSBundle();
  return framework.load() ? SPUStandardUpdaterController::makeStarted() : SPUStandardUpdaterController();
}

} // namespace tarnwick
