#!/usr/bin/env python3
"""Looks at the page of `kelto stats --html` in a browser, with texts in it that try to be more than texts.

    report_page.py PROGRAM [FOLDER]    with FOLDER, pictures of the page are written there

The browser is chromium, driven through its debugging pipe. Where there is none the test is skipped, with status 77.
"""

import base64
import fcntl
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import xml.sax.saxutils

ATTACKS = ["<script>hit=1</script>", "\"><img src=x onerror=\"hit=1\">", "' autofocus onfocus='hit=1' x='",
           "</td></table></body><svg onload=hit=1>", "<!-- --><style>*{display:none}</style><title>",
           "&lt;script&gt;hit=1&#x3c;/script&#62; &amp;amp;",
           "</style></title><iframe srcdoc='<script>top.hit=1</script>'>",
           "<a href=\"javascript:hit=1\">x</a><base href=//x><meta http-equiv=refresh content=0;url=data:,x>"]
SHAPES = ["W" * 3000, "\u0645" * 2000, "\U0001F600" * 300, "e" + "\u0301" * 200, "a\u00a0b" * 300, "\ufdfa" * 60,
          "x \u202e turned \u202c \u2067 y \u2069 \u200f \u2028 \u2029 \u0085 \ufeff \u00ad",
          "line\\n" * 40 + "\\t\\\\u202E \\\\n",
          "\u0645\u0631\u062d\u0628\u0627 (abc) 50% [x] \u0661\u0662\u0663: %d[1] \\n %s[2]!"]
TEXTS = ATTACKS + SHAPES
ELEMENTS = set("html head meta title style body h1 h2 ul li div span a bdi p code "
               "table thead tbody tr th td br".split())
ATTRIBUTES = set("lang dir charset name content http-equiv class href id style data-label".split())

MEASURE = r"""(() => {
  const numbers = colour => colour.match(/[\d.]+/g).map(Number);
  const linear = value => (value /= 255) <= 0.03928 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4;
  const light = ([r, g, b]) => 0.2126 * linear(r) + 0.7152 * linear(g) + 0.0722 * linear(b);
  const contrast = (a, b) => (Math.max(light(a), light(b)) + 0.05) / (Math.min(light(a), light(b)) + 0.05);
  const paper = element => {
    for (; element; element = element.parentElement) {
      const colour = numbers(getComputedStyle(element).backgroundColor);
      if (colour.length < 4 || colour[3] > 0)
        return colour;
    }
    return [255, 255, 255];
  };
  const found = {width: innerWidth, scroll: document.documentElement.scrollWidth, hit: typeof hit, outside: [],
                 pale: [], elements: {}, attributes: {}};
  for (const element of document.querySelectorAll('*')) {
    found.elements[element.localName] = 1;
    for (const attribute of element.attributes)
      found.attributes[attribute.name] = 1;
  }
  for (const element of document.body.querySelectorAll('*')) {
    const box = element.getBoundingClientRect(), what = element.localName + '.' + element.className;
    if (!element.closest('thead') && (box.left < -0.5 || box.right > innerWidth + 0.5))
      found.outside.push(`${what} ${box.left} ${box.right} ${element.textContent.slice(0, 20)}`);
    const hasText = [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim());
    for (const part of [hasText ? null : undefined, '::before']) {
      const style = part === undefined ? null : getComputedStyle(element, part);
      if (style === null || (part && style.content === 'none'))
        continue;
      if (contrast(numbers(style.color), paper(element)) < 4.5)
        found.pale.push(`${what}${part ?? ''} ${style.color} on ${paper(element)}`);
      if (parseFloat(style.fontSize) < 12)
        found.pale.push(`${what} ${style.fontSize}`);
    }
    if (element.matches('.bar *') && contrast(paper(element), paper(element.parentElement)) < 3)
      found.pale.push(`${what} in its bar`);
  }
  found.isDark = light(paper(document.body)) < 0.2;
  found.texts = [...document.querySelectorAll('.text')].map(element => element.textContent);
  found.directions = [...document.querySelectorAll('.text')].map(element => {
    const style = getComputedStyle(element);
    return [element.lang, style.direction, style.textAlign, style.whiteSpace].join(' ');
  });
  found.shown = document.body.innerText.length;
  return found;
})()"""


