#!/usr/bin/python3
"""Uses the page of `avsk live` as a person would, in a headless Chromium.

usage: browser_test.py AVSK ROOT

ROOT holds the sample plugins. Each claim is a function; they run in order on one page. Exit status 77, which ctest shows
as skipped, if the browser is missing.
"""

import argparse
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import traceback

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
except ImportError:
    print("skipped: selenium is missing (package python3-selenium)")
    sys.exit(77)

PATIENCE = 8  # seconds
TOP_STRIP = (60, 495)  # of the window of the plugin Window at the start, y upward
BUTTON = {"button": "left", "clickCount": 1}

# Texts whose contrast is below WCAG AA, and edges of controls; what is disabled may be faint.
FAINT = """
const parse = (text) => { const [r, g, b, a = 1] = text.match(/[\\d.]+/g).map(Number); return {rgb: [r, g, b], a}; };
const light = ({rgb}) => rgb.map((v) => v / 255).map((v) => (v <= 0.03928 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4))
  .reduce((sum, v, i) => sum + v * [0.2126, 0.7152, 0.0722][i], 0);
const ratio = (a, b) => { const [x, y] = [light(a), light(b)].sort((p, q) => q - p); return (x + 0.05) / (y + 0.05); };
const ground = (element) => {
  for (let at = element; at; at = at.parentElement) {
    const colour = parse(getComputedStyle(at).backgroundColor);
    if (colour.a === 1) return colour;
    if (colour.a > 0) throw new Error('translucent ground: ' + at.outerHTML.slice(0, 100));
  }
};
const faint = new Set();
for (const element of document.querySelectorAll('body *:not(.row:nth-child(n + 4), .row:nth-child(n + 4) *)')) {
  if (!element.checkVisibility({visibilityProperty: true}) || element.closest(':disabled')) continue;
  const style = getComputedStyle(element);
  const isField = element.matches('input, select');
  const hasText = isField || [...element.childNodes].some((node) => node.nodeType === 3 && node.data.trim());
  const judge = (what, colour, on, least) => {
    const seen = ratio(parse(colour), ground(on));
    if (seen < least) faint.add(`${what} ${seen.toFixed(2)}: ${element.outerHTML.slice(0, 80)}`);
  };
  if (hasText) judge('text', style.color, element, 4.5);
  if (isField) judge('edge', style.borderTopColor, element.parentElement, 3);
}
return [...faint];
"""

# The controls that the tab key has to reach, as marks that survive changes of the page.
MARK_CONTROLS = """
let n = 0;
for (const element of document.querySelectorAll('a[href], button, input, select, [tabindex]'))
  if (element.checkVisibility() && !element.disabled && element.tabIndex >= 0)
    element.dataset.control = `${++n} ${element.outerHTML.slice(0, 80)}`;
return [...document.querySelectorAll('[data-control]')].map((element) => element.dataset.control);
"""

# From the press of the mouse to a change of the pixels in a rectangle of the picture.
WATCH_PIXELS = """
const [x, y, width, height] = arguments;
const canvas = document.getElementById('screen');
const copy = new OffscreenCanvas(width, height).getContext('2d', {willReadFrequently: true});
const sum = () => {
  copy.drawImage(canvas, x, y, width, height, 0, 0, width, height);
  return copy.getImageData(0, 0, width, height).data.reduce((a, v, i) => (a * 31 + v * (i % 7 + 1)) | 0, 7);
};
window.delay = null;
canvas.addEventListener('pointerdown', () => {
  const before = sum();
  const begin = performance.now();
  const look = () => {
    if (sum() !== before) window.delay = performance.now() - begin;
    else if (performance.now() - begin < 20000) setTimeout(look, 2);
  };
  look();
}, {once: true, capture: true});
"""


