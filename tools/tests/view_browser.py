#!/usr/bin/env python3
"""Pages of `keyasn view` opened in headless Chromium with the network off.

One browser runs for the whole test and is driven over its debugging pipe
(file descriptors 3 and 4, messages of JSON ended by a NUL octet); every page is
opened from file://, and any script error, console error or request for
anything but the page itself fails the test.

Usage: view_browser.py KEYASN SOURCE_DIR dom CA_BUNDLE
       view_browser.py KEYASN SOURCE_DIR corpus CORPUS_DIR [STEP]

dom:    every sample, a certificate of the CA bundle and a page of hostile
        strings: the page's tree (read from the DOM as --dump-dom gives it) has
        a node for every element `dump --json` lists, with the same offsets; the
        strings stay text; a 1 MiB input makes a page under 8 MiB that is ready
        in under 2 seconds.
corpus: a page of every STEPth file of CORPUS_DIR opens without an error.
Exit status 77 (skipped) when Chromium is not installed.
"""

import base64
import fcntl
import glob
import html.parser
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

SKIP = 77
DATA_START = '<script id="keyasn-data" type="application/json">'
# A URL or a reference to one: a scheme, a scheme-relative path, an import.
URL = re.compile(r"""(?i)(\b[a-z][a-z0-9+.-]*://|\b(https?|ftp|wss?):|["'(=][ \t]*//|@import|url\s*\()""")


def fail(message):
    print("FAIL: " + message)
    sys.exit(1)


def find_chromium():
    for name in ("chromium", "chromium-browser"):
        path = shutil.which(name)
        if path:
            return path
    return None


class Browser:
    """One headless Chromium, one page, driven by the DevTools protocol."""

    def __init__(self, chromium, profile):
        to_browser_r, self.to_browser = os.pipe()
        self.from_browser, from_browser_w = os.pipe()

        def pipes():
            # Move the ends out of the way first, so that neither lands on the other.
            a = fcntl.fcntl(to_browser_r, fcntl.F_DUPFD, 10)
            b = fcntl.fcntl(from_browser_w, fcntl.F_DUPFD, 10)
            os.dup2(a, 3)
            os.dup2(b, 4)

        args = [chromium, "--headless", "--no-sandbox", "--disable-gpu",
                "--disable-background-networking", "--disable-component-update",
                "--disable-sync", "--no-first-run", "--disable-extensions",
                "--disable-default-apps", "--mute-audio", "--no-default-browser-check",
                # No network: every name is unknown and every connection goes nowhere.
                "--proxy-server=127.0.0.1:9", "--host-resolver-rules=MAP * ~NOTFOUND",
                "--user-data-dir=" + profile, "--remote-debugging-pipe", "about:blank"]
        self.process = subprocess.Popen(args, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, close_fds=False,
                                        preexec_fn=pipes)
        os.close(to_browser_r)
        os.close(from_browser_w)
        self.buffer = b""
        self.next_id = 0
        self.events = []
        self.session = None
        targets = self.call("Target.getTargets")["targetInfos"]
        page = next(t for t in targets if t["type"] == "page")
        self.session = self.call("Target.attachToTarget",
                                 {"targetId": page["targetId"], "flatten": True})["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")
        self.call("Network.emulateNetworkConditions",
                  {"offline": True, "latency": 0, "downloadThroughput": -1,
                   "uploadThroughput": -1})

    def send(self, method, params=None):
        self.next_id += 1
        message = {"id": self.next_id, "method": method, "params": params or {}}
        if self.session and not method.startswith("Target."):
            message["sessionId"] = self.session
        os.write(self.to_browser, json.dumps(message).encode() + b"\0")
        return self.next_id

    def receive(self, deadline):
        while b"\0" not in self.buffer:
            if time.monotonic() > deadline:
                raise TimeoutError("no answer from the browser")
            chunk = os.read(self.from_browser, 1 << 20)
            if not chunk:
                raise RuntimeError("the browser has gone")
            self.buffer += chunk
        message, self.buffer = self.buffer.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, params=None, timeout=30):
        wanted = self.send(method, params)
        deadline = time.monotonic() + timeout
        while True:
            message = self.receive(deadline)
            if message.get("id") == wanted:
                if "error" in message:
                    raise RuntimeError(method + ": " + json.dumps(message["error"]))
                return message.get("result", {})
            if "method" in message:
                self.events.append(message)

    def wait_event(self, name, timeout=30):
        deadline = time.monotonic() + timeout
        while True:
            for k, event in enumerate(self.events):
                if event["method"] == name:
                    del self.events[k]
                    return event
            message = self.receive(deadline)
            if "method" in message:
                self.events.append(message)

    def open(self, url):
        """Opens url; returns the problems seen while it loaded (errors, requests)."""
        self.events = []
        self.call("Page.navigate", {"url": url})
        self.wait_event("Page.loadEventFired")
        # The page's script runs before the load event; the round trip of this
        # question collects the events that came with it.
        ready = self.evaluate("document.body && document.body.getAttribute('data-ready-ms')")
        problems = []
        for event in self.events:
            method, params = event["method"], event.get("params", {})
            if method == "Runtime.exceptionThrown":
                details = params["exceptionDetails"]
                problems.append("script error: " + details.get("exception", {}).get(
                    "description", details.get("text", "")))
            elif method == "Runtime.consoleAPICalled" and params.get("type") in ("error", "assert"):
                problems.append("console error: " + json.dumps(params.get("args")))
            elif method == "Log.entryAdded" and params["entry"].get("level") == "error":
                problems.append("log error: " + params["entry"].get("text", ""))
            elif method == "Network.requestWillBeSent":
                request_url = params["request"]["url"]
                if not request_url.startswith(("file:", "data:", "about:")):
                    problems.append("request: " + request_url)
            elif method == "Page.javascriptDialogOpening":
                problems.append("dialog: " + params.get("message", ""))
        if ready is None:
            problems.append("the page's script did not finish")
        return problems

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", {"expression": expression, "returnByValue": True,
                                                "awaitPromise": True})
        if "exceptionDetails" in result:
            raise RuntimeError("evaluate " + expression + ": " + json.dumps(result["exceptionDetails"]))
        return result["result"].get("value")

    def dom(self):
        """The document as --dump-dom prints it."""
        root = self.call("DOM.getDocument", {"depth": 0})["root"]
        return self.call("DOM.getOuterHTML", {"nodeId": root["nodeId"]})["outerHTML"]

    def close(self):
        try:
            self.call("Browser.close", timeout=5)
        except Exception:
            pass
        try:
            self.process.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.to_browser)
        os.close(self.from_browser)


