"""The program that is shipped, played here by both processors' commands: it does what the native command does."""
import functools
import shutil
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
# A minute of the processor is the commands' own limit; this one is for a machine with much else to do.
PATIENCE = 300


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

    def play(self, processor, code, session="press ctrl+c\n"):
        """What the command says and answers with this program; None is no program at all."""
        self.program.unlink(missing_ok=True)
        if code is not None:
            self.program.write_bytes(code)
        # A second is enough here for a program to be found out that never comes back.
        command = f'ulimit -S -t 1; exec ./{COMMANDS[processor].name} --trace'
        return run("sh", "-c", command, folder=self.folder, input=session.encode())

    def mac_program(self, source):
        """A universal program from these lines of C."""
        return fixture.program(fixture.folder(self.addCleanup), source=source)

    def expect_refusal(self, code, sentence):
        for processor in COMMANDS:
            with self.subTest(processor):
                status, _, complaints = self.play(processor, code)
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

    def test_load_commands(self):
        for sentence, layout, command, offset, value in (
                ("load command 0x80000099, which the loader does not know", "<I",
                 macho.LC_BUILD_VERSION, 0, lambda part: 0x80000099),
                ("a load command without a size", "<I", macho.LC_MAIN, 4, lambda part: 0),
                ("its entry outside its code", "<Q", macho.LC_MAIN, 8,
                 lambda part: macho.read_image(bytes(part)).segment("__DATA").file_offset)):
            self.expect_refusal(changed_slices(lambda part, commands: struct.pack_into(
                layout, part, commands[command] + offset, value(part))), sentence)

    def test_features(self):
        for name, source in (
                ("__.*init.*", "__attribute__((constructor)) void early(void) { __builtin_trap(); }"),
                ("__objc_classlist", '__attribute__((section("__DATA,__objc_classlist"), used)) void *list[1];')):
            self.expect_refusal(self.mac_program(f"{source}\nint main(void) {{ return 0; }}\n"),
                                f"section {name}, which the loader does not know")

    def test_import_that_the_stand_in_lacks(self):
        self.expect_refusal(shipped().replace(b"_CGEventPost\0", b"_CGEventPast\0"),
                            "imports _CGEventPast, which the stand-in does not have")

    def test_no_damage_goes_unnoticed(self):
        """Bytes in what the loader reads; it says a sentence, or plays what is left of the program."""
        step = {"x86_64": 31, "arm64": 509}
        for part in macho.slices(shipped()):
            image = macho.read_image(part)
            fixups, size = struct.unpack_from("<2I", part, dict(image.commands)[0x80000034] + 8)
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
#define SEND(type, receiver, selector) ((type(*)(void *, void *))objc_msgSend)(receiver, sel_registerName(selector))
#define SUPER(receiver, name, selector) ((void (*)(void *, void *))objc_msgSendSuper)( \\
  (void *[]){receiver, objc_getClass(name)}, sel_registerName(selector))
int main(void) {
  void *object = SEND(void *, SEND(void *, objc_getClass("NSMenu"), "alloc"), "init");
  %s
  return 0;
}
"""


class Failures(Case):
    """What the machine code itself does wrong."""

    def test_program_that_stops(self):
        self.expect_refusal(self.mac_program("int main(void) { for (;;) ; }\n"), "has computed for too long and was ended")
        self.expect_refusal(self.mac_program("int main(void) { __builtin_trap(); }\n"), "an instruction that stops it")
        self.expect_refusal(self.mac_program("int main(void) { return *(volatile int *)8; }\n"), "memory that is not there")
        deep = "int main(void) { volatile int part = 1; return main() + part; }\n"
        self.expect_refusal(self.mac_program(deep), "memory that is not there")

    def test_missing_emulator(self):
        status, _, complaints = run("/bin/sh", COMMANDS["arm64"].name, folder=self.folder, env={"PATH": ""})
        self.assertEqual((status, complaints), (2, "tarnwick-shipped-arm64: qemu-aarch64 is missing; it is in the package "
                                                   "qemu-user\n"))

    def test_messages(self):
        for line, sentence in (
                ('SEND(void, object, "nonsense");', "there is no method 'nonsense' of a NSMenu"),
                ('objc_release(object); SEND(void, object, "init");', "message 'init' to a released NSMenu"),
                ('SEND(void, 0, "init");', "message 'init' to nothing"),
                ('SUPER(object, "NSMenu", "init");', "a message to super starts at no class above the receiver's")):
            code = self.mac_program(MESSAGES % line)
            for processor in COMMANDS:
                with self.subTest(sentence=sentence, processor=processor):
                    self.assertIn(f"tarnwick: {sentence}\n", self.play(processor, code)[2])
