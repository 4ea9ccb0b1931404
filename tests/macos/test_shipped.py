"""The program that is shipped, played here by both processors' commands: it does what the native command does."""
import functools
import shutil
import signal
import struct
import subprocess
import unittest

import fixture
from macos import macho
from macos.shipped import sessions

BUILD = fixture.ROOT / "build"
NATIVE = BUILD / "tarnwick"
APPLICATION = BUILD / "macos" / "Tarnwick.app"
COMMANDS = {"x86_64": BUILD / "macos" / "tarnwick-shipped", "arm64": BUILD / "macos" / "tarnwick-shipped-arm64"}
# A minute is the commands' own limit; this one is for a machine with much else to do.
PATIENCE = 300
LC_CHAINED_FIXUPS = 0x80000034


def run(command, *words, folder, **options):
    """(status, output, complaints) of a command."""
    ended = subprocess.run([command, *words], cwd=folder, capture_output=True, timeout=PATIENCE, check=False, **options)
    return ended.returncode, ended.stdout.decode(), ended.stderr.decode()


class Sessions(unittest.TestCase):
    """Every session, compared with what the native command leaves: all it says, and all files."""

    def left(self, command, session):
        folder = shutil.copytree(session.folder, fixture.folder(self.addCleanup) / "sessions")
        said = run(command, *session.words, folder=folder)
        return said, {path.name: path.read_bytes() for path in sorted(folder.iterdir()) if path.is_file()}

    def test_everything_is_as_the_native_command_leaves_it(self):
        for session in sessions.all_sessions():
            said, files = self.left(NATIVE, session)
            self.assertEqual(said[0], 0, said)
            for processor, command in COMMANDS.items():
                with self.subTest(session=session.name, processor=processor):
                    said_here, files_here = self.left(command, session)
                    self.assertEqual(said_here, said)
                    self.assertEqual(files_here, files)


class Case(unittest.TestCase):
    """Commands beside a program of the test's own."""

    def setUp(self):
        self.folder = fixture.folder(self.addCleanup)
        self.program = self.folder / "Tarnwick.app" / "Contents" / "MacOS" / "Tarnwick"
        self.program.parent.mkdir(parents=True)
        for command in COMMANDS.values():
            shutil.copy(command, self.folder)
        shutil.copy(f"{COMMANDS['arm64']}.elf", self.folder)

    def play(self, processor, code, session="press ctrl+c\n", **options):
        """What the command says and answers with this program; None is no program at all."""
        self.program.unlink(missing_ok=True)
        if code is not None:
            self.program.write_bytes(code)
        # A second is enough here for a program to be found out that never comes back.
        command = f'ulimit -S -t 1; exec ./{COMMANDS[processor].name} --trace'
        return run("sh", "-c", command, folder=self.folder, input=session.encode(), **options)

    def mac_program(self, source):
        """A universal program from these lines of C."""
        return fixture.program(fixture.folder(self.addCleanup), source=source)

    def expect_refusal(self, code, sentence, **options):
        for processor in COMMANDS:
            with self.subTest(processor, sentence=sentence):
                status, _, complaints = self.play(processor, code, **options)
                self.assertRegex(complaints, rf"\Atarnwick: .*{sentence}\n\Z")
                self.assertEqual(status, 2)


@functools.cache
def shipped():
    return (APPLICATION / "Contents" / "MacOS" / "Tarnwick").read_bytes()


def changed_slices(change):
    """The shipped program, each of its slices changed in place."""
    parts = [bytearray(part) for part in macho.slices(shipped())]
    for part in parts:
        change(part, dict(macho.read_image(bytes(part)).commands))
    return fixture.universal([bytes(part) for part in parts])


def tables(part, commands):
    """Where load commands begin, the table of the pointers that depend on where things lie, and that of the first segment
    that has any."""
    fixups = struct.unpack_from("<I", part, commands[LC_CHAINED_FIXUPS] + 8)[0]
    starts = fixups + struct.unpack_from("<I", part, fixups + 4)[0]
    offsets = struct.unpack_from(f"<{struct.unpack_from('<I', part, starts)[0]}I", part, starts + 4)
    return {"version": commands[macho.LC_BUILD_VERSION], "main": commands[macho.LC_MAIN], "fixups": fixups,
            "data": macho.read_image(bytes(part)).segment("__DATA").command, "pointers": starts + next(filter(None, offsets))}