class Browser:
    """One page of a browser."""

    def __init__(self, program, profile):
        ends = (*os.pipe(), *os.pipe())
        pipes = [fcntl.fcntl(end, fcntl.F_DUPFD_CLOEXEC, 10) for end in ends]  # out of the way of 3 and 4
        for end in ends:
            os.close(end)
        self.process = subprocess.Popen(
            [program, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
             "--remote-debugging-pipe", f"--user-data-dir={profile}", "about:blank"], stdin=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, close_fds=False,
            preexec_fn=lambda: (os.dup2(pipes[0], 3), os.dup2(pipes[3], 4)))
        os.close(pipes[0])
        os.close(pipes[3])
        self.output, self.input = os.fdopen(pipes[1], "wb", 0), os.fdopen(pipes[2], "rb", 0)
        self.pending, self.events, self.session, self.number = b"", [], None, 0
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.call(domain + ".enable")

    def receive(self):
        while b"\0" not in self.pending:
            more = self.input.read(1 << 16)
            if not more:
                raise SystemExit("the browser has ended")
            self.pending += more
        message, self.pending = self.pending.split(b"\0", 1)
        message = json.loads(message)
        if "method" in message:
            self.events.append(message)
        return message

    def call(self, method, **parameters):
        self.number += 1
        request = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            request["sessionId"] = self.session
        self.output.write(json.dumps(request).encode() + b"\0")
        while True:
            message = self.receive()
            if message.get("id") == self.number:
                if "error" in message:
                    raise SystemExit(f"{method}: {message['error']}")
                return message["result"]

    def open(self, path):
        self.events.clear()
        self.call("Page.navigate", url=path.as_uri())
        while not any(event["method"] == "Page.loadEventFired" for event in self.events):
            self.receive()

    def measure(self, width, scheme):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=844, deviceScaleFactor=1, mobile=False)
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        result = self.call("Runtime.evaluate", expression=MEASURE, returnByValue=True)["result"]
        if "value" not in result:
            raise SystemExit(result)
        return result["value"]

    def close(self):
        self.session = None
        self.call("Browser.close")
        self.process.wait()


def unit(number, source, target, state):
    escape = xml.sax.saxutils.escape
    return (f'<trans-unit id="{number}" approved="{state}"><source>{escape(source)}</source>'
            f"<target>{escape(target)}</target></trans-unit>")


def make_page(kelto, folder):
    """A page of three languages: hostile texts that are fuzzy, some that are refused, one that is finished."""
    quote = xml.sax.saxutils.quoteattr
    units = "".join(f"<trans-unit id=\"{i}\" resname={quote(text[:60])}><source>{xml.sax.saxutils.escape(text)}"
                    "</source></trans-unit>" for i, text in enumerate(TEXTS, 1))
    reference = folder / "<b>&quot;\" onclick='hit=1'.xlf"
    reference.write_text('<xliff><file source-language="en" product-name="p" product-version="1"><header/><body>'
                         f"{units}</body></file></xliff>", encoding="utf-8")
    files = []
    for name, language, state in (("ar.xliff", "ar", "no"),
                                  ("<img src=x onerror=hit=1>.xliff", "\"><script>hit=1</script>", "yes"),
                                  ("W" * 150 + ".xliff", "de", "yes")):
        targets = TEXTS if language != "de" else [text + "%s[9]" for text in TEXTS]
        body = "".join(unit(i, TEXTS[i - 1], text, state) for i, text in enumerate(targets, 1))
        files.append(folder / name)
        files[-1].write_text(f'<xliff version="1.2"><file target-language={quote(language)}><body>{body}</body>'
                             "</file></xliff>", encoding="utf-8")
    page = folder / "report.html"
    subprocess.run([kelto, "stats", "-r", reference, *files, "--html", page], check=False, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, env={**os.environ, "LC_ALL": "C.UTF-8"})
    return page


def main(kelto, pictures=None):
    program = shutil.which("chromium")
    if program is None:
        print("skipped: there is no chromium here to look at the page with")
        return 77
    faults = []

    def require(holds, *words):
        if not holds:
            faults.append(" ".join(str(word) for word in words))

    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        page = make_page(kelto, folder)
        browser = Browser(program, folder / "profile")
        for bypass in (False, True):  # the policy of the page forbids scripts; without it none runs either
            browser.call("Page.setBypassCSP", enabled=bypass)
            browser.open(page)
            for width in (390, 1280):
                for scheme in ("light", "dark"):
                    found = browser.measure(width, scheme)
                    where = f"{width}, {scheme}:"
                    require(found["hit"] == "undefined", where, "a script has run")
                    require(found["isDark"] == (scheme == "dark"), where, "the page has the other colours")
                    require(found["width"] == width and found["scroll"] <= width, where, "as wide as", found["scroll"])
                    require(not found["outside"], where, "outside of the page:", *found["outside"][:5])
                    require(not found["pale"], where, "hard to read:", *sorted(set(found["pale"]))[:5])
                    strange = set(found["elements"]) - ELEMENTS | set(found["attributes"]) - ATTRIBUTES
                    require(not strange, where, "not ours:", *strange)
                    require(found["shown"] > 10000, where, "hardly anything is shown")
                    for text in ATTACKS + SHAPES[:6]:
                        require(found["texts"].count(text) >= 2, where, "not shown as it is:", text[:60])
                    rows = set(found["directions"])
                    require("ar rtl start pre-wrap" in rows and "en ltr start pre-wrap" in rows, where, *rows)
                    require(all(row.startswith("ar") == (" rtl " in row) for row in rows), where, *rows)
                    if pictures and not bypass:
                        data = browser.call("Page.captureScreenshot", captureBeyondViewport=True)["data"]
                        (pathlib.Path(pictures) / f"{width}-{scheme}.png").write_bytes(base64.b64decode(data))
            asked = [event["params"]["request"]["url"] for event in browser.events
                     if event["method"] == "Network.requestWillBeSent"]
            require(len(asked) == 1, "asked for:", *asked)
            logged = [event["params"]["entry"]["text"] for event in browser.events
                      if event["method"] == "Log.entryAdded"]
            require(not logged, "logged:", *logged)
        browser.close()
    print("\n".join(faults) or "nothing found")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