class TreeNodes(html.parser.HTMLParser):
    """The (offset, header, length) of every tree node in a page's markup."""

    def __init__(self):
        super().__init__()
        self.nodes = []

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if tag == "li" and "node" in (attrs.get("class") or "").split():
            length = attrs["data-length"]
            self.nodes.append((int(attrs["data-offset"]), int(attrs["data-header"]),
                               int(length) if length else None))


def run(keyasn, args, out_path=None, check=True):
    env = dict(os.environ, KEYASN_OIDS="none")
    result = subprocess.run([keyasn] + args, env=env, capture_output=True, stdin=subprocess.DEVNULL)
    if out_path is None and check and result.returncode not in (0, 2):
        fail("keyasn %s: status %d: %s" % (" ".join(args), result.returncode, result.stderr.decode()))
    return result


def dump_elements(keyasn, path):
    result = run(keyasn, ["dump", "--json", path])
    found = []

    def walk(items):
        for item in items:
            found.append((item["offset"], item["header_length"], item["length"]))
            walk(item["children"])
    walk(json.loads(result.stdout))
    return sorted(found)


def make_page(keyasn, source, page, extra=()):
    result = run(keyasn, ["view"] + list(extra) + ["-o", page, source])
    if result.returncode not in (0, 2) or not os.path.exists(page):
        fail("view %s: status %d: %s" % (source, result.returncode, result.stderr.decode()))
    text = open(page, encoding="utf-8").read()
    # Nothing may be fetched: no URL in the page around its data (the data is
    # JSON that the script only reads as text, and may well hold URLs).
    start = text.index(DATA_START) + len(DATA_START)
    markup = text[:start] + text[text.index("</script>", start):]
    found = URL.search(markup)
    if found:
        fail("%s: the page refers to something outside it: %r" % (source, found.group(0)))
    return result.returncode


