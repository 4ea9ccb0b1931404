"""A small program that asks the platform for what it has not; the proof of the interface must name each mistake."""
import os
import shutil
import unittest
from pathlib import Path

import fixture
from macos import sysroot
from macos.interface import abi, declarations, messages, program
from macos.interface.facts import Facts

CORRECT = """
#include "platform/Alert.hpp"
#include "platform/Application.hpp"
#include "platform/Workspace.hpp"
#include "platform/EventServices.hpp"
#include "platform/RuntimeClass.hpp"
#include "platform/StatusBar.hpp"
#include "platform/View.hpp"

namespace tarnwick {
using namespace platform;

struct Delegate {
  explicit Delegate(id) {}
  void applicationDidFinishLaunching(id) {}
  void quit() {}
  static Class registered() {
    return RuntimeClass<Delegate, "Delegate", "NSObject">()
        .conformsTo("NSApplicationDelegate")
        .method<"init", &initialise<Delegate, "NSObject">>()
        .method<"applicationDidFinishLaunching:", &Delegate::applicationDidFinishLaunching>()
        .method<"quit", &Delegate::quit>()
        .registered();
  }
};

CGRect use(NSMenuItem item, NSMenu menu, NSView view) {
  constexpr NSInteger NSModalResponseOK = 1;
  Delegate::registered();
  item.setAction(selectorNamed<"quit">());
  menu.addItem(item);
  CGEventPost(kCGHIDEventTap, nullptr);
  return send<"isKindOfClass:", BOOL>(NSObject(item), theClass<"NSMenuItem">) && NSModalResponseOK
             ? send<"frame", NSRect>(view) : NSRect{};
}
} // namespace tarnwick
"""