class Page:
    """The browser, the page in it, and the server."""

    def __init__(self, avsk, root, others_are_busy):
        self.avsk, self.root, self.others_are_busy = avsk, root, others_are_busy
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="avsk-live-"))
        self.driver = None
        self.output = self.folder / "output.txt"
        with self.output.open("wb") as stream:
            self.server = subprocess.Popen([avsk, "live", "--root", root, "--no-open", "--port", "0"], cwd=self.folder,
                                           stdout=stream, stderr=subprocess.STDOUT)

    def open(self):
        address = re.compile(r"http://\S+#\S+")
        url = self.wait(lambda: address.search(self.output.read_text(errors="replace")), "an address").group()
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for argument in ("headless=new", "no-sandbox", "disable-gpu", "disable-quic", "no-first-run", "disable-sync",
                         "disable-background-networking", "disable-component-update",
                         f"user-data-dir={self.folder}/browser"):
            options.add_argument(f"--{argument}")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        self.size(1280, 800)
        self.driver.get(url)
        self.wait(lambda: self.text("#state") == "Running", "the simulator runs")

    def close(self):
        if self.driver:
            self.driver.quit()
        self.server.terminate()
        self.server.wait(PATIENCE)
        shutil.rmtree(self.folder, ignore_errors=True)

    def size(self, width, height, dark=False):
        self.cdp("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.cdp("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def cdp(self, command, **arguments):
        return self.driver.execute_cdp_cmd(command, arguments)

    def js(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.js("return document.querySelector(arguments[0])?.textContent.trim() ?? ''", selector)

    def wait(self, is_so, what):
        end = time.monotonic() + PATIENCE
        while not (seen := is_so()):
            says = self.driver and self.text("#answer")
            assert time.monotonic() < end, f"waited in vain: {what}; the page says: {says}"
            time.sleep(0.02)
        return seen

    def button(self, panel, text):
        """Presses a button by its text, as a click does, wherever the panel is scrolled to."""
        self.js("""const [panel, text] = arguments;
            const found = [...document.querySelectorAll(`#${panel} button`)]
              .find((button) => button.textContent === text && button.checkVisibility());
            if (!found) throw new Error(`no button ${text} in ${panel}`); found.click();""", panel, text)

    def choose(self, panel, key):
        self.wait(lambda: self.js("""const row = [...document.querySelectorAll(`#${arguments[0]} [data-key]`)]
            .find((one) => one.dataset.key === arguments[1] || one.children[1]?.textContent === arguments[1]);
            row?.click(); return Boolean(row);""", panel, key), f"{key} in the list of {panel}")

    def line(self, line):
        """Does a line of the session language, by the field for it."""
        field = self.find("#record input[placeholder^='click']")
        self.js("arguments[0].value = ''; document.getElementById('answer').textContent = '';", field)
        field.send_keys(line, Keys.ENTER)
        error = "#record .field:has([placeholder^='click']) .error"
        self.wait(lambda: self.text("#answer") or self.text(error), f"an answer to {line}")
        assert not self.text(error), f"{line}: {self.text(error)}"

    def recorded(self, what):
        self.wait(lambda: self.text("#answer").startswith(f"Recorded: {what}"), f"recorded: {what}")

    def point(self, x, y):
        """The place on the page of a place on the screen, y upward."""
        return self.js("""const [x, y] = arguments, canvas = document.getElementById('screen');
            const box = canvas.getBoundingClientRect(), scale = box.width / canvas.width;
            return {x: box.left + (x + 0.5) * scale, y: box.top + (canvas.height - y - 0.5) * scale};""", x, y)

    def mouse(self, kind, place, **more):
        self.cdp("Input.dispatchMouseEvent", type=f"mouse{kind}", **place, **more)

    def window(self):
        """Where the sample window is, by the panel of plugins."""
        return [int(number) for number in self.text("#plugins .windows [data-key='1'] :nth-child(2)").split(",")]


def a_reload_keeps_the_page_and_the_address_holds_no_token(page):
    page.driver.refresh()
    page.wait(lambda: page.text("#state") == "Running", "the page works after a reload")
    assert "#" not in page.driver.current_url, page.driver.current_url


def judge(page, measure, is_good):
    """Measures up to five times. A machine that others keep busy is not judged."""
    for _ in range(5):
        if is_good(value := measure()):
            return
    assert page.others_are_busy or os.getloadavg()[0] > 2 * os.cpu_count(), value
    print("  not judged: other programs keep the machine busy")


def are_others_busy():
    """Whether other programs use much of the processors. To be asked before the simulator and the browser start."""
    def times():
        numbers = [int(number) for number in pathlib.Path("/proc/stat").read_text().split("\n")[0].split()[1:9]]
        return numbers[3] + numbers[4], sum(numbers)
    idle, total = times()
    time.sleep(1)
    idle, total = times()[0] - idle, times()[1] - total
    return idle < 0.7 * total


def the_screen_moves(page):
    judge(page, lambda: pictures_a_second(page), lambda pictures: pictures >= 20)


def pictures_a_second(page):
    pictures = page.driver.execute_async_script("""
        const done = arguments[0]; let count = 0;
        const observer = new MutationObserver((changes) => { count += changes.length; });
        observer.observe(document.getElementById('screen'), {attributeFilter: ['data-frame']});
        setTimeout(() => { observer.disconnect(); done(count / 2); }, 2000);""")
    print(f"  {pictures:.1f} pictures a second")
    assert pictures >= 1
    return pictures


def a_press_of_the_mouse_shows_soon(page):
    judge(page, lambda: delay_of_a_press(page), lambda delay: delay < 100)


def delay_of_a_press(page):
    delays = []
    place = page.point(*TOP_STRIP)
    page.mouse("Moved", place)
    for _ in range(11):
        page.js(WATCH_PIXELS, 40, 268, 60, 90)  # the title and the cursor of the window
        page.mouse("Pressed", place, **BUTTON)
        page.mouse("Released", place, **BUTTON)
        delays.append(page.wait(lambda: page.js("return window.delay"), "the window shows that it has the focus"))
        ActionChains(page.driver).send_keys(Keys.ESCAPE).perform()  # takes it away
        time.sleep(0.1)
    median = sorted(delays)[len(delays) // 2]
    print(f"  {median:.0f} ms, of {min(delays):.0f} to {max(delays):.0f}")
    return median


def the_window_is_dragged_and_let_go_outside_the_picture(page):
    page.choose("plugins", "Window")
    page.wait(lambda: page.window() == [40, 500, 392, 410], "the window's place is shown")
    page.mouse("Pressed", page.point(*TOP_STRIP), **BUTTON)
    page.mouse("Moved", page.point(160, 445), button="left", buttons=1)
    page.wait(lambda: page.window() == [140, 450, 492, 360], "the window follows the mouse")
    outside = {"x": 300, "y": 20}  # above the picture
    page.mouse("Moved", outside, button="left", buttons=1)
    page.mouse("Released", outside, **BUTTON)
    time.sleep(0.2)
    at = page.window()
    page.mouse("Moved", page.point(700, 300))
    time.sleep(0.2)
    assert page.window() == at, (page.window(), at)
    page.js("document.querySelector('#plugins .windows [data-key=\"1\"]').click()")
    page.button("plugins", "Expect this window")
    page.recorded("expect window Window")


def keys_reach_the_window_with_the_focus(page):
    left, top, _, _ = page.window()
    place = page.point(left + 20, top - 40)
    page.mouse("Pressed", place, **BUTTON)
    page.mouse("Released", place, **BUTTON)
    ActionChains(page.driver).send_keys('Hej "Q"!x', Keys.BACKSPACE).perform()
    page.line("mark")
    time.sleep(0.2)
    page.line('expect call drawString * * * "> Hej \\"Q\\"!_"')


def a_menu_item_is_picked_with_the_keyboard(page):
    page.js("document.querySelector('[role=menubar] [role=menuitem]').focus()")
    ActionChains(page.driver).send_keys(Keys.ENTER, Keys.ARROW_RIGHT, Keys.ARROW_DOWN, Keys.ENTER).perform()
    item = "#menubar [data-path='Plugins/Sample lights/Landing light']"
    page.wait(lambda: page.js("return document.querySelector(arguments[0])?.ariaChecked === 'true'", item), "its mark")
    page.line('expect item "Plugins/Sample lights/Landing light" checked')


def an_edited_dataref_is_followed_by_plugin_and_plot(page):
    page.find("#datarefs input[type=search]").send_keys("sample/")
    page.choose("datarefs", "sample/counter")
    page.button("datarefs", "Pin")
    field = page.find("#datarefs .values input")
    error = "#datarefs .values .error"
    field.send_keys(Keys.CONTROL, "a")
    field.send_keys("1.5", Keys.ENTER)
    assert page.text(error).startswith("A whole number"), page.text(error)
    field.send_keys(Keys.CONTROL, "a")
    field.send_keys("500000", Keys.ENTER)
    value = "#datarefs .datarefs [data-key='sample/counter'] :nth-child(4)"
    page.wait(lambda: int(page.text(value) or 0) > 500010, "the plugin counts from the new value")
    page.wait(lambda: int(page.text("#datarefs .chips output") or 0) > 500010, "the pinned value follows")
    page.wait(lambda: page.js("""const {datasets} = Chart.getChart(document.querySelector('.plot canvas')).data;
        return Math.max(...datasets[0].data.map((point) => point.y));""") > 500010, "the plot follows")
    page.choose("datarefs", "sample/levels")
    fields = page.driver.find_elements(By.CSS_SELECTOR, "#datarefs .values input")
    fields[3].send_keys(Keys.CONTROL, "a")
    fields[3].send_keys("0.25", Keys.ENTER)
    value = "#datarefs .datarefs [data-key='sample/levels'] :nth-child(4)"
    page.wait(lambda: page.text(value).endswith("0.25"), "one element is written")


def what_is_paused_can_be_expected(page):
    page.button("simulator", "Pause")
    page.wait(lambda: page.text("#state") == "Paused", "it pauses")
    frame = page.text("#readings dd")
    page.button("simulator", "One frame")
    page.wait(lambda: int(page.text("#readings dd")) == int(frame) + 1, "one frame runs")
    for panel, key, button, what in (
            ("datarefs", "sample/counter", "Expect this value", "expect dataref sample/counter 500"),
            ("datarefs", "sample/levels", "Expect this value", "expect dataref sample/levels "),
            ("log", None, "Expect this line", "expect log "),
            ("simulator", None, "Expect this view", "expect view "),
            ("plugins", "Menu", "Expect this state", "expect plugin Menu enabled")):
        if key:
            page.choose(panel, key)
        page.button(panel, button)
        page.recorded(what)
    page.button("record", "Expect this picture")
    page.wait(lambda: (page.folder / "screen.png").exists(), "the picture is written")
    page.button("simulator", "Continue")
    page.wait(lambda: page.text("#state") == "Running", "it goes on")


def plugins_are_disabled_and_loaded_again(page):
    page.choose("plugins", "Window")
    page.button("plugins", "Disable")
    page.wait(lambda: "Window (disabled)" in page.text("#plugins .plugins"), "the list says that it is disabled")
    page.button("plugins", "Reload all")
    page.wait(lambda: "Window (disabled)" not in page.text("#plugins .plugins"), "it is enabled after the reload")
    page.wait(lambda: page.window() == [40, 500, 392, 410], "its window is at its first place")


def a_slow_frame_shows_its_calls(page):
    page.find(".bars canvas").send_keys(Keys.ARROW_LEFT)
    page.wait(lambda: "AVSKFlightLoop_f" in page.text("#time .tree"), "flight loops are among them")
    page.button("time", "Follow")


def closed_panels_stay_closed(page):
    page.button("time", "×")
    page.js("document.querySelector('[aria-controls=findings]').click()")
    page.driver.refresh()
    page.wait(lambda: page.text("#state") == "Running", "the page works after a reload")
    assert not page.find("#time").is_displayed() and page.find("#findings").is_displayed()
    page.js("document.querySelectorAll('#toggles [aria-pressed=false]').forEach((toggle) => toggle.click())")


def the_recording_passes(page):
    page.js("document.querySelector('#record header input').value = 'tried.avs'")
    page.button("record", "Save")
    page.wait(lambda: (page.folder / "tried.avs").exists(), "the session is saved")
    run = subprocess.run([page.avsk, "run", "--quiet", "tried.avs"], cwd=page.folder, capture_output=True, text=True)
    recording = (page.folder / "tried.avs").read_text()
    assert run.returncode == 0, f"{run.stdout}{run.stderr}\n{recording}"
    for word in ("press", "release", "keydown ", "menu ", "set ", "disable ", "reload", "expect picture "):
        assert f"\n{word}" in recording, f"no {word} in\n{recording}"


def texts_can_be_read_in_both_schemes_and_sizes(page):
    for width, height in ((800, 900), (1280, 800), (1920, 1080)):
        for dark in (False, True):
            page.size(width, height, dark)
            page.wait(lambda: page.js("return document.querySelectorAll('.row').length") > 20, "the panels are filled")
            assert not (faint := page.js(FAINT)), (width, dark, faint)
            wide = page.js("return document.documentElement.scrollWidth - innerWidth")
            assert wide <= 0, f"{wide} pixels too wide for {width}"
            hidden = page.js("""return [...document.querySelectorAll('.panel:not([hidden]), .stage')]
                .filter((one) => one.clientHeight < 60).map((one) => one.id)""")
            assert not hidden, (width, hidden)
    page.size(1280, 800)


def every_control_has_a_name(page):
    named = {"button", "textbox", "searchbox", "combobox", "checkbox", "slider", "listbox", "tree", "link", "menuitem",
             "menuitemcheckbox", "application", "option", "treeitem", "img", "image", "region"}
    nodes = page.cdp("Accessibility.getFullAXTree")["nodes"]
    controls = [node for node in nodes if not node["ignored"] and node["role"]["value"] in named]
    assert len(controls) > 60, len(controls)
    nameless = [node for node in controls if not node.get("name", {}).get("value", "").strip()]
    assert not nameless, nameless[:3]
    roles = {node["role"]["value"] for node in nodes if not node["ignored"]}
    assert {"main", "banner", "navigation", "log", "status", "region"} <= roles, roles


def the_tab_key_reaches_every_control(page):
    page.button("simulator", "Pause")  # so that no list changes meanwhile
    for panel, key in (("plugins", "Window"), ("datarefs", "sample/levels")):
        page.choose(panel, key)
    page.js("document.activeElement.blur(); document.body.focus()")
    missing = set(page.js(MARK_CONTROLS))
    page.js("""window.seen = [];
        document.addEventListener('focusin', (event) => seen.push(event.target.dataset.control));""")
    for _ in range(len(missing) // 8 + 10):
        ActionChains(page.driver).send_keys(Keys.TAB * 8).perform()
        if page.js("return document.activeElement.id") == "screen":  # takes the tab key itself
            ActionChains(page.driver).key_down(Keys.CONTROL).send_keys(Keys.ESCAPE).key_up(Keys.CONTROL).perform()
    missing -= set(page.js("return window.seen"))
    assert not missing, missing
    page.button("simulator", "Continue")


def after_a_crash_the_page_shows_the_report_and_starts_again(page):
    simulator = pathlib.Path(f"/proc/{page.server.pid}/task/{page.server.pid}/children").read_text().split()[0]
    os.kill(int(simulator), signal.SIGSEGV)
    page.wait(lambda: "SIGSEGV" in page.text(".banner.ended pre"), "the report")
    assert page.text("#state") == "Ended"
    page.js("document.querySelector('.banner.ended button').click()")
    page.wait(lambda: page.text("#state") == "Running" and not page.text(".banner.ended"), "it runs again")
    assert page.text("#answer") == "The simulator has started again.", page.text("#answer")
    page.wait(lambda: page.window() == [40, 500, 392, 410], "the plugins are loaded")


def a_lost_server_is_said(page):
    errors = [entry for entry in page.driver.get_log("browser") if entry["level"] in ("SEVERE", "WARNING")]
    assert not errors, errors
    page.server.terminate()
    page.wait(lambda: page.text("#state") == "No connection", "the page says so")
    assert "Next attempt" in page.text("#banners")


CLAIMS = [
    a_reload_keeps_the_page_and_the_address_holds_no_token,
    the_screen_moves,
    a_press_of_the_mouse_shows_soon,
    the_window_is_dragged_and_let_go_outside_the_picture,
    keys_reach_the_window_with_the_focus,
    a_menu_item_is_picked_with_the_keyboard,
    an_edited_dataref_is_followed_by_plugin_and_plot,
    what_is_paused_can_be_expected,
    plugins_are_disabled_and_loaded_again,
    a_slow_frame_shows_its_calls,
    closed_panels_stay_closed,
    the_recording_passes,
    texts_can_be_read_in_both_schemes_and_sizes,
    every_control_has_a_name,
    the_tab_key_reaches_every_control,
    after_a_crash_the_page_shows_the_report_and_starts_again,
    a_lost_server_is_said,
]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("avsk")
    parser.add_argument("root")
    arguments = parser.parse_args()
    for file, package in (("/usr/bin/chromium", "chromium"), ("/usr/bin/chromedriver", "chromium-driver"),
                          ("/usr/share/javascript/chart.js/chart.min.js", "libjs-chart.js")):
        if not os.path.exists(file):
            print(f"skipped: {file} is missing (package {package})")
            return 77
    page = Page(arguments.avsk, arguments.root, are_others_busy())
    failed = 0
    try:
        page.open()
        for claim in CLAIMS:
            begin = time.monotonic()
            try:
                claim(page)
                print(f"ok      {claim.__name__} ({time.monotonic() - begin:.1f} s)", flush=True)
            except Exception:
                failed += 1
                page.driver.save_screenshot(f"{claim.__name__}.png")
                print(f"FAILED  {claim.__name__}; see {claim.__name__}.png\n{traceback.format_exc()}", flush=True)
    finally:
        page.close()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
