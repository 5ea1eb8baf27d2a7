#!/usr/bin/env python3
"""Opens the page of "kcodec2_spec report" in a browser: check-report.py [BUILD-DIRECTORY]

The console must be empty, nothing may be requested, and no name from a document may run. The filter
and "Only differences" must work, a comparison with any column must be the tool's own, and the page
must be readable without scripts, in dark mode, on paper, on a phone, by keyboard and with a screen
reader. Then faults are planted, which these checks must find. Needs chromium. Takes some seconds. With
--picture FILE.png it takes the README's picture instead.
"""

import base64
import hashlib
import json
import os
import random
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PICTURE = (1240, 800)
MOST_PICTURE_BYTES = 150 * 1024
# What can be read in the README's picture, written with it: when the page changes, this shows it.
PICTURE_FILE = ROOT / "docs/images/report.png"
PICTURE_TEXT = ROOT / "docs/images/report.txt"
TAKE_PICTURE = "scripts/check-report.py --picture docs/images/report.png"

RUN = "window.ran = 1"
HOSTILE_NAMES = (
    f"<script>{RUN}</script>", f"<img src=x onerror='{RUN}'>", f'" autofocus onfocus="{RUN}" x="',
    f"' onmouseover='{RUN}", f"</code></table></style></script><svg onload={RUN}>",
    "<!-- ", "&lt;b&gt;", "\u202e\u0007\u001b[31m\u0000", "<base href=http://localhost:9/>",
    "<link rel=stylesheet href=http://localhost:9/x.css>", "{}", "{0}", "%s",
    f"javascript:{RUN}", "]]><!DOCTYPE x>", "a\nb\r\n\tc",
)

# The elements of the page. A name that became an element is of another kind, or one too many.
PROBE = """(() => {
    const count = (what) => document.querySelectorAll(what).length;
    const faults = [];
    const expect = (isRight, what) => { if (!isRight) faults.push(what); };
    expect(window.ran === undefined, "a text of a document ran");
    expect(count("script") === 1 && count("style") === 1 && count("base, img, iframe, object") === 0
               && count("link") === 1, "a text of a document became an element");
    for (const element of document.querySelectorAll("*")) {
        for (const {name} of element.attributes) {
            expect(!name.startsWith("on") && name !== "style", `attribute ${name}`);
        }
    }
    for (const table of document.querySelectorAll("table")) {
        expect(table.caption && table.caption.textContent.trim(), "a table without a caption");
        expect(table.querySelector("thead th[scope=col]"), "a table without column headers");
    }
    for (const cell of document.querySelectorAll("th")) {
        expect(cell.scope && cell.textContent.trim(), "a header cell without scope or text");
    }
    const columns = document.querySelectorAll(".matrix thead th").length;
    for (const row of document.querySelectorAll(".matrix .row")) {
        expect(row.cells.length === columns && row.cells[0].scope === "row", "a row's cells");
    }
    const ids = [...document.querySelectorAll("[id]")].map((element) => element.id);
    expect(new Set(ids).size === ids.length, "an id twice");
    for (const link of document.querySelectorAll("a")) {
        expect(document.querySelector(link.getAttribute("href")), "a link to nowhere");
    }
    for (const picture of document.querySelectorAll("svg")) {
        expect(picture.querySelector("title").textContent, "a picture without a text");
        expect(!/NaN|inf/.test(picture.innerHTML), "a picture that cannot be drawn");
    }
    return faults;
})()"""

# The lowest contrast of a text with its background.
CONTRAST = """(() => {
    const channels = (colour) => colour.match(/[0-9.]+/g).map(Number);
    const light = (colour) => channels(colour).slice(0, 3).map((c) => c / 255)
        .map((c) => c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
        .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
    const backgroundOf = (element) => {
        for (; element; element = element.parentElement) {
            const colour = getComputedStyle(element).backgroundColor;
            if (channels(colour)[3] !== 0) return colour;
        }
        return "rgb(255, 255, 255)";
    };
    let least = [99, ""];
    for (const element of document.querySelectorAll("body *:not(svg *):not(script):not(.skip)")) {
        const hasText = [...element.childNodes].some((n) => n.nodeType === 3 && n.data.trim());
        if (hasText && element.checkVisibility()) {
            const pair = [light(getComputedStyle(element).color), light(backgroundOf(element))];
            const ratio = (Math.max(...pair) + 0.05) / (Math.min(...pair) + 0.05);
            if (ratio < least[0]) least = [ratio, element.outerHTML.slice(0, 80)];
        }
    }
    return least;
})()"""