# What is put into the program, and what must be said about it.
MESSAGES = {
    'send<"setTitel:">(item, NSString());': r"NSMenuItem has no method setTitel:; close: .*setTitle:.* \(sent by",
    'send<"statusItemWithLength:", NSStatusItem>(NSStatusBar(), 1.0F);':
        r"-\[NSStatusBar statusItemWithLength:\] takes as argument 1 CGFloat \(d\), the program passes float \(f\)",
    'send<"setEnabled:">(item, 1);':
        r"setEnabled:\] takes as argument 1 BOOL \(B\), the program passes int .*\(arm64\)",
    'send<"setHidden:">(item, true);':
        r"setHidden:\] takes as argument 1 BOOL \(c\), the program passes bool .*\(x86_64\)",
    'send<"addItem:">(menu, item, item);': r"addItem:\] takes 1 arguments, the program passes 2",
    'send<"runModal">(NSAlert());': r"runModal\] answers NSModalResponse \(Q or q\), the program expects void",
    'send<"separatorItem", NSMenuItem>(item);':
        "NSMenuItem has separatorItem as a class method, but the program sends it to an instance",
    'send<"addItem:">(theClass<"NSMenu">, item);':
        "NSMenu has addItem: as an instance method, but the program sends it to the class",
    'send<"setTitle:">(NSObject(item), NSString());': "setTitle: is sent to an object of unknown class",
    'send<"sort">(theClass<"NSMenuIten">);': "the facts know no class NSMenuIten; close: NSMenuItem",
    'send<"bundleIdentifier", NSURL>(NSRunningApplication());':
        "bundleIdentifier] answers an NSString, the program takes it for an NSURL",
    'send<"setSubmenu:">(item, NSString());': "takes an NSMenu as argument 1, the program passes an NSString",
    'send<"activate">(NSApplication());': r"-\[NSApplication activate\] came with macOS 14.0",
    'send<"badge", NSObject>(item);': r"-\[NSMenuItem badge\] is recorded for newer systems only",
    'wire::call<"length", NSString, void>(item.object());': "calls void platform::wire::call<.*> itself",
    'item.setAction(selectorNamed<"qiut">());': "no class of the program answers the action qiut; close: quit",
    'make<"NSMenu", "initWithTitel:">(NSString());': "NSMenu has no method initWithTitel:; close: initWithTitle:",
}
METHODS = {
    '.method<"applicationWillTerminate:", &Delegate::quit>()':
        r"Delegate answers applicationWillTerminate: as v@:; NSApplicationDelegate has it as void \(NSNotification\), "
        "that is v@:@",
    '.method<"applicationWillTerminat:", &Delegate::applicationDidFinishLaunching>()':
        "nobody calls applicationWillTerminat: .*; close: applicationWillTerminate:",
    '.method<"windowDidResize:", &Delegate::applicationDidFinishLaunching>()':
        "answers windowDidResize: of NSWindowDelegate, but does not conform",
    '.method<"hash", &Delegate::hash>()':
        r"Delegate answers hash as i@:; NSObject has it as NSUInteger \(\), that is Q@:",
}
DECLARED = {
    "inline constexpr double NSVariableStatusItemLength = -1.5;": "NSVariableStatusItemLength is -1 .* has -1.5",
    "inline constexpr int kVK_F21 = 1;": "the platform has no constant kVK_F21; close: .*kVK_F2",
    "inline constexpr long NSTextAlignmentCenter = 1;": r"NSTextAlignmentCenter is 2 .* has 1 \(x86_64\)",
    'inline constexpr auto kAXRoleAttribute = "AXRolle";': 'kAXRoleAttribute is "AXRole" .* has "AXRolle"',
    'inline const char* role = "AXTextFeld";': 'Accessibility knows no "AXTextFeld"; close: .*AXTextField',
    'extern "C" void CGEventPostt();': "the platform has no function CGEventPostt; close: .*CGEventPost",
    'extern "C" const double kCFBooleanTrue;': "kCFBooleanTrue is .*, the program declares double",
}
STAND_IN = {
    "constexpr long NSModalResponseAbort = -1002;": "NSModalResponseAbort is -1001 on the platform, the program has -1002",
    "enum { kAXErrorNoValue = -(1 << 4) };": "kAXErrorNoValue is -25212 on the platform, the program has -16",
    "constexpr int kVK_Escape = 0x35;": "desktop/Own.cpp declares kVK_Escape again; platform/ has it",
    'extern "C" {\nextern const void* const kCFRunLoopCommonModes;\n}': "declares kCFRunLoopCommonModes again",
    'extern "C" {\nint CGEventPeek(int) {\n  return 1;\n}\n}': "CGEventPeek is not declared in platform/",
}
HEADERS = {  # file, what stands there, what is put in its place, what is said
    "key code": ("platform/KeyCodes.hpp", "kVK_F5 = 0x60", "kVK_F5 = 0x61", "kVK_F5 is 96 on the platform, the program has 97"),
    "unread": ("platform/KeyCodes.hpp", "inline constexpr CGKeyCode kVK_F6 ", "inline const CGKeyCode kVK_F6 ",
               "the declaration of kVK_F6 is not understood"),
    "modifier": ("platform/EventServices.hpp", "kCGEventFlagMaskHelp = 0x400000", "kCGEventFlagMaskHelp = 0x40000",
                 "kCGEventFlagMaskHelp is 4194304 on the platform, the program has 262144"),
    "flags": ("platform/EventServices.hpp", "void CGEventSetFlags(CGEventRef event, CGEventFlags flags);",
              "void CGEventSetFlags(CGEventRef event, std::uint32_t flags);",
              r"CGEventSetFlags takes as argument 2 CGEventFlags \(Q\), the program declares unsigned int"),
    "callback": ("platform/EventServices.hpp", "(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void*",
                 "(CGEventTapProxy proxy, CGEventRef event, CGEventType type, void*",
                 "CGEventTapCreate takes as argument 5 CGEventTapCallBack"),
    "width": ("platform/EventServices.hpp", "enum CGEventTapPlacement : std::uint32_t",
              "enum CGEventTapPlacement : std::uint64_t", r"CGEventTapCreate takes as argument 2 CGEventTapPlacement \(I\), .* \(Q\)"),
    "kind of reference": ("platform/CoreFoundation.hpp", "CFRunLoopAddSource(CFRunLoopRef loop,",
                          "CFRunLoopAddSource(CFMachPortRef loop,", "takes as argument 1 CFRunLoopRef"),
    "local constant": ("app/main.cpp", "NSModalResponseOK = 1;", "NSModalResponseOK = 2;",
                       "NSModalResponseOK is 1 on the platform, the program has 2"),
    "entry": ("platform/Send.hpp", "sizeof(Result) > 16", "sizeof(Result) > 64",
              r"comes back through objc_msgSend_stret, not objc_msgSend .*\(x86_64\)"),
}


def copy(folder):
    """The correct program, in a folder laid out like the repository."""
    for name in ("app", "macos"):
        (folder / name).mkdir(parents=True)
    shutil.copytree(fixture.ROOT / "platform", folder / "platform")
    shutil.copy(fixture.ROOT / "macos" / "libcxx_config.h", folder / "macos")
    (folder / "app" / "main.cpp").write_text(CORRECT)


def replace(file, text, other):
    """A change that must find its place."""
    content = file.read_text()
    assert text in content, f"{text} is not in {file.name} any more"
    file.write_text(content.replace(text, other, 1))


def examine(folder):
    """What is said about the program in this folder, and for each processor what was asked, compiler and sources."""
    caches = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache")
    headers = sysroot.fetch(caches / "tarnwick")
    sentences, everything = [], program.ask_all(folder, folder, headers, abi.PROCESSORS)
    for asked, compiler, sources in everything:
        facts = Facts()
        found = [*messages.Messages(facts, asked).check(),
                 *declarations.Declarations(facts, asked.processor, compiler, sources).check()]
        sentences += [f"{sentence} ({asked.processor})" for sentence in found]
    return sentences, everything


