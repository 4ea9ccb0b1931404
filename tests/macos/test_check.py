"""Each thing that a Mac would refuse, or that must not leave the building machine, is named by the check."""
import ast
import dataclasses
import plistlib
import re
import shutil
import struct
import unittest
from unittest import mock

import fixture
from macos import archive, check, information, macho, sysroot, verify


class Check(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = fixture.folder(cls.addClassCleanup)
        cls.libraries = sysroot.read_libraries()
        cls.good = fixture.link(cls.folder, "arm64", options=fixture.PROGRAM_OPTIONS)

    def problems(self, code, libraries=None):
        return list(check.check_image(macho.read_image(bytes(code)), libraries or self.libraries, any_symbol=False))

    def assert_problem(self, sentence, code, libraries=None):
        found = self.problems(code, libraries)
        self.assertEqual(len(found), 1, found)
        self.assertRegex(found[0], sentence)

    def linked(self, source=fixture.SOURCE, *options, **changes):
        return fixture.link(self.folder, "arm64", source=source, options=[*fixture.PROGRAM_OPTIONS, *options], **changes)

    def changed(self, position, layout, value):
        code = bytearray(self.good)
        struct.pack_into(layout, code, position, value)
        return code

    def test_header(self):
        image = macho.read_image(self.good)
        places = {"header": 0, "build": image.command(macho.LC_BUILD_VERSION),
                  "segment": image.segment("__DATA_CONST").command}
        for change, sentence in fixture.rows("header.txt"):
            place, behind, value = change.split()
            self.assert_problem(sentence, self.changed(places[place] + int(behind), "<I", int(value, 0)))
        self.assert_problem("no unwind tables", self.good.replace(b"__unwind_info", b"__unwind_none"))

    def test_linking(self):
        (self.folder / "stubs" / "libextra.tbd").write_text(
            sysroot.stub_text(sysroot.Library("extra", "/usr/lib/libextra.dylib", "1", "1", [])))
        for change, sentence in fixture.rows("linked.txt"):
            options, _, source = change.partition("\n")
            self.assert_problem(sentence, self.linked(fixture.SOURCE + source, *options.split()))
        self.assert_problem("does not load .*AppKit", self.linked(libraries=fixture.all_libraries()[1:]))

    def listed(self, place=None, *symbol):
        """The table with _objc_getClass under one library alone, or nowhere."""
        return [dataclasses.replace(library, symbols=[
            *(each for each in library.symbols if each.name != "_objc_getClass"),
            *([sysroot.Symbol("_objc_getClass", *symbol)] if library.name == place else [])])
            for library in self.libraries]

    def test_imports(self):
        for sentence, *change in (
                ("which .* does not list",),
                ("from /usr/lib/libobjc.A.dylib, but .*/AppKit has it", "AppKit", (10, 0), ""),
                ("which begins with macOS 14.2", "objc", (14, 2), ""),
                ("which .* for this processor", "objc", (10, 0), "x86_64")):
            self.assert_problem(f"takes _objc_getClass,? {sentence}", self.good, self.listed(*change))
        weak = fixture.SOURCE.replace("extern const void *k", "extern __attribute__((weak_import)) const void *k")
        self.assertRegex(self.problems(self.linked(weak))[0], "takes _kCFRunLoopCommonModes weakly")

    def test_reach(self):
        """No function of the table writes a file, connects to anything or starts a program: all are of these kinds."""
        harmless = re.compile(
            "_*(AX|CGEvent|kAX|kC[FG]|CFRunLoop|CFMachPort|CF(Equal|Hash|GetTypeID|Release|Retain)$|NSImageName|UTType|"
            "class_|ivar_|objc_|sel_|dispatch_|(mem(cmp|cpy|move|set)|strlen|malloc|free|abort|cxa_atexit)$|stack_chk_)")
        for library in self.libraries:
            for symbol in library.symbols:
                self.assertTrue(harmless.match(symbol.name), f"what can {symbol.name} reach?")

    def test_library_versions(self):
        newer = [dataclasses.replace(library, current="2500.1") if library.name == "AppKit" else library
                 for library in self.libraries]
        self.assert_problem(r"linked with version 2299\.0 of .*/AppKit, compatible with 45\.0; .* says 2500\.1 and 45",
                            self.good, newer)

    def test_text_of_the_building_machine(self):
        def holding(text):
            return self.linked(fixture.SOURCE + f'__attribute__((used)) const char left[] = "{text}";\n')

        for text in ("/home/someone/tarnwick/app/Main", "/usr/lib/llvm/include", "read /opt/tools/cc now",
                     "remap/EventTap.cpp", "_ZN7desktop8resolvedEv"):
            self.assert_problem('the text ".*" of the machine', holding(text))
        for text in ("/Applications/Some.app", "https://example.org/page/one", "50 km/h"):
            self.assertEqual(self.problems(holding(text)), [], text)

    def test_debugger_symbols(self):
        unstripped = [word for word in fixture.LINK_OPTIONS if word not in ("-Wl,-S", "-Wl,-x")]
        with mock.patch.object(fixture, "LINK_OPTIONS", unstripped):
            problems = self.problems(self.linked(fixture.SOURCE, "-g"))
        self.assertTrue(any("symbols for the debugger" in problem for problem in problems), problems)


class Bundle(unittest.TestCase):
    """What the check says of the bundle and of its archive."""

    @classmethod
    def setUpClass(cls):
        cls.folder = fixture.folder(cls.addClassCleanup)
        cls.code = fixture.program(cls.folder)

    def setUp(self):
        shutil.rmtree(self.folder / "Tarnwick.app", ignore_errors=True)
        self.bundle, self.archive = fixture.make_bundle(self.folder, self.code), self.folder / "Tarnwick.zip"

    def problems(self):
        archive.normalise(self.bundle, fixture.MOMENT)
        archive.write(self.bundle, self.archive)
        return check.check_bundle(self.bundle, self.archive)[0]

    def test_good(self):
        self.assertEqual(self.problems(), [])
        figures = check.check_bundle(self.bundle, self.archive)[1]
        self.assertRegex(figures[0], r"^x86_64: code \d+ bytes, .* 2 imported symbols, 0 static initialisers$")
        self.assertRegex(figures[2], r"^Tarnwick.zip: \d+ bytes$")

    def test_faults(self):
        (self.folder / "slice").write_bytes(macho.slices(self.code)[0])
        for commands, sentence in fixture.rows("bundle.txt"):
            self.setUp()
            fixture.change(self.bundle / "Contents", commands)
            self.assertRegex("\n".join(self.problems()), sentence)
        self.setUp()
        (self.bundle / "Contents" / "MacOS" / "Tarnwick").chmod(0o777)
        archive.write(self.bundle, self.archive)
        with self.assertRaisesRegex(verify.VerificationError, "MacOS/Tarnwick has the permissions 777"):
            check.check_bundle(self.bundle, self.archive)

    def test_information(self):
        file = self.bundle / "Contents" / "Info.plist"
        good = plistlib.loads(file.read_bytes())
        for change, sentence in fixture.rows("information.txt"):
            file.write_bytes(plistlib.dumps({**good, **ast.literal_eval(change)}))
            self.assertRegex("\n".join(self.problems()), f"Info.plist: .*{sentence}", change)
        with_framework = list(information.check({**good, "SUFeedURL": "https://example.org/feed"}, has_framework=True))
        self.assertEqual(with_framework, [])
