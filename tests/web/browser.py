"""The page in a real browser without a window: Debian's chromium, worked through its own driver."""
import tempfile
import unittest
from pathlib import Path

from selenium import webdriver
from selenium.common.exceptions import TimeoutException
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.actions.wheel_input import ScrollOrigin
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

ROOT = Path(__file__).resolve().parents[2]
PAGE = (ROOT / "build" / "web" / "try.html").as_uri()
COMMAND = ROOT / "build" / "tarnwick"
# No sandbox, since it refuses to run as root; nothing that asks the network by itself.
ARGUMENTS = ("--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
             "--disable-component-update", "--disable-sync", "--disable-quic", "--window-size=1280,1000")
PLAY = """const [session, {files, ...options}, done] = arguments;
if (options.defaults) options.defaults = Uint8Array.from(options.defaults);
options.files = Object.fromEntries(Object.entries(files).map(([name, bytes]) => [name, Uint8Array.from(bytes)]));
tarnwick.play(session, options).then(done, error => done({failed: error.message}));"""


class BrowserTest(unittest.TestCase):
    """One browser for all tests of a class, and the page opened anew for each."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        options = Options()
        for argument in (*ARGUMENTS, f"--user-data-dir={folder.name}"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        cls.addClassCleanup(cls.browser.quit)
        cls.browser.set_script_timeout(60)

    def setUp(self):
        self.open()

    def tearDown(self):
        self.assertEqual(self.browser.get_log("browser"), [], "the console stays empty")

    def open(self, fragment=""):
        """The page, as soon as it shows something."""
        self.browser.get("about:blank")
        self.browser.get(PAGE + fragment)
        self.wait(lambda: self.latest() or "(" in self.fault(), "the page stays empty")

    def fault(self):
        return self.browser.find_element(By.ID, "fault").text

    def play(self, session, defaults=None, files=None, **options):
        """One session in the page's program, not shown. Defaults and files are bytes."""
        options["files"] = {name: list(content) for name, content in (files or {}).items()}
        options["defaults"] = defaults and list(defaults)
        played = self.browser.execute_async_script(PLAY, session, options)
        self.assertNotIn("failed", played)
        return played

    def wait(self, condition, message=""):
        return WebDriverWait(self.browser, 20, poll_frequency=0.05).until(lambda browser: condition(), message)

    def frame(self):
        """Waits until the browser has painted what the page shows: a wheel and a drag go by what is painted."""
        self.browser.execute_async_script("requestAnimationFrame(() => requestAnimationFrame(arguments[0]))")

    def part(self, kind, name=None):
        """What is marked so in the picture; nothing where it is not."""
        selector = f"[data-{kind}]" if name is None else f"[data-{kind}='{name}']"
        return self.browser.execute_script(
            "return document.getElementById('screen').shadowRoot.querySelector(arguments[0])", selector)

    def click(self, kind, name=None):
        """Clicks in the picture as soon as the part is there, and in sight: where it has the focus, it is."""
        element = self.wait(lambda: self.part(kind, name), f"no {kind} {name}")
        self.browser.execute_script("arguments[0].focus()", element)
        ActionChains(self.browser).move_to_element(element).click().perform()

    def button(self, label):
        """A button of the page, clicked."""
        ActionChains(self.browser).click(self.browser.find_element(By.XPATH, f"//button[.='{label}']")).perform()

    def press(self, key, *modifiers):
        chain = ActionChains(self.browser)
        for modifier in modifiers:
            chain.key_down(modifier)
        chain.send_keys(key)
        for modifier in reversed(modifiers):
            chain.key_up(modifier)
        chain.perform()

    def happens(self, expected):
        """Waits until the page says so of the last thing done."""
        try:
            self.wait(lambda: self.latest() == expected)
        except TimeoutException:
            self.fail(f"{expected!r} did not happen; the page says {self.latest()!r} {self.fault()!r}")

    def latest(self):
        return self.browser.find_element(By.ID, "latest").get_property("textContent")

    def presses(self, expected, key, *modifiers):
        self.press(key, *modifiers)
        self.happens(expected)

    def session(self):
        return self.browser.find_element(By.ID, "session").get_property("value")


__all__ = ["ActionChains", "BrowserTest", "By", "COMMAND", "Keys", "ROOT", "ScrollOrigin"]