def der(tag, contents):
    size = len(contents)
    if size < 0x80:
        length = bytes([size])
    else:
        octets = size.to_bytes((size.bit_length() + 7) // 8, "big")
        length = bytes([0x80 | len(octets)]) + octets
    return bytes([tag]) + length + contents


def dom_test(keyasn, source_dir, bundle, browser, work):
    inputs = sorted(glob.glob(os.path.join(source_dir, "samples", "*.der")))
    # One certificate of the CA bundle, as DER.
    if os.path.exists(bundle):
        pem = open(bundle).read()
        end = pem.index("-----END CERTIFICATE-----")
        body = pem[pem.index("-----BEGIN CERTIFICATE-----"):end].splitlines()[1:]
        certificate = os.path.join(work, "ca-certificate.der")
        with open(certificate, "wb") as f:
            f.write(base64.b64decode("".join(body)))
        inputs.append(certificate)
    else:
        print("no CA bundle at %s: its certificate not checked" % bundle)
    # A damaged input: a certificate cut short.
    cut = os.path.join(work, "cut.der")
    with open(cut, "wb") as f:
        f.write(open(inputs[-1], "rb").read()[:300])
    inputs.append(cut)
    checked = 0
    for number, source in enumerate(inputs):
        page = os.path.join(work, "page%d.html" % number)
        status = make_page(keyasn, source, page)
        if (status == 2) != (source == cut):
            fail("view %s: status %d" % (source, status))
        problems = browser.open("file://" + page)
        if problems:
            fail("%s: %s" % (source, "; ".join(problems)))
        parser = TreeNodes()
        parser.feed(browser.dom())
        expected = dump_elements(keyasn, source)
        if sorted(parser.nodes) != expected:
            missing = sorted(set(expected) - set(parser.nodes))[:5]
            extra = sorted(set(parser.nodes) - set(expected))[:5]
            fail("%s: tree nodes differ from dump --json (missing %s, extra %s)" % (source, missing, extra))
        checked += 1
    # The damage is shown: its message in the page, the rest of the octets marked.
    browser.open("file://" + os.path.join(work, "page%d.html" % (len(inputs) - 1)))
    if not browser.evaluate("document.getElementById('error').textContent.indexOf('error at offset') === 0"):
        fail("the damaged input's page does not show the error")
    if not browser.evaluate("document.querySelectorAll('#rows span.bad').length > 0"):
        fail("the damaged input's page does not mark the rest of its octets")

    # The members of the sample container, linked to the octets they came from.
    page = os.path.join(work, "container.html")
    make_page(keyasn, os.path.join(source_dir, "samples", "container.der"), page,
              ["--as", "container"])
    problems = browser.open("file://" + page + "#offset=10")
    if problems:
        fail("container --as container: " + "; ".join(problems))
    links = browser.evaluate("document.querySelectorAll('#members .member.link').length")
    if not links or links < 10:
        fail("container --as container: %s linked members" % links)
    # Clicking a member selects its element; clicking an octet, the innermost element.
    selected = browser.evaluate(
        "(function () { var m = Array.prototype.find.call(document.querySelectorAll('#members .member.link'),"
        " function (e) { return e.textContent.indexOf('KeyInfo') === 0; }); m.click();"
        " var s = document.querySelector('li.node > .row.selected'); return s && s.parentNode.getAttribute('data-offset'); })()")
    if selected != "7":
        fail("clicking the member KeyInfo selects the element at %s, not 7" % selected)
    selected = browser.evaluate(
        "(function () { var o = Array.prototype.find.call(document.querySelectorAll('#rows span.hx'),"
        " function (e) { return e._o === 11; }); o.click();"
        " var s = document.querySelector('li.node > .row.selected'); return s && s.parentNode.getAttribute('data-offset'); })()")
    if selected != "10":
        fail("clicking octet 11 selects the element at %s, not 10" % selected)
    colours = browser.evaluate("['id', 'len', 'con'].map(function (c) { return document.querySelectorAll('#rows span.hx.' + c).length; })")
    if colours != [1, 1, 1]:
        fail("the INTEGER at 10 is highlighted as %s (identifier, length, contents)" % colours)
    checked += 1

    escaping_test(keyasn, browser, work)
    size_test(keyasn, browser, work, inputs)
    print("%d pages: every element of dump --json is in the tree, offsets agree" % checked)


def escaping_test(keyasn, browser, work):
    """Strings of the input that look like markup stay text."""
    hostile = ['</script><script>alert(1)</script>', '"\'><img src=x onerror=alert(2)>',
               '</html><!-- & &amp;']
    oid = bytes([0x2A, 0x03, 0x04, 0x05])  # 1.2.3.4.5
    names = os.path.join(work, "names.cfg")
    with open(names, "w") as f:
        f.write("OID = 06 04 2A 03 04 05\nDescription = <script>alert(3)</script>\"</html>\n")
    body = (der(0x0C, hostile[0].encode()) + der(0x16, hostile[1].encode()) +
            der(0x0C, hostile[2].encode()) + der(0x06, oid))
    source = os.path.join(work, "hostile.der")
    with open(source, "wb") as f:
        f.write(der(0x30, body))
    page = os.path.join(work, "hostile.html")
    make_page(keyasn, source, page, ["--oids", names])
    text = open(page, encoding="utf-8").read()
    if text.count("<script") != 2 or text.count("</script>") != 2 or text.count("</html>") != 1:
        fail("hostile strings reach the markup of the page")
    problems = browser.open("file://" + page)
    if problems:
        fail("hostile strings: " + "; ".join(problems))
    if browser.evaluate("document.querySelectorAll('script').length") != 2:
        fail("hostile strings made script elements")
    if browser.evaluate("document.querySelectorAll('img').length") != 0:
        fail("hostile strings made an img element")
    shown = browser.evaluate("document.getElementById('tree').textContent")
    for string in hostile + ["<script>alert(3)</script>\"</html>"]:
        if string not in shown:
            fail("the tree does not show %r as text" % string)


def size_test(keyasn, browser, work, inputs):
    """1 MiB of certificates, and 1 MiB of zeros (the most elements that many
    octets hold): pages under 8 MiB, ready in under 2 seconds."""
    certificate = open(inputs[-2], "rb").read()
    for name, octets in (("certificates", certificate * ((1 << 20) // len(certificate))),
                         ("zeros", bytes(1 << 20))):
        big = os.path.join(work, name + ".der")
        with open(big, "wb") as f:
            f.write(octets)
        page = os.path.join(work, name + ".html")
        make_page(keyasn, big, page)
        size = os.path.getsize(page)
        if size >= 8 << 20:
            fail("1 MiB of %s gives a page of %d octets" % (name, size))
        # The best of three opens: the page's own cost, not the load of a shared machine.
        ready = None
        for _ in range(3):
            problems = browser.open("file://" + page)
            if problems:
                fail("1 MiB of %s: %s" % (name, "; ".join(problems)))
            this = int(browser.evaluate("document.body.getAttribute('data-ready-ms')"))
            ready = this if ready is None else min(ready, this)
            if ready < 2000:
                break
        if ready >= 2000:
            fail("the page of 1 MiB of %s is ready after %d ms" % (name, ready))
        # The last element is reached through the tree built on demand.
        last = browser.evaluate(
            "(function () { var o = %d; var hex = document.getElementById('hex');"
            " hex.scrollTop = hex.scrollHeight; hex.dispatchEvent(new Event('scroll'));"
            " return new Promise(function (done) { requestAnimationFrame(function () {"
            " var s = Array.prototype.find.call(document.querySelectorAll('#rows span.hx'),"
            " function (e) { return e._o === o; }); if (!s) { done(null); return; } s.click();"
            " var r = document.querySelector('li.node > .row.selected');"
            " done(r && r.parentNode.getAttribute('data-offset')); }); }); })()" % (len(octets) - 1))
        print("1 MiB of %s: page of %d octets, ready after %d ms, last octet in the element at %s"
              % (name, size, ready, last))
        if last is None:
            fail("1 MiB of %s: the last octet cannot be selected" % name)


def corpus_test(keyasn, corpus, step, browser, work):
    files = sorted(p for p in glob.glob(os.path.join(corpus, "**", "*"), recursive=True)
                   if os.path.isfile(p) and not p.endswith((".md", ".txt", ".tsv")))
    if not files:
        print("no corpus at %s: skipped" % corpus)
        sys.exit(SKIP)
    files = files[::step]
    started = time.monotonic()
    failures = []
    for number, source in enumerate(files):
        page = os.path.join(work, "p%d.html" % number)
        result = run(keyasn, ["view", "--inform", "der", "-o", page, source], out_path=page)
        if result.returncode not in (0, 2) or not os.path.exists(page):
            failures.append("%s: view status %d %s" % (source, result.returncode, result.stderr.decode()))
            continue
        problems = browser.open("file://" + page)
        if problems:
            failures.append("%s: %s" % (source, "; ".join(problems)))
        os.unlink(page)
    for line in failures[:20]:
        print("FAIL: " + line)
    if failures:
        fail("%d of %d pages of the corpus fail" % (len(failures), len(files)))
    print("%d pages of the corpus open without an error (%.0f s)" % (len(files), time.monotonic() - started))


def main():
    if len(sys.argv) < 5:
        print(__doc__)
        sys.exit(2)
    keyasn, source_dir, mode, target = sys.argv[1:5]
    chromium = find_chromium()
    if chromium is None:
        print("chromium is not installed (Debian package chromium; the setup test installs it "
              "when run as root): pages not opened, test skipped")
        sys.exit(SKIP)
    with tempfile.TemporaryDirectory(prefix="keyasn-view-") as work:
        browser = Browser(chromium, os.path.join(work, "profile"))
        try:
            if mode == "dom":
                dom_test(keyasn, source_dir, target, browser, work)
            else:
                corpus_test(keyasn, target, int(sys.argv[5]) if len(sys.argv) > 5 else 1, browser, work)
        finally:
            browser.close()


if __name__ == "__main__":
    main()
