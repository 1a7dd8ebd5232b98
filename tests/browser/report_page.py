"""Looks at the pages of ltr27rec report as a user does, in a browser without a window: python3 report_page.py RECORDER FOLDER

In FOLDER is gap.npy, a recording with a gap. Nothing but Python's own library, numpy and Debian's chromium is needed.
"""
import json
import os
import shutil
import signal
import subprocess
import sys

import numpy as np

sys.dont_write_bytecode = True
sys.path.insert(0, "examples")
from read_recording import Recording

recorder, folder = sys.argv[1], os.path.abspath(sys.argv[2])
signal.alarm(120)  # no wait without a bound


class Browser:
    """Speaks the DevTools protocol through a pair of pipes."""

    def __init__(self):
        profile = folder + "/profile"
        shutil.rmtree(profile, ignore_errors=True)
        (their_in, self.out), (self.into, their_out) = os.pipe(), os.pipe()
        self.log = open(folder + "/browser.log", "w")
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec "$@" 3<&{their_in} 4>&{their_out}', "", "chromium", "--headless", "--no-sandbox",
             "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
             "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage", "--remote-debugging-pipe",
             "--user-data-dir=" + profile], pass_fds=(their_in, their_out), stdout=self.log, stderr=self.log)
        os.close(their_in), os.close(their_out)
        self.buffer, self.number, self.session, self.events = b"", 0, None, []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.out, json.dumps(message).encode() + b"\0")
        while True:
            while b"\0" not in self.buffer:
                piece = os.read(self.into, 1 << 20)
                assert piece, "the browser is gone"
                self.buffer += piece
            one, self.buffer = self.buffer.split(b"\0", 1)
            answer = json.loads(one)
            if answer.get("id") == self.number:
                assert "error" not in answer, (method, answer)
                return answer["result"]
            self.events.append(answer)

    def ask(self, script):
        answer = self.call("Runtime.evaluate", expression=script, awaitPromise=True, returnByValue=True)
        assert "exceptionDetails" not in answer, (script, answer)
        return answer["result"].get("value")

    def open(self, page, width, scheme):
        self.events.clear()
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1, mobile=False)
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.call("Page.navigate", url="file://" + page)
        return self.ask("new Promise(done => { const wait = () => document.readyState === 'complete' && typeof started"
                        " === 'object' ? done(started.then(() => performance.now())) : setTimeout(wait, 5); wait(); })")

    def mouse(self, kind, share, **more):
        """`share` of the first chart's width."""
        x, y = self.ask("(r => [r.left + %r * r.width, r.top + r.height / 2])(panels[0].chart.over.getBoundingClientRect())" % share)
        self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, **more)
        self.ask("new Promise(requestAnimationFrame)")

    def drag(self, start, end):
        left = {"button": "left", "clickCount": 1}
        self.mouse("mouseMoved", start)
        self.mouse("mousePressed", start, **left)
        for share in (start + (end - start) / 2, end):
            self.mouse("mouseMoved", share, buttons=1, button="left")
        self.mouse("mouseReleased", end, **left)

    def click(self, name):
        self.ask(f"document.getElementById('{name}').click()")

    def expect_silence(self):
        """No error was shown, and nothing asked for but the page."""
        asked = [e["params"]["request"]["url"] for e in self.events if e["method"] == "Network.requestWillBeSent"]
        bad = [e for e in self.events if e["method"] in ("Runtime.exceptionThrown", "Log.entryAdded", "Runtime.consoleAPICalled")]
        assert len(asked) == 1 and asked[0].startswith("file://") and not bad, (asked, bad)


def expect_cursor(browser, recording, share):
    """What is said of the cursor's place is what the file has there. Returns the words."""
    browser.mouse("mouseMoved", share)
    shown = browser.ask("""(panel => ({ kadrs: panel.groupKadrs, words: document.getElementById('readout').textContent,
        first: panel.first + panel.times.findIndex((t, k) => t + panel.groupKadrs * period / 2 >
            view.cursor + (panel.samples ? 0 : recording.step * period / 2)) * panel.groupKadrs,
        values: [...panel.values].filter(([i]) => panel.shown.has(i)).map(([i, place]) => [i, place.textContent]) }))(panels[0])""")
    assert len(shown["values"]) == 8, shown
    first = shown["first"] - recording.about["first_kadr"]
    assert f"{recording.time[first]:.3f}" in shown["words"] or recording.time[first] >= 60, (recording.time[first], shown)
    for column, text in shown["values"]:
        values = recording[column][first:first + shown["kadrs"]]
        values = values[~np.isnan(values)]
        extremes = sorted({values.min(), values.max()}) if len(values) else []
        said = [float(one.replace("\u2212", "-").replace(",", ".")) for one in text.split(" \u2026 ") if one != "\u2013"]
        assert np.allclose(said, extremes, rtol=0, atol=1e-3) and len(said) == len(extremes), (column, text, extremes, shown)
    return shown["words"]


