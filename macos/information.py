"""The information dictionary of a bundle: reads it, whatever is in the file, and holds Tarnwick's own to its rules."""
import plistlib
import re

from macos.sysroot import OLDEST_SYSTEM, dotted

VERSION = re.compile(r"\d+(\.\d+){0,2}")
PLACEHOLDER = "REPLACE_WITH"
FEED, KEY = "SUFeedURL", "SUPublicEDKey"  # where the update framework looks, and whose signature it trusts there
RESOURCES = ("AppIcon.icns", "MenuBarTemplate.png")
FIXED = {"CFBundlePackageType": "APPL", "CFBundleExecutable": "Tarnwick", "CFBundleIdentifier": "app.tarnwick.Tarnwick",
         "LSMinimumSystemVersion": dotted(OLDEST_SYSTEM),
         "LSUIElement": True}  # an accessory: in the menu bar, not in the Dock
# Transport security is what keeps the feed from being replaced on its way; an environment could load any library into
# a program that may read the keyboard.
FORBIDDEN = ("NSAppTransportSecurity", "LSEnvironment")


class InformationError(Exception):
    """The file holds no information dictionary; the text names it."""


def read(path):
    """The dictionary in a property list."""
    try:
        content = plistlib.loads(path.read_bytes())
    except OSError as error:
        raise InformationError(f"{path.name} cannot be read: {error.strerror}") from None
    except Exception as error:  # the parsers below plistlib let through whatever goes wrong in them, of any class
        raise InformationError(f"{path.name} is not a property list: {error or type(error).__name__}") from None
    if not isinstance(content, dict):
        raise InformationError(f"{path.name} is not a dictionary")
    return content


def text(dictionary, name, file="Info.plist"):
    """A value that must be a text with something in it."""
    value = dictionary.get(name)
    if not isinstance(value, str) or not value:
        raise InformationError(f"{file} has no text for {name}")
    return value


def placeholders(dictionary):
    """The addresses that nobody has filled in yet."""
    return [name for name in (FEED, KEY) if PLACEHOLDER in str(dictionary.get(name))]


def check(dictionary, has_framework):
    """Sentences for what is wrong with the application's dictionary."""
    for name, expected in FIXED.items():
        if dictionary.get(name) != expected or type(dictionary[name]) is not type(expected):
            yield f"Info.plist: {name} is {dictionary.get(name)!r}, not {expected!r}"
    for name in ("CFBundleShortVersionString", "CFBundleVersion"):
        if not VERSION.fullmatch(str(dictionary.get(name))) or not isinstance(dictionary[name], str):
            yield f"Info.plist: {name} is {dictionary.get(name)!r}, which is no version"
    for name in FORBIDDEN:
        if name in dictionary:
            yield f"Info.plist: {name} must not be there"
    yield from check_updates(dictionary, has_framework)


def check_updates(dictionary, has_framework):
    """Updates come by https, and only where something can install them."""
    feed, key = dictionary.get(FEED), dictionary.get(KEY)
    if not isinstance(feed, str) or not isinstance(key, str):
        yield f"Info.plist: {FEED} and {KEY} must be texts"
    elif PLACEHOLDER not in feed:
        if not re.fullmatch(r"https://[^/\s]+/\S*", feed):
            yield f"Info.plist: {FEED} is {feed!r}, not an https address"
        if not has_framework:
            yield f"Info.plist: {FEED} is {feed!r}, but there is no update framework that could use it"