class Interface(unittest.TestCase):
    """One correct and one wrong program, each compiled once."""

    @classmethod
    def setUpClass(cls):
        cls.folder = fixture.folder(cls.addClassCleanup)
        correct, wrong = cls.folder / "correct", cls.folder / "wrong"
        copy(correct)
        cls.about_correct, (cls.correct, _) = examine(correct)
        cls.asked = cls.correct[0]
        copy(wrong)
        main = wrong / "app" / "main.cpp"
        replace(main, "  menu.addItem(item);", "\n".join(MESSAGES))
        replace(main, "        .registered();", "\n".join([*METHODS, ".registered();"]))
        replace(main, "  void quit() {}", "  void quit() {}\n  int hash() { return 1; }")
        (wrong / "app" / "Declared.hpp").write_text("\n".join(DECLARED))
        for file, text, other, _ in HEADERS.values():
            replace(wrong / file, text, other)
        cls.about_wrong, cls.wrong = examine(wrong)

    def test_nothing_is_said_about_a_correct_program(self):
        self.assertEqual(self.about_correct, [])
        self.assertIn("-[NSView frame]", [str(message) for message in self.asked.messages])
        self.assertIn(("applicationDidFinishLaunching:", "v@:@"),
                      [(method.selector, method.encoding) for method in self.asked.methods])

    def test_every_mistake_is_named(self):
        said = "\n".join(self.about_wrong)
        headers = {name: sentence for name, (*_, sentence) in HEADERS.items()}
        for mistake, sentence in {**MESSAGES, **METHODS, **DECLARED, **headers}.items():
            with self.subTest(mistake):
                self.assertRegex(said, sentence)

    def test_nothing_to_read_is_no_proof(self):
        with self.assertRaisesRegex(program.ProgramError, "program.py must follow platform/RuntimeClass.hpp"):
            program.Reader("arm64", program.Code()).read()

    def test_own_declarations_of_the_stand_in(self):
        folder = self.folder / "wrong"
        (folder / "desktop").mkdir()
        (folder / "desktop" / "Own.cpp").write_text("\n".join(STAND_IN) + "\n")
        _, compiler, sources = self.wrong[0]
        platform = declarations.Declarations(Facts(), "arm64", compiler, sources)
        own = declarations.StandInDeclarations(platform, compiler.preprocessed(["desktop"]))
        said = list(own.check())
        self.assertEqual(len(said), len(STAND_IN), said)
        for mistake, sentence in STAND_IN.items():
            with self.subTest(mistake):
                self.assertRegex("\n".join(said), sentence)

    def test_imports(self):
        libraries = {library.name: library for library in sysroot.read_libraries()}
        graphics, runtime = libraries["CoreGraphics"].symbols, libraries["objc"].symbols
        post = next(symbol for symbol in graphics if symbol.name == "_CGEventPost")
        graphics.remove(post)
        libraries["AppKit"].symbols.append(post)
        graphics[0].first_version = (14, 0)
        graphics[1].name += "s"
        runtime[:] = [symbol for symbol in runtime if symbol.name != "_objc_getProtocol"]
        said = "\n".join(declarations.check_imports(Facts(), libraries.values(), self.asked))
        for sentence in ("takes CGEventPost from AppKit; CoreGraphics has it",
                         f"{graphics[0].name[1:]} came with macOS 14.0, the program is for 13.0",
                         f"takes {graphics[1].name[1:]} from CoreGraphics, but the facts know no such symbol; close: ",
                         "uses objc_getProtocol of objc, which macos/imports.txt does not list"):
            self.assertIn(sentence, said)

    def test_stand_in(self):
        lines = ["NSMenuItem\tNSObject\t-\tsetTitle:\tv@:@", "NSMenuItem\tNSObject\t-\tsetEnabled:\tv@:i",
                 "NSMenuItem\tNSObject\t-\tseparatorItem\t@@:", "NSMenuItem\tNSObject\t-\tsetTitel:\tv@:@",
                 "NSOpenPanel\tNSMenu\t-\trunModal\tq@:", "NSMenuIten\tNSObject\t-\tsetTitle:\tv@:@"]
        sentences = list(messages.StandIn(Facts(), self.asked, lines).check())
        self.assertEqual(len(sentences), 5, sentences)
        for sentence, expected in zip(sentences, (
                r"setEnabled: as v@:i; NSMenuItem has it as void \(BOOL\), that is v@:B",
                r"the platform has \+\[NSMenuItem separatorItem\]", "close: .*setTitle:", "a subclass of NSMenu",
                "class NSMenuIten")):
            self.assertRegex(sentence, expected)
