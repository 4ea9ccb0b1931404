"""What visitors of the page do, with real clicks and keys, and what they see of it."""
import base64
import gzip
import subprocess

from browser import COMMAND, ActionChains, BrowserTest, By, Keys, ScrollOrigin

REPLAY = """const started = performance.now();
tarnwick.play("press ctrl+c\\n".repeat(1000)).then(() => arguments[0](performance.now() - started));"""


def link_of(session):
    return "#" + base64.urlsafe_b64encode(gzip.compress(session.encode())).decode().rstrip("=")


class Visitors(BrowserTest):
    def choose(self, entry):
        self.click("status")
        self.click("entry", entry)

    def where(self):
        return self.browser.find_element(By.ID, "where").text

    def test_keys_arrive_by_their_place(self):
        self.presses("Ctrl+C → Editor receives Cmd+C", "c", Keys.CONTROL)
        self.presses("A → Editor receives A", "a")
        self.presses("Ctrl+Comma → Editor receives Ctrl+Comma", ",", Keys.CONTROL)
        self.presses("Ctrl+Shift+Left → Editor receives Option+Shift+Left", Keys.LEFT, Keys.CONTROL, Keys.SHIFT)
        self.button("Win+L")
        self.happens("Win+L → Editor receives Cmd+Ctrl+Q")
        self.assertEqual(self.where(), "Keys go to Editor. Tab leaves the desktop.")
        self.press(Keys.TAB)
        self.wait(lambda: self.where() == "Keys go to Editor. Tab leaves the desktop.")  # the menu's sign, in the picture
        self.press(Keys.TAB)
        self.wait(lambda: self.where() == "Click the desktop, and your keys go to Editor.")

    def test_a_family_is_switched_off(self):
        self.choose("Settings…")
        self.click("checkbox", "Bold (Ctrl+B)")
        self.wait(lambda: self.part("checkbox", "Bold (Ctrl+B)").get_attribute("aria-checked") == "false")
        self.button("Editor")
        self.presses("Ctrl+B → Editor receives Ctrl+B", "b", Keys.CONTROL)
        self.presses("Ctrl+I → Editor receives Cmd+I", "i", Keys.CONTROL)
        self.click("close")
        self.choose("Disable Tarnwick")
        self.presses("Ctrl+I → Editor receives Ctrl+I", "i", Keys.CONTROL)

    def test_mail_is_exempt(self):
        self.choose("Settings…")
        self.click("button", "Choose App…")
        self.click("choose", "/Applications/Mail.app")
        self.wait(lambda: self.part("button", "Remove"))
        self.button("Mail")
        self.presses("Ctrl+C → Mail receives Ctrl+C", "c", Keys.CONTROL)
        self.plays_as_the_command()
        self.click("button", "Choose App…")
        self.click("cancel")
        self.click("button", "Remove")
        self.wait(lambda: not self.part("button", "Remove"))

    def test_the_finder_asks_before_it_deletes(self):
        self.button("Finder")
        self.press(Keys.DELETE)
        self.click("button", "Cancel")
        self.happens("clicked Cancel → answered \"Cancel\"")
        self.button("Undo")  # takes the click back, and the moment that it took
        self.wait(lambda: self.part("alert"), "the question is not there again")
        self.press(Keys.RETURN)  # the default button has the focus
        self.wait(lambda: "the Finder moves the selection to the Bin" in self.latest())
        self.plays_as_the_command()

    def test_everything_can_be_worked_with_keys(self):
        self.press(Keys.TAB)
        self.press(Keys.RETURN)
        self.wait(lambda: self.part("menu"))
        self.press(Keys.ESCAPE)
        self.wait(lambda: not self.part("menu"))
        self.press(Keys.SPACE)
        self.wait(lambda: self.part("menu"))
        self.press(Keys.DOWN)
        self.press(Keys.RETURN)
        self.wait(lambda: self.part("window"))
        for _ in range(3):
            self.press(Keys.TAB)
        self.press(Keys.SPACE)
        self.happens("clicked Clipboard (Ctrl+C/V/X/A/Z)")

    def test_what_lies_below_the_windows_end_is_scrolled_to(self):
        self.choose("Settings…")
        self.wait(lambda: self.part("window"))
        top = self.scrolled()
        self.frame()
        over = ScrollOrigin.from_element(self.part("checkbox", "New (Ctrl+N)"))
        ActionChains(self.browser).scroll_from_origin(over, 0, 150).perform()
        self.wait(lambda: self.scrolled() == top - 150)
        self.frame()
        ActionChains(self.browser).drag_and_drop_by_offset(self.part("travel"), 0, -400).perform()
        self.wait(lambda: self.scrolled() == top)
        self.browser.execute_script("arguments[0].focus()", self.part("button", "Open Login Items"))
        self.assertLess(self.scrolled(), top)
        self.click("button", "Open Login Items")
        self.wait(lambda: "LoginItems" in self.latest())

    def scrolled(self):
        """Where the window's end is, below the picture's beginning."""
        top = "return arguments[0].getBoundingClientRect().top - document.getElementById('screen').getBoundingClientRect().top"
        return round(self.browser.execute_script(top, self.part("button", "Open Login Items")))

    def test_undo_quit_and_start_again(self):
        undo = self.browser.find_element(By.ID, "undo")
        self.wait(lambda: not undo.is_enabled())
        self.choose("Quit Tarnwick")
        self.happens("chose Quit Tarnwick → Tarnwick has quit")
        self.presses("Ctrl+C → Editor receives Ctrl+C", "c", Keys.CONTROL)
        self.assertIsNone(self.part("status"))
        for _ in range(2):
            self.button("Undo")
        self.presses("Ctrl+C → Editor receives Cmd+C", "c", Keys.CONTROL)
        self.button("Start again")
        self.happens("Press Ctrl+C, and the Editor gets Cmd+C.")
        self.assertFalse(undo.is_enabled())

    def plays_as_the_command(self):
        """The session as text, played by the command, leaves the trace that it leaves in the page."""
        native = subprocess.run([COMMAND, "--trace", "/dev/stdin"], input=self.session(), capture_output=True, text=True)
        self.assertEqual((native.returncode, native.stderr), (0, ""))
        self.assertNotIn("lost", native.stdout)
        self.assertEqual(self.play(self.session(), trace=True)["output"], native.stdout)

    def test_a_link_carries_the_session(self):
        self.browser.execute_cdp_cmd("Browser.grantPermissions", {"permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"]})
        self.button("Finder")
        self.presses("F2 → Finder receives Return, the Finder lets the selection's name be edited", Keys.F2)
        self.browser.find_element(By.TAG_NAME, "summary").click()
        session = self.session()
        self.button("Copy link")
        self.wait(lambda: self.browser.find_element(By.ID, "copied").text == "The link is on the clipboard.")
        link = self.browser.execute_async_script("navigator.clipboard.readText().then(arguments[0])")
        self.open("#" + link.partition("#")[2])
        self.wait(lambda: self.session() == session)
        self.happens("F2 → Finder receives Return, the Finder lets the selection's name be edited")

    def test_links_that_cannot_be_played_get_a_sentence(self):
        good = link_of("press ctrl+c\n")
        for link, sentence in (
            (good[:-6], "The link to this page is damaged: its session cannot be read."),
            ("#%%%", "The link to this page is damaged: its session cannot be read."),
            (link_of("press a\npress nokey\n"), 'The link’s session cannot be played. session:2: unknown key "nokey"'),
            (link_of("press a 1000000000\n"), "The session prints more than this page can hold."),
        ):
            with self.subTest(link[:20]):
                self.open(link)
                self.wait(lambda: sentence in self.fault(), f"{sentence}; the page says {self.fault()}")
                self.presses("Ctrl+C → Editor receives Cmd+C", "c", Keys.CONTROL)
                self.assertEqual(self.fault(), "")
        session = self.session()
        self.browser.execute_script("location.hash = '%%%'")
        self.wait(lambda: "damaged" in self.fault())
        self.assertEqual(self.session(), session, "what the visitor did stays")

    def test_what_cannot_be_played_is_taken_back(self):
        session = self.session()
        self.browser.execute_script("Printed.limit = 0")
        self.press("b")
        self.wait(lambda: "more than this page can hold" in self.fault())
        self.browser.execute_script("Printed.limit = 1000000")
        self.presses("C → Editor receives C", "c")
        self.assertEqual(self.session(), session + "press c\n")

    def test_of_a_long_session_the_end_is_shown(self):
        took = self.browser.execute_async_script(REPLAY)
        print(f"\n    a replay of 1,000 commands: {took:.0f} ms", end="", flush=True)
        self.open(link_of("press ctrl+c\n" * 10000))
        caption = self.browser.find_element(By.TAG_NAME, "caption")
        self.wait(lambda: caption.text == "The last 200 of 10000 actions")
        self.assertEqual(len(self.browser.find_elements(By.CSS_SELECTOR, "tbody tr")), 200)

    def test_everything_to_act_on_has_a_role_and_a_name(self):
        self.choose("Settings…")
        self.click("button", "Choose App…")
        self.click("choose", "/Applications/Mail.app")
        self.click("button", "Choose App…")
        self.click("choose", "/Applications/Terminal.app")
        self.click("status")
        self.wait(lambda: self.part("menu"))
        targets = self.browser.execute_script(
            "return [...document.getElementById('screen').shadowRoot.querySelectorAll('[tabindex]')]")
        named = [(target.aria_role, target.accessible_name) for target in targets]
        self.assertEqual(len(set(named)), len(named), "no two are called the same")
        for expected in (("checkbox", "Bold (Ctrl+B)"), ("button", "Close Tarnwick Settings"),
                         ("button", "Remove com.example.mail"), ("button", "Tarnwick menu"), ("menuitem", "Settings…")):
            self.assertIn(expected, named)
        # What is folded away has no name until it is shown.
        self.browser.execute_script("document.querySelector('details').open = true")
        for element in self.browser.find_elements(By.CSS_SELECTOR, "button, textarea, summary, [tabindex]"):
            self.assertTrue(element.accessible_name, element.get_attribute("outerHTML")[:80])


class OldBrowser(BrowserTest):
    def test_a_browser_that_cannot_unpack_the_program_gets_a_sentence(self):
        script = self.browser.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument",
                                              {"source": "delete window.DecompressionStream"})
        self.addCleanup(self.browser.execute_cdp_cmd, "Page.removeScriptToEvaluateOnNewDocument", script)
        self.open()
        self.wait(lambda: "DecompressionStream" in self.fault())
        self.assertIn("It takes a current browser", self.fault())
        self.assertFalse(self.browser.find_element(By.TAG_NAME, "main").is_displayed())
