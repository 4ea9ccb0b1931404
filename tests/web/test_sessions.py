"""The page's program gives what the command gives."""
import subprocess

from browser import COMMAND, ROOT, BrowserTest

SESSIONS = ROOT / "tests" / "sessions"
PICTURES = ROOT / "docs" / "pictures"


def options_of(session):
    """What the first line of a session asks for: `# options: --defaults FILE`, or a bundle beside it."""
    marker, first = "# options: ", session.read_text().partition("\n")[0]
    words = first.removeprefix(marker).split() if first.startswith(marker) else []
    named = dict(zip(words[::2], words[1::2]))
    options = {"files": {f"/{file.relative_to(SESSIONS)}": file.read_bytes()
                         for file in SESSIONS.glob("*.app/**/*") if file.is_file()}}
    if "--defaults" in named:
        options["defaults"] = (SESSIONS / named["--defaults"]).read_bytes()
    if "--bundle" in named:
        options["bundle"] = named["--bundle"]
    return options


class Sessions(BrowserTest):
    def test_sessions_leave_their_traces(self):
        sessions = sorted(SESSIONS.glob("*.txt"))
        self.assertTrue(sessions)
        for session in sessions:
            with self.subTest(session.name):
                played = self.play(session.read_text(), **options_of(session), trace=True)
                expected = {"output": session.with_suffix(".trace").read_text(), "complaints": "", "status": 0}
                self.assertEqual({key: played[key] for key in expected}, expected)

    def test_pictures_have_the_same_bytes(self):
        sessions = sorted(PICTURES.glob("*.session"))
        self.assertTrue(sessions)
        for session in sessions:
            with self.subTest(session.name):
                stored = session.with_suffix(".plist")
                played = self.play(session.read_text(), stored.read_bytes() if stored.exists() else None)
                self.assertEqual(played["picture"], session.with_suffix(".svg").read_text())

    def test_the_last_picture_is_the_one_that_is_answered(self):
        played = self.play("screen 300 200\ndraw a.svg\nscreen 400 200\ndraw b.svg\ndraw a.svg\ndraw none/c.svg\n")
        self.assertIn('width="400"', played["picture"])
        self.assertIn("none/c.svg cannot be written", played["complaints"])
        self.assertEqual(self.play("press a\n")["picture"], "")

    def test_mistakes_are_told_as_the_command_tells_them(self):
        for session in ("press ctrl+nokey\n", "launch\n\njump\n", 'menu "Sett\n'):
            with self.subTest(session):
                expected = subprocess.run([COMMAND, "/dev/stdin"], input=session, capture_output=True, text=True)
                played = self.play(session)
                self.assertEqual((played["status"], played["output"]), (2, ""))
                self.assertEqual(played["complaints"], expected.stderr.replace("/dev/stdin", "session"))
        damaged = self.play("show defaults\n", b"<plist><dict>")
        self.assertIn("/defaults/stored.plist", damaged["complaints"])