def expect_page(browser, name, single):
    recording = Recording(f"{folder}/{name}.npy")
    subprocess.run([recorder, "report", f"{folder}/{name}.npy", "-q", "--lang", "en", "-o", f"{folder}/{name}.html"], check=True)
    milliseconds = browser.open(f"{folder}/{name}.html", 1200, "light")
    print(f"{name}: {os.path.getsize(f'{folder}/{name}.html') / 1e6:.1f} MB, opens in {milliseconds:.0f} ms")
    assert milliseconds < 8000, "on a quiet machine it takes a tenth of that"
    whole = browser.ask("[view.from, view.to]")
    for share in (0.02, 0.5, 0.93):
        expect_cursor(browser, recording, share)
    assert "lowest to the highest" in browser.ask("document.getElementById('resolution').textContent")
    for _ in range(3):
        browser.drag(0.4, 0.45)
        expect_cursor(browser, recording, 0.5)
    browser.mouse("mouseWheel", 0.5, deltaX=0, deltaY=-200)
    expect_cursor(browser, recording, 0.3)
    assert browser.ask("view.to - view.from") < (whole[1] - whole[0]) / 4
    assert browser.ask("panels[0].samples") == single
    assert ("Each point is a sample." in browser.ask("document.getElementById('resolution').textContent")) == single
    for press in (1, 2):
        for kind in ("mousePressed", "mouseReleased"):
            browser.mouse(kind, 0.5, button="left", clickCount=press)
    assert browser.ask("[view.from, view.to]") == whole, (browser.ask("[view.from, view.to]"), whole)
    rows = browser.ask("[...document.querySelectorAll('#channels tbody tr')].map(row => [...row.cells].map(cell => cell.textContent))")
    for column, row in enumerate(rows):
        values = recording[column]
        values = values[~np.isnan(values)]
        said = [float(text.replace("\u2212", "-").replace(",", "")) for text in row[3:8]]
        assert np.allclose(said, [values.min(), values.max(), values.mean(), values.std(), len(values)], atol=1e-4), (row, said)
    browser.expect_silence()


browser = Browser()
try:
    expect_page(browser, "gap", single=True)
    # In the gap: no values, its reason, and no line.
    recording = Recording(folder + "/gap.npy")
    gap = recording.about["gaps"][0]
    rate = recording.about["rate_hz"]
    browser.ask(f"setView({(gap['first_kadr'] - 20) / rate}, {(gap['first_kadr'] + gap['kadrs'] + 20) / rate})")
    assert gap["reason"] in expect_cursor(browser, recording, 0.5)
    assert browser.ask("panels[0].samples && panels[0].data.get(0).low.filter(value => value === null).length") == gap["kadrs"]
    moves = browser.ask("""(() => { let moves = 0; const { moveTo } = Path2D.prototype;
        Path2D.prototype.moveTo = function (...place) { moves++; moveTo.apply(this, place); };
        redraw(panels[0]); return new Promise(requestAnimationFrame).then(() => (Path2D.prototype.moveTo = moveTo, moves)); })()""")
    assert moves == 8 * 2, moves
    # Other channels, the other language and the other theme, at once and at the next visit.
    browser.ask("panels[0].legend.children[9].click(), new Promise(done => setTimeout(done, 100))")
    assert browser.ask("panels[0].shown.size") == 9 and browser.ask("panels[0].data.has(9)")
    for language, heading in (("ru", "Каналы"), ("en", "Channels")):
        browser.click("language")
        assert browser.ask("[document.documentElement.lang, document.getElementById('channelsTitle').textContent]") == [language, heading]
    ground = "getComputedStyle(document.body).backgroundColor"
    light = browser.ask(ground)
    browser.click("theme")
    dark = browser.ask(ground)
    assert light == "rgb(255, 255, 255)" and dark != light, (light, dark)
    browser.expect_silence()
    browser.ask("localStorage.clear()")
    browser.open(folder + "/gap.html", 390, "dark")
    assert browser.ask(ground) == dark
    assert browser.ask("document.scrollingElement.scrollWidth") <= 390
    browser.expect_silence()
    assert browser.ask("fetch('data:,x').then(() => 'may ask', () => 'may not')") == "may not"

    # Noise that is too much for a page of single samples.
    about = dict(recording.about, kadrs=270000, gaps=[dict(gap, first_kadr=100000, kadrs=30000), dict(gap, first_kadr=269999, kadrs=1)])
    json.dump(about, open(folder + "/noise.json", "w"))
    noise = np.random.default_rng(1).integers(-32768, 32768, (270000, len(about["channels"])), dtype=np.int16)
    np.save(folder + "/noise.npy", noise)
    expect_page(browser, "noise", single=False)
finally:
    browser.process.terminate()
    browser.process.wait(10)