SHOWN_ROWS = """[...document.querySelectorAll(".matrix .row")]
    .filter((row) => row.checkVisibility()).map((row) => row.cells[0].textContent)"""

# The cells that are marked: "section, name, column, cell".
MARKS = """(() => {
    const heads = [...document.querySelectorAll(".matrix thead th")].map((head) => head.textContent);
    return [...document.querySelectorAll(".matrix .row td.differs")].map((cell) =>
        [cell.closest("tbody").id, cell.parentElement.cells[0].textContent, heads[cell.cellIndex],
         cell.textContent].join(", ")).sort();
})()"""

# The numbers at the top, in the loads, in the matrix and in the findings, where they disagree.
COUNTS = """(() => {
    const count = (what) => document.querySelectorAll(what).length;
    const numbers = (what) => [...document.querySelectorAll(what)]
        .flatMap((element) => element.textContent.match(/[0-9]+/g) ?? []).map(Number);
    const sum = (values) => values.reduce((all, value) => all + value, 0);
    const differing = ".matrix .row:not(.meaning):has(.differs)";
    const pairs = {
        "rows at the top": [numbers(".sum b")[1], count(".matrix .row:not(.meaning)")],
        "rows of the filter": [numbers("#shown")[1], count(".matrix .row:not(.meaning)")],
        "rows of the sections": [sum([...document.querySelectorAll(".matrix .section th > span")]
            .map((span) => parseInt(span.textContent, 10))), count(".matrix .row:not(.meaning)")],
        "rows that differ": [numbers("#differing")[0], count(differing)],
        "rows of the sections that differ": [sum(numbers(".matrix .count")), count(differing)],
        "differences of the loads": [sum(numbers(".loads td.number")), count(".matrix .differs")],
    };
    return Object.entries(pairs).filter(([what, [a, b]]) => a !== b)
        .map(([what, [a, b]]) => `count: ${what}: ${a} and ${b}`);
})()"""

# Cells that cover one another, on paper.
COVERED = """(() => {
    const faults = [];
    let above = -Infinity;
    for (const row of document.querySelectorAll(".matrix tr")) {
        const cells = [...row.cells].map((cell) => cell.getBoundingClientRect());
        if (cells[0].height === 0) continue;
        const isBeside = cells.slice(1).every((cell, i) => cell.left >= cells[i].right - 1);
        if (!isBeside || cells[0].top < above - 1) faults.push(`covered: ${row.textContent}`);
        above = cells[0].bottom;
    }
    return faults;
})()"""

# Names that are broken at other places than after "_".
BROKEN = """[...document.querySelectorAll("code.name")].filter((name) =>
    [...name.childNodes].some((part) => {
        const range = document.createRange();
        range.selectNodeContents(part);
        return part.nodeType === 3
            && new Set([...range.getClientRects()].map((box) => box.top)).size > 1;
    })).map((name) => `broken: ${name.textContent}`)"""


