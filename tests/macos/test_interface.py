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

MESSAGES, METHODS, DECLARED, HEADERS, STAND_IN = (
    dict(fixture.rows(f"interface/{name}.txt")) for name in ("messages", "methods", "declared", "headers", "stand_in"))


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
        for change in HEADERS:
            file, text, other = change.splitlines()
            replace(wrong / file, text, other)
        cls.about_wrong, cls.wrong = examine(wrong)

    def test_nothing_is_said_about_a_correct_program(self):
        self.assertEqual(self.about_correct, [])
        self.assertIn("-[NSView frame]", [str(message) for message in self.asked.messages])
        self.assertIn(("applicationDidFinishLaunching:", "v@:@"),
                      [(method.selector, method.encoding) for method in self.asked.methods])

    def test_every_mistake_is_named(self):
        said = "\n".join(self.about_wrong)
        for mistake, sentence in {**MESSAGES, **METHODS, **DECLARED, **HEADERS}.items():
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
        mistakes = dict(fixture.rows("interface/stand_in_methods.txt"))
        lines = [line.replace(" ", "\t") for line in ("NSMenuItem NSObject - setTitle: v@:@", *mistakes)]
        sentences = list(messages.StandIn(Facts(), self.asked, lines).check())
        self.assertEqual(len(sentences), len(mistakes), sentences)
        for sentence, expected in zip(sentences, mistakes.values()):
            self.assertRegex(sentence, expected)
