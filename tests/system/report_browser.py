#!/usr/bin/env python3
"""Serves scripts/report_test.sh: opens a page in a browser over its debugging pipe (no network), and
says what it shows. Usage: report_browser.py BROWSER PAGE FOLDER"""
import base64
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

browser, page, folder = sys.argv[1:]
DEADLINE = time.monotonic() + 120


class Browser:
    """The DevTools protocol: JSON texts with a zero behind each, on descriptors 3 and 4."""

    def __init__(self, program):
        to_read, self.to = os.pipe()
        self.source, from_write = os.pipe()
        self.profile = tempfile.TemporaryDirectory()

        def hand_over():
            os.dup2(to_read, 3)
            os.dup2(from_write, 4)

        # The pipes must not sit on 3 and 4 themselves while they are handed over.
        self.process = subprocess.Popen(
            [program, "--headless=new", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
             "--hide-scrollbars", "--user-data-dir=" + self.profile.name, "about:blank"],
            pass_fds=(3, 4), preexec_fn=hand_over, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(to_read)
        os.close(from_write)
        self.number = 0
        self.rest = b""
        self.events = []

    def receive(self):
        while b"\0" not in self.rest:
            if time.monotonic() > DEADLINE:
                raise TimeoutError("the browser does not answer")
            part = os.read(self.source, 1 << 20)
            if not part:
                raise ConnectionError("the browser ended")
            self.rest += part
        text, self.rest = self.rest.split(b"\0", 1)
        return json.loads(text)

    def call(self, method, session=None, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        os.write(self.to, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(method + ": " + answer["error"]["message"])
                return answer["result"]
            self.events.append(answer)

    def wait_for(self, method):
        while not any(event.get("method") == method for event in self.events):
            self.events.append(self.receive())

    def close(self):
        self.process.terminate()
        self.process.wait(20)


failures = 0


def check(good, what):
    global failures
    if not good:
        failures += 1
        print("FAILED: " + what)


for descriptor in (3, 4):  # taken, so that no pipe gets these numbers
    try:
        os.fstat(descriptor)
    except OSError:
        while os.open("/dev/null", os.O_RDWR) < descriptor:
            pass
chrome = Browser(browser)
try:
    target = chrome.call("Target.createTarget", url="about:blank")["targetId"]
    session = chrome.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]

    def call(method, **parameters):
        return chrome.call(method, session, **parameters)

    def value(expression):
        return call("Runtime.evaluate", expression=expression, returnByValue=True)["result"].get("value")

    for domain in ("Page", "Runtime", "Log", "Network"):
        call(domain + ".enable")
    call("Page.navigate", url=pathlib.Path(page).absolute().as_uri())
    chrome.wait_for("Page.loadEventFired")

    sections = value("[...document.querySelectorAll('main section')].map(e => e.id).join(' ')")
    for name in ("ports", "samples", "events", "code", "sources"):
        check(name in sections.split(), "no section " + name + " among " + sections)
    check(value("document.querySelectorAll('svg.chart polyline').length") >= 4, "no charts")
    check(value("document.querySelectorAll('svg.limits rect.mark').length") >= 5, "no limits as bars")
    check(value("[...document.querySelectorAll('svg[role=img]')].every(e => e.ariaLabel.length > 10)"),
          "a picture has no text")
    check(value("[...document.querySelectorAll('table')].every(e => e.caption && e.querySelector('th'))"),
          "a table has no caption or no headings")
    check(value("document.querySelectorAll('h1').length") == 1, "not one main heading")
    check(value("[...document.querySelectorAll('nav a')].every(e => document.querySelector(e.hash))"),
          "the contents lead nowhere")
    # What names from the fabric hold is text.
    check(value("document.querySelectorAll('script, iframe, object, img, [onload], [onerror]').length") == 0,
          "a name became an element")
    check(value("typeof window.hostile") == "undefined", "a name ran")
    check("<script>" in value("document.body.textContent"), "the hostile name is not shown")
    foreign = [event["params"]["request"]["url"] for event in chrome.events
               if event.get("method") == "Network.requestWillBeSent"
               and not event["params"]["request"]["url"].startswith(("file:", "data:"))]
    check(not foreign, "the page fetches " + ", ".join(foreign))

    for width in (1200, 400):
        for scheme in ("light", "dark"):
            call("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": scheme}])
            call("Emulation.setDeviceMetricsOverride", width=width, height=900,
                 deviceScaleFactor=1, mobile=False)
            check(value("document.documentElement.scrollWidth") <= width,
                  "the page is wider than %d" % width)
            height = min(value("document.documentElement.scrollHeight"), 16000)
            picture = call("Page.captureScreenshot", captureBeyondViewport=True,
                           clip={"x": 0, "y": 0, "width": width, "height": height, "scale": 1})
            name = "report-%d-%s.png" % (width, scheme)
            pathlib.Path(folder, name).write_bytes(base64.b64decode(picture["data"]))
    grounds = {}
    for scheme in ("light", "dark"):
        call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        grounds[scheme] = value("getComputedStyle(document.body).backgroundColor")
    check(grounds["light"] != grounds["dark"], "one colour scheme for both")
    call("Emulation.setEmulatedMedia", media="print")
    paper = call("Page.printToPDF")
    check(len(paper["data"]) > 10000, "nothing to print")

    complaints = [event["params"] for event in chrome.events
                  if event.get("method") in ("Runtime.exceptionThrown", "Runtime.consoleAPICalled")
                  or event.get("method") == "Log.entryAdded"
                  and event["params"]["entry"]["level"] in ("error", "warning")]
    check(not complaints, "the console says " + json.dumps(complaints)[:500])
finally:
    chrome.close()
print("1 passed, 0 failed" if failures == 0 else "0 passed, %d failed" % failures)
sys.exit(failures != 0)
