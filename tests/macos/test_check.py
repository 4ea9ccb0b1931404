"""Each thing that a Mac would refuse, or that must not leave the building machine, is named by the check."""
import struct
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import fixture
from macos import check, macho, sysroot


class Check(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.work.cleanup)
        cls.folder = Path(cls.work.name)
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

    def test_good_program_of_either_processor(self):
        self.assertEqual(self.problems(self.good), [])
        other = fixture.link(self.folder, "x86_64", options=fixture.PROGRAM_OPTIONS)
        self.assertEqual(self.problems(other), [])

    def test_header(self):
        flags = struct.unpack_from("<I", self.good, 24)[0]
        build = macho.read_image(self.good).command(macho.LC_BUILD_VERSION)
        for sentence, code in [
                ("not position independent", self.changed(24, "<I", flags & ~check.FLAG_PIE)),
                ("flat namespace", self.changed(24, "<I", flags & ~check.FLAG_TWO_LEVEL)),
                ("executable stack", self.changed(24, "<I", flags | check.FLAG_STACK_EXECUTION)),
                ("not a program", self.changed(12, "<I", 6)),
                ("for platform 2, not for macOS", self.changed(build + 8, "<I", 2)),
                (r"oldest system is macOS 14\.0, not 13\.0", self.changed(build + 12, "<I", 14 << 16)),
                ("does not say for which system", self.changed(build, "<I", 0x7F))]:
            with self.subTest(sentence):
                self.assert_problem(sentence, code)

    def test_segment_that_is_written_and_executed(self):
        segment = macho.read_image(self.good).segment("__DATA_CONST") or macho.read_image(self.good).segment("__TEXT")
        self.assert_problem("may be written and executed", self.changed(segment.command + 56, "<I", 7))

    def test_libraries(self):
        names = [f"-framework{library.name}" if library.is_framework else f"-l{library.name}"
                 for library in self.libraries]
        (self.folder / "stubs" / "libextra.tbd").write_text(
            sysroot.stub_text(sysroot.Library("extra", "/usr/lib/libextra.dylib", [])))
        for sentence, code in [
                ("does not load .*AppKit", self.linked(libraries=names[1:])),
                ("loads /usr/lib/libextra.dylib, which", self.linked(libraries=[*names, "-lextra"])),
                ("loads .*/AppKit by LC_LOAD_WEAK_DYLIB",
                 self.linked(libraries=["-Wl,-weak_framework,AppKit", *names[1:]])),
                ("looks for libraries in /usr/lib", self.linked(fixture.SOURCE, "-Wl,-rpath,/usr/lib/swift"))]:
            with self.subTest(sentence):
                self.assert_problem(sentence, code)

    def without(self, name):
        """The table as if a symbol were not listed."""
        return [sysroot.Library(library.name, library.install_name,
                                [symbol for symbol in library.symbols if symbol.name != name])
                for library in self.libraries]

    def listed(self, library_name, symbol):
        """The table with a symbol under the given library alone."""
        table = self.without(symbol.name)
        next(library for library in table if library.name == library_name).symbols.append(symbol)
        return table

    def test_imports(self):
        weak = fixture.SOURCE.replace("extern const void *k", "extern __attribute__((weak_import)) const void *k")
        self.assert_problem("takes _objc_getClass, which .* does not list", self.good, self.without("_objc_getClass"))
        self.assert_problem("takes _objc_getClass from /usr/lib/libobjc.A.dylib, but .*/AppKit has it", self.good,
                            self.listed("AppKit", sysroot.Symbol("_objc_getClass", (10, 0), "")))
        self.assert_problem("takes _objc_getClass, which begins with macOS 14.2", self.good,
                            self.listed("objc", sysroot.Symbol("_objc_getClass", (14, 2), "")))
        self.assert_problem("takes _objc_getClass, which .* for this processor", self.good,
                            self.listed("objc", sysroot.Symbol("_objc_getClass", (10, 0), "x86_64")))
        self.assertRegex(self.problems(self.linked(weak))[0], "takes _kCFRunLoopCommonModes weakly")

    def test_exports(self):
        exporting = fixture.link(self.folder, "arm64", fixture.SOURCE + "int offered(void) { return 1; }\n",
                                 ["-Wl,-exported_symbol,_offered", *fixture.PROGRAM_OPTIONS])
        self.assert_problem("offers _offered to others", exporting)

    def test_static_initialiser(self):
        early = "volatile int early; __attribute__((constructor)) void first(void) { early = 1; }\n"
        self.assert_problem("runs 1 static initialiser before main", self.linked(fixture.SOURCE + early))

    def test_text_of_the_building_machine(self):
        for text in ("/home/someone/tarnwick/app/Main", "/usr/lib/llvm/include", "read /opt/tools/cc now",
                     "remap/EventTap.cpp", "_ZN7desktop8resolvedEv"):
            with self.subTest(text):
                code = self.linked(fixture.SOURCE + f'__attribute__((used)) const char left[] = "{text}";\n')
                self.assert_problem('the text ".*" of the machine', code)
        for text in ("/Applications/Some.app", "https://example.org/page/one", "50 km/h"):
            with self.subTest(text):
                self.assertEqual(self.problems(self.linked(
                    fixture.SOURCE + f'__attribute__((used)) const char left[] = "{text}";\n')), [])

    def test_debugger_symbols(self):
        unstripped = [word for word in fixture.LINK_OPTIONS if word not in ("-Wl,-S", "-Wl,-x")]
        with mock.patch.object(fixture, "LINK_OPTIONS", unstripped):
            problems = self.problems(self.linked(fixture.SOURCE, "-g"))
        self.assertTrue(any("symbols for the debugger" in problem for problem in problems), problems)


class Bundle(unittest.TestCase):
    """What the check says of the bundle and of its archive."""

    def setUp(self):
        work = tempfile.TemporaryDirectory()
        self.addCleanup(work.cleanup)
        self.folder = Path(work.name)
        self.bundle = fixture.make_bundle(self.folder, fixture.program(self.folder))
        self.archive = self.folder / "Tarnwick.zip"
        self.archive.write_bytes(bytes(1000))

    def test_good(self):
        problems, figures = check.check_bundle(self.bundle, self.archive)
        self.assertEqual(problems, [])
        self.assertRegex(figures[0], r"^x86_64: code \d+ bytes, .* 2 imported symbols, 0 static initialisers$")
        self.assertEqual(figures[2], "Tarnwick.zip: 1000 bytes")

    def test_faults(self):
        contents = self.bundle / "Contents"
        program, information = contents / "MacOS" / "Tarnwick", contents / "Info.plist"
        one = macho.join(macho.slices(program.read_bytes())[:1])
        for fault, sentence in [
                (lambda: self.archive.write_bytes(bytes(check.LARGEST_ARCHIVE + 1)), "Tarnwick.zip has 300001 bytes"),
                (lambda: program.write_bytes(one), "for x86_64, not for arm64 and x86_64"),
                (lambda: information.write_bytes(information.read_bytes().replace(b"13.0", b"12.0")),
                 "LSMinimumSystemVersion is 12.0"),
                ((contents / "Resources" / "AppIcon.icns").unlink, "Resources/AppIcon.icns is missing")]:
            fault()
            problems, _ = check.check_bundle(self.bundle, self.archive)
            self.assertTrue(any(sentence in problem for problem in problems), problems)