class Browser:
    """Chromium, through its debugging pipe: JSON messages, each ended by a zero byte."""

    def __init__(self, scratch):
        to_read, self.to_write = os.pipe()
        self.to_hear, to_answer = os.pipe()
        command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                   "--disable-background-networking", "--remote-debugging-pipe",
                   f"--user-data-dir={scratch}/browser", "about:blank"]
        self.process = subprocess.Popen(
            ["sh", "-c", f"exec {shlex.join(command)} 3<&{to_read} 4>&{to_answer}"],
            pass_fds=(to_read, to_answer), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_read)
        os.close(to_answer)
        self.received = b""
        self.number = 0
        self.session = None
        self.events = []

    def close(self):
        self.call("Browser.close")
        self.process.wait(timeout=30)

    def receive(self):
        while b"\0" not in self.received:
            part = os.read(self.to_hear, 1 << 20)
            if not part:
                sys.exit("check-report: chromium has ended")
            self.received += part
        message, self.received = self.received.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to_write, json.dumps(message).encode() + b"\0")
        while (answer := self.receive()).get("id") != self.number:
            self.events.append(answer)
        if "error" in answer:
            sys.exit(f"check-report: {method}: {answer['error']['message']}")
        return answer["result"]

    def open(self, path, script=True, width=1280, height=900, query=""):
        self.session = None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target,
                                 flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(f"{domain}.enable")
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=False)
        self.call("Emulation.setScriptExecutionDisabled", value=not script)
        self.events.clear()
        self.page = path.resolve().as_uri() + query
        self.call("Page.navigate", url=self.page)
        while not any(event["method"] == "Page.loadEventFired" for event in self.events):
            self.events.append(self.receive())
        self.value("0")  # By then the page's own script has run.

    def value(self, expression):
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in answer:
            sys.exit(f"check-report: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def key(self, name, text=None):
        codes = {"Tab": 9, " ": 32, "Enter": 13, "Escape": 27, "ArrowDown": 40}
        self.call("Input.dispatchKeyEvent", type="keyDown", key=name, code=name,
                  windowsVirtualKeyCode=codes[name], **({"text": text} if text else {}))
        self.call("Input.dispatchKeyEvent", type="keyUp", key=name, code=name,
                  windowsVirtualKeyCode=codes[name])

    def problems(self):
        """What the console shows, and every request but the one for the page."""
        faults = []
        for event in self.events:
            method, detail = event["method"], event.get("params", {})
            if method in ("Runtime.consoleAPICalled", "Runtime.exceptionThrown",
                          "Log.entryAdded"):
                faults.append(f"console: {json.dumps(detail)[:200]}")
            elif method == "Network.requestWillBeSent":
                url = detail["request"]["url"]
                if url != self.page and not url.startswith("data:"):
                    faults.append(f"request: {url}")
        return faults


failures = []


def expect(is_right, what):
    if not is_right:
        failures.append(what)


def faults_of(browser, page):
    """What is wrong with the page on a screen, on a phone and on paper."""
    browser.open(page)
    faults = browser.value(PROBE) + browser.value(COUNTS)
    browser.call("Emulation.setDeviceMetricsOverride", width=400, height=800, deviceScaleFactor=1,
                 mobile=False)
    width = browser.value("document.documentElement.scrollWidth")
    faults += [f"on a phone the page is {width} px wide"] * (width > 400) + browser.value(BROKEN)
    # Printed from wherever it was scrolled to.
    browser.value("""document.querySelectorAll(".scroll").forEach((box) => box.scrollTo(150, 400));
                     window.scrollTo(0, 600)""")
    browser.call("Emulation.setEmulatedMedia", media="print", features=[])
    faults += browser.value(COVERED)
    browser.call("Emulation.setEmulatedMedia", media="", features=[])
    return faults + browser.problems()


def report(tool, root, output):
    subprocess.run([tool, "report", "--rootdir", root, "--output", output], check=True)
    return output


def write_hostile_tree(root):
    """Names that a browser could read as markup or code, wherever a document may have a name."""
    video = {
        "Features": {name: True for name in HOSTILE_NAMES},
        "Presets": {name: 1 for name in HOSTILE_NAMES},
        "perf-resource-values": {name: ["0x1", "0x2"] for name in HOSTILE_NAMES},
        "KC2CodecPlugins": list(HOSTILE_NAMES),
        "OptionalCodecs": list(HOSTILE_NAMES),
        "NimbraModeBitrateTable": [[0, 4294967295, 4294967294], [5, 5, 1], [9, 2, 7]],
        "<img src=x>": {}, "Feature" + HOSTILE_NAMES[0]: {},
    }
    for directory in ("vendor/etc/media", "odm/etc/media_<img src=x onerror=window.ran=1>",
                      "odm/etc/media_'\"\u202e\n\x1b[31m&amp;",
                      "odm/etc/media_" + os.fsdecode(b"\xff\xfe")):
        path = root / directory / "video_system_specs.json"
        path.parent.mkdir(parents=True)
        path.write_text(json.dumps({"Video": video}))
        video["Presets"]["one more"] = 1
    private = root / "data/vendor/media/video_private_configs.json"
    private.parent.mkdir(parents=True)
    private.write_text('{"Video": {"Features": {"a": "<script>window.ran=1</script>", }}}')


def write_trees(directory, variants):
    """A tree for each of the documents, in which it is the one without a variant."""
    generator = random.Random(1)
    words = ("a", "b", "c", "b_c", "d")
    texts = [json.dumps({"Video": {
        "Features": {word: generator.random() < 0.5 for word in generator.sample(words, 3)},
        "Presets": {word: generator.randrange(3) for word in generator.sample(words, 3)},
        "KC2CodecPlugins": generator.choices(words, k=generator.randrange(9)),
        "OptionalCodecs": generator.sample(words, 2),
        "NimbraModeBitrateTable": [[row, 9, generator.randrange(2)] for row in
                                   generator.choices(range(4), k=5)]}}) for _ in range(variants)]
    for number in range(variants):
        for other, text in enumerate(texts):
            name = "vendor/etc/media" if other == number else f"odm/etc/media_v{other}"
            path = directory / f"{number}" / name / "video_system_specs.json"
            path.parent.mkdir(parents=True)
            path.write_text(text)
        yield directory / f"{number}"


def write_many_variants(root, count=40):
    """Loads that are all different, with findings about entries of some."""
    for number in range(count):
        path = root / f"odm/etc/media_orvelle_{number}" / "video_system_specs.json"
        path.parent.mkdir(parents=True)
        path.write_text(json.dumps({"Video": {
            "Features": {"private_enc_enable_open_gop": 1 if number % 3 == 0 else True},
            "Presets": {"private_max_supported_render_rate": 30 * number,
                        "vendor_max_instances": 16 if number % 4 else "16"},
            "KC2CodecPlugins": [f"libvendor_plugin_{number % 5}.so"],
            "codecs-available": {"decoders": ["c2.kvx.avc.decoder", "c2.kvx.hevc.decoder"],
                                 "encoders": ["c2.kvx.avc.encoder"]}}}, indent=4))
    return root


def choose(browser, index):
    browser.value(f'document.getElementById("baseline").selectedIndex = {index};'
                  'document.getElementById("baseline").dispatchEvent(new Event("change"))')


def check_baselines(browser, tool, scratch):
    """A column that is chosen must get the marks of a page on which it is the first."""
    pages = [report(tool, tree, scratch / f"baseline{number}.html")
             for number, tree in enumerate(write_trees(scratch / "baselines", 5))]
    expected = []
    for page in pages:
        browser.open(page, script=False)
        expected.append(browser.value(MARKS))
    browser.open(pages[0])
    for number in (1, 2, 3, 4, 0):
        choose(browser, number)
        # Without a variant, the first page has the document that the others have for _v0.
        names = {"no variant": "_v0", f"_v{number}": "no variant"} if number else {}
        found = sorted(re.sub(r"(?<=, )(no variant|_v[0-9])(?=, )",
                              lambda name: names.get(name[0], name[0]), mark)
                       for mark in browser.value(MARKS))
        expect(found == expected[number] and found,
               f"compared with _v{number}: {set(found) ^ set(expected[number])}")
        failures.extend(browser.value(COUNTS))


def check_address(browser, page):
    """The filter, "Only differences" and the column to compare with are in the address."""
    state = """[filter.value, only.checked, baseline.value, location.search,
                document.querySelector(".matrix thead .baseline").textContent]"""
    browser.open(page)
    choose(browser, 2)
    browser.value('filter.value = "dec & x"; filter.dispatchEvent(new Event("input"));'
                  "only.click()")
    changed = browser.value(state)
    expect(changed[:3] == ["dec & x", True, "_orvelle"] and changed[4] == "_orvelle",
           f"the controls are {changed}")
    browser.open(page, query=changed[3])
    expect(browser.value(state) == changed,
           f"the address {changed[3]} opens the page as {browser.value(state)}")


def check_tab_stops(browser, page):
    browser.open(page)
    stops = []
    for _ in range(60):
        browser.key("Tab")
        stops.append(browser.value("""(() => {
            const box = document.activeElement.closest(".scroll");
            return box === document.activeElement ? box.getAttribute("aria-labelledby")
                : box ? `${document.activeElement.tagName} in a table` : document.activeElement.id;
        })()"""))
        if stops[-1] and stops[-1] == browser.value(
                '[...document.querySelectorAll(".scroll")].at(-1).getAttribute("aria-labelledby")'):
            break
    boxes = [stop for stop in stops if stop and not stop.startswith(("filter", "only", "baseline"))]
    expect(boxes == browser.value(
        '[...document.querySelectorAll(".scroll")].map((box) => box.getAttribute("aria-labelledby"))'),
           f"the tab stops are {stops}")
    browser.value('document.querySelector(".high").focus()')
    links = []
    for name in ("Enter", "ArrowDown", "Enter"):
        browser.key(name, "\r" if name == "Enter" else None)
        links.append(browser.value("document.activeElement.hash"))
    target = browser.value('document.querySelector(":target")?.id ?? ""')
    expect(links[0] and links[1] and "#" + target == links[1],
           f"by keyboard, the links of the matrix are {links}, and the second leads to {target}")


def check_controls(browser, page):
    browser.open(page)
    rows = browser.value(SHOWN_ROWS)
    differing = browser.value('document.querySelectorAll(".matrix .row:has(.differs)").length')
    expect(0 < differing < len(rows), "the example has equal and differing rows")

    # By keyboard alone: past the links at the top and the table of the loads.
    stops = browser.value('document.querySelectorAll(".skip, header a").length') + 2
    for _ in range(stops):
        browser.key("Tab")
    expect(browser.value("document.activeElement.id") == "filter", "Tab does not reach the filter")
    expect(browser.value("getComputedStyle(document.activeElement).outlineStyle") == "solid",
           "the focus is not shown")
    browser.call("Input.insertText", text="HEVC encoder")
    filtered = browser.value(SHOWN_ROWS)
    expect(filtered == [row for row in rows if "hevc" in row and "encoder" in row] and filtered,
           f"the filter leaves {filtered}")
    expect(browser.value('document.getElementById("shown").textContent')
           == f"{len(filtered)} of {len(rows)} rows", "the filter shows a wrong count")
    browser.value('document.getElementById("filter").value = "";'
                  'document.getElementById("filter").dispatchEvent(new Event("input"))')
    browser.key("Tab")
    browser.key(" ", " ")
    expect(len(browser.value(SHOWN_ROWS)) == differing, "\"Only differences\" by keyboard")
    expect(browser.value('document.getElementById("shown").textContent')
           == f"{differing} of {len(rows)} rows", "\"Only differences\" shows a wrong count")
    failures.extend(browser.problems())
    return rows, differing


def check_without_script(browser, page, rows, differing):
    browser.open(page, script=False)
    expect(browser.value(SHOWN_ROWS) == rows, "without a script rows are missing")
    expect(not browser.value('document.getElementById("filter").checkVisibility()'),
           "without a script there is a filter that does nothing")
    expect(not browser.value('document.getElementById("baseline").checkVisibility()'),
           "without a script there is a choice that does nothing")
    expect(browser.value("[...document.querySelectorAll('details')].every((list) => list.open)"),
           "without a script a list is folded")
    browser.value('document.getElementById("only").click()')
    expect(len(browser.value(SHOWN_ROWS)) == differing, "\"Only differences\" without a script")


def check_looks(browser, page):
    browser.open(page)
    for name, features, media in (("light", "light", ""), ("dark", "dark", ""),
                                  ("paper", "dark", "print")):
        browser.call("Emulation.setEmulatedMedia", media=media,
                     features=[{"name": "prefers-color-scheme", "value": features}])
        ratio, element = browser.value(CONTRAST)
        expect(ratio >= 4.5, f"{name}: contrast of {ratio:.2f} in {element}")
    expect(not browser.value('document.querySelector(".controls").checkVisibility()'),
           "the controls are printed")
    browser.call("Emulation.setEmulatedMedia", media="", features=[])
    browser.call("Accessibility.enable")
    nodes = browser.call("Accessibility.getFullAXTree")["nodes"]
    roles = {}
    for node in nodes:
        if not node["ignored"]:
            roles.setdefault(node["role"]["value"], []).append(
                node.get("name", {}).get("value", ""))
    for role, least in (("columnheader", 9), ("rowheader", 50), ("image", 3), ("main", 1),
                        ("navigation", 1), ("searchbox", 1), ("checkbox", 1), ("status", 1)):
        expect(len(roles.get(role, [])) >= least, f"a screen reader finds too few: {role}")
    for role in ("searchbox", "checkbox", "image", "navigation", "link", "columnheader"):
        expect(all(roles.get(role, [])), f"a screen reader finds one without a name: {role}")
    texts = " ".join(roles.get("StaticText", []))
    for text in ("differs: ", "not there"):
        expect(text in texts, f"a screen reader does not say: {text}")


def check_plants(browser, page, scratch):
    """Each fault must be found; otherwise the checks above prove nothing."""
    text = page.read_text()
    escaped = "&lt;img src=x onerror=&#39;window.ran = 1&#39;&gt;"
    assert escaped in text
    # In the place of the policy, so that nothing else changes.
    lawless = re.sub(r"default-src [^\"]*", "default-src * 'unsafe-inline'", text)
    plants = {
        "a text of a document ran":
            lawless.replace(escaped, "<img src=x onerror='window.ran = 1'>"),
        "a text of a document became an element": text.replace(escaped, "<img src=x>"),
        "request: ": lawless.replace("<main>", "<main><object data='http://localhost:9/x'>"),
        "console: ": text.replace('"use strict";', '"use strict"; '),  # Another hash.
        "attribute ": text.replace("<main>", "<main onclick='1'>"),
        "a header cell without scope or text": text.replace('scope="row"', "", 1),
        "covered: ": text.replace("@media screen {", "@media all {"),
        "broken: ": text.replace("<wbr>", "").replace("code.name { white-space: nowrap;",
                                                      "code.name {"),
        "on a phone ": text.replace(".scroll { overflow: auto;", ".scroll {"),
        "count: rows at the top": text.replace(" rows</b>", "1 rows</b>"),
    }
    for fault, planted in plants.items():
        assert planted not in (text, lawless), fault
        path = scratch / "planted.html"
        path.write_text(planted)
        found = faults_of(browser, path)
        expect(any(problem.startswith(fault) for problem in found),
               f"planted, but not found: {fault}; found {found}")


def check_policy(page):
    script = (ROOT / "tools/kcodec2_spec/report/page.js").read_bytes()
    digest = base64.b64encode(hashlib.sha256(script).digest()).decode()
    expect(f"'sha256-{digest}'" in page.read_text(),
           f"the page's policy must name the hash of page.js, sha256-{digest}")


def text_of_picture(browser, page):
    """The picture's hash, and the page's text up to the second group of the matrix."""
    digest = hashlib.sha256(PICTURE_FILE.read_bytes()).hexdigest()
    browser.open(page, width=PICTURE[0], height=PICTURE[1])
    text = browser.value("document.body.innerText").split("\nPresets")[0]
    return f"{PICTURE_FILE.name}: SHA-256 {digest}\n{text}\n"


def take_picture(browser, page, path):
    browser.open(page, width=PICTURE[0], height=PICTURE[1])
    picture = base64.b64decode(browser.call("Page.captureScreenshot", format="png")["data"])
    path.write_bytes(picture)
    if path.resolve() == PICTURE_FILE:
        PICTURE_TEXT.write_text(text_of_picture(browser, page))
    expect(len(picture) < MOST_PICTURE_BYTES, f"the picture has {len(picture)} bytes")


def main():
    arguments = sys.argv[1:]
    picture = None
    if arguments[:1] == ["--picture"]:
        picture = Path(arguments[1])
        arguments = arguments[2:]
    tool = Path(arguments[0] if arguments else ROOT / "build/dev").resolve() / "kcodec2_spec"
    if not tool.exists():
        sys.exit(f"check-report: {tool} is missing: cmake --build --preset dev")
    os.chdir(ROOT)
    with tempfile.TemporaryDirectory() as directory:
        scratch = Path(directory)
        page = report(tool, "examples/device", scratch / "report.html")
        browser = Browser(scratch)
        if picture:
            take_picture(browser, page, picture)
        else:
            check_policy(page)
            expect(text_of_picture(browser, page) == PICTURE_TEXT.read_text(),
                   f"the README's picture is not of this page: {TAKE_PICTURE}")
            failures.extend(faults_of(browser, page))
            rows, differing = check_controls(browser, page)
            check_without_script(browser, page, rows, differing)
            check_looks(browser, page)
            check_baselines(browser, tool, scratch)
            check_address(browser, page)
            many = report(tool, write_many_variants(scratch / "many"), scratch / "many.html")
            failures.extend(faults_of(browser, many))
            check_tab_stops(browser, many)
            tree = scratch / "<b onclick='x'>&\""
            write_hostile_tree(tree)
            hostile = report(tool, tree, scratch / "hostile.html")
            failures.extend(faults_of(browser, hostile))
            if not failures:
                check_plants(browser, hostile, scratch)
        browser.close()
    for failure in failures:
        print(f"check-report: {failure}", file=sys.stderr)
    if not failures:
        print("check-report: the page is as it should be")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