class Refusals(Case):
    """Files that are no such program, or have what the loader does not know."""

    def test_no_program(self):
        self.expect_refusal(None, "Tarnwick cannot be read: No such file or directory")
        self.expect_refusal(b"", "Tarnwick is cut off")
        self.expect_refusal(b"#!/bin/sh\n" * 100, "Tarnwick is not a universal program")
        self.expect_refusal(macho.slices(shipped())[0], "Tarnwick is not a universal program")
        self.expect_refusal(fixture.library(fixture.folder(self.addCleanup)),
                            "Tarnwick has a slice that is not a program for this processor")

    def test_other_processor(self):
        for part, missing in zip(macho.slices(shipped()), reversed(macho.slices(shipped()))):
            processor = macho.read_image(missing).processor
            status, _, complaints = self.play(processor, fixture.universal([part]))
            self.assertIn("Tarnwick has no slice for this processor\n", complaints)
            self.assertEqual(status, 2)

    def test_cut_off(self):
        parts = macho.slices(shipped())
        for size in (0, 30, 200, 1000, len(parts[0]) // 2, len(parts[0]) - 20_000):
            self.expect_refusal(fixture.universal([part[:size] for part in parts]) if size > 8 else shipped()[:4096 + size],
                                "Tarnwick is cut off")

    def test_tables(self):
        for sentence, layout, table, offset, value in (
                ("a load command 0x80000099, which the loader does not know", "<I", "version", 0, 0x80000099),
                ("a load command without a size", "<I", "main", 4, 0),
                ("no entry", "<Q", "main", 8, 0),
                ("its entry outside its code", "<Q", "main", 8, 1 << 30),
                ("a segment that nobody has room for", "<Q", "data", 32, 1 << 40),
                ("a segment that is larger than its memory", "<Q", "data", 48, 1 << 20),
                ("imports of a kind that the loader does not know", "<I", "fixups", 20, 2),
                ("pointers of a kind that the loader does not know", "<H", "pointers", 6, 6),
                ("a pointer outside of itself", "<Q", "pointers", 8, 1 << 40)):
            self.expect_refusal(changed_slices(lambda part, commands: struct.pack_into(
                layout, part, tables(part, commands)[table] + offset, value)), f"Tarnwick has {sentence}")

    def test_features(self):
        for name, source in (
                ("__.*init.*", "__attribute__((constructor)) void early(void) { __builtin_trap(); }"),
                ("__objc_classlist", '__attribute__((section("__DATA,__objc_classlist"), used)) void *list[1];')):
            self.expect_refusal(self.mac_program(f"{source}\nint main(void) {{ return 0; }}\n"),
                                f"section {name}, which the loader does not know")

    def test_names_of_imports(self):
        for name, sentence in ((b"_CGEventPast", "imports _CGEventPast, which the stand-in does not have"),
                               (b"_CGEvent\nost", "has a name that is not readable")):
            self.expect_refusal(shipped().replace(b"_CGEventPost\0", name + b"\0"), sentence)

    def test_no_damage_goes_unnoticed(self):
        """Bytes in what the loader reads; it says a sentence, or plays what is left of the program."""
        step = {"x86_64": 31, "arm64": 509}
        for part in macho.slices(shipped()):
            image = macho.read_image(part)
            fixups, size = struct.unpack_from("<2I", part, dict(image.commands)[LC_CHAINED_FIXUPS] + 8)
            header = struct.unpack_from("<I", part, 20)[0] + 32
            places = [*range(0, header), *range(fixups, fixups + min(size, 400))][::step[image.processor]]
            for place in places:
                with self.subTest(processor=image.processor, place=place):
                    damaged = bytearray(part)
                    damaged[place] ^= 0xFF
                    whole = fixture.universal([part])
                    whole = whole[:len(whole) - len(part)] + bytes(damaged)
                    status, _, complaints = self.play(image.processor, whole)
                    self.assertIn(status, (0, 2), complaints)
                    self.assertEqual(status == 2, complaints.startswith("tarnwick: "), complaints)


MESSAGES = """
extern void *objc_getClass(const char *), *sel_registerName(const char *), objc_release(void *);
extern void objc_msgSend(void), objc_msgSendSuper(void);
extern int class_addMethod(void *, void *, int (*)(void), const char *);
#define SEND(type, receiver, selector) ((type(*)(void *, void *))objc_msgSend)(receiver, sel_registerName(selector))
#define SUPER(receiver, name, selector) ((void (*)(void *, void *))objc_msgSendSuper)( \\
  (void *[]){receiver, objc_getClass(name)}, sel_registerName(selector))
#define ADD(name, selector, encoding) class_addMethod(objc_getClass(name), selector, main, encoding)
int main(void) {
  void *object = SEND(void *, SEND(void *, objc_getClass("NSMenu"), "alloc"), "init");
  %s
  return 0;
}
"""


class Failures(Case):
    """What the machine code itself does wrong."""

    def test_program_that_stops(self):
        for body, sentence in (
                ("for (;;) ;", "has computed for too long and was ended"),
                ("__builtin_trap();", "an instruction that stops it"),
                ("return *(volatile int *)8;", "memory that is not there"),
                ("volatile int part = 1; return main() + part;", "memory that is not there"),
                ("abort();", "was aborted, by itself or by the C library")):
            self.expect_refusal(self.mac_program(f"void abort(void);\nint main(void) {{ {body} }}\n"), sentence)
        self.expect_refusal(self.mac_program(MESSAGES % 'ADD("NSMenu", object, "v@:c");'),
                            "asked for what the stand-in cannot do: .*at")

    def test_program_that_waits(self):
        code = self.mac_program("void abort(void);\nint main(void) { abort(); }\n").replace(b"_abort\0", b"_pause\0")
        self.expect_refusal(code, "has waited for too long and was ended", preexec_fn=lambda: signal.alarm(3))

    def test_missing_parts(self):
        status, _, complaints = run("/bin/sh", COMMANDS["arm64"].name, folder=self.folder, env={"PATH": ""})
        self.assertEqual((status, complaints), (2, "tarnwick-shipped-arm64: qemu-aarch64 is missing; it is in the package "
                                                   "qemu-user\n"))
        (self.folder / "link").symlink_to(COMMANDS["arm64"].name)
        self.assertEqual(run("./link", "--version", folder=self.folder), run(NATIVE, "--version", folder=self.folder))
        (self.folder / f"{COMMANDS['arm64'].name}.elf").unlink()
        status, _, complaints = run("./link", folder=self.folder)
        self.assertRegex(complaints, r"\Atarnwick-shipped-arm64: .*arm64\.elf is missing; .*\n\Z")
        self.assertEqual(status, 2)

    def test_messages(self):
        """The stand-in tells what is wrong and aborts, as the native command does."""
        own = 'sel_registerName("own")'
        for line, sentence, *processors in (
                ('SEND(void, object, "nonsense");', "there is no method 'nonsense' of a NSMenu"),
                ('objc_release(object); SEND(void, object, "init");', "message 'init' to a released NSMenu"),
                ('SEND(void, 0, "init");', "message 'init' to nothing"),
                ('SUPER(object, "NSMenu", "init");', "a message to super starts at no class above the receiver's"),
                (f'ADD("NSMenu", {own}, "v@:c");', "'own' takes a narrow argument: v@:c"),
                (f'ADD("NSMenu", {own}, "B@:");', "'own' answers a bool, which is no BOOL there", "x86_64"),
                (f'ADD("NSAlert", {own}, "c@:qqqqqqqqq"); SEND(void, SEND(void *, objc_getClass("NSAlert"), "alloc"), "own");',
                 "'own' of a NSAlert takes arguments in memory, which the loader does not know: .@:qqqqqqqqq"),
                ('SEND(void, SEND(void *, SEND(void *, objc_getClass("NSView"), "alloc"), "init"), "frame");',
                 "'frame' of a NSView answers {CGRect={CGPoint=dd}{CGSize=dd}}@:, but was asked for another kind of result",
                 "x86_64")):
            code = self.mac_program(MESSAGES % line)
            for processor in processors or COMMANDS:
                with self.subTest(sentence=sentence, processor=processor):
                    status, _, complaints = self.play(processor, code)
                    self.assertRegex(complaints, rf"\Atarnwick: {sentence}\n\Z")
                    self.assertEqual(status, -signal.SIGABRT)
