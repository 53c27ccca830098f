#!/usr/bin/env python3
"""The call report in a real browser: headless Chromium driven through the
DevTools protocol, with nothing but Python's standard library.

  report_browser.py check VELMORA TRACE...       load each trace's report, open every call's
                                                 ladder by a mouse click and check it
  report_browser.py screenshot VELMORA TRACE PNG the report with the first call's ladder open
  report_browser.py measure REPORT               how long a report takes to become usable

`check` compares the page with what velmora writes of the same trace in its
other forms: the rows with --to calls-csv, the ladders' messages with
--to calls-json and with the frames' own call reference flags and TX/RX
markers, and each arrow's text with the message file. Any console error or
uncaught exception fails. Without a browser it exits 77 (skipped).
"""
import base64
import csv
import http.client
import io
import json
import os
import re
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
import urllib.parse

SKIPPED = 77
BROWSERS = ("chromium-headless-shell", "chromium")
WINDOW = (1280, 1180)


class Failure(Exception):
    pass


def expect(condition, what):
    if not condition:
        raise Failure(what)


# ---- A websocket client, enough for the DevTools protocol (RFC 6455) ----

class WebSocket:
    def __init__(self, url):
        parts = urllib.parse.urlsplit(url)
        self.sock = socket.create_connection((parts.hostname, parts.port), timeout=60)
        key = base64.b64encode(os.urandom(16)).decode()
        request = (f"GET {parts.path} HTTP/1.1\r\nHost: {parts.hostname}:{parts.port}\r\n"
                   f"Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Key: {key}\r\n"
                   "Sec-WebSocket-Version: 13\r\n\r\n")
        self.sock.sendall(request.encode())
        response = b""
        while b"\r\n\r\n" not in response:
            chunk = self.sock.recv(4096)
            if not chunk:
                raise Failure("the browser closed the DevTools connection")
            response += chunk
        head, self.buffer = response.split(b"\r\n\r\n", 1)
        expect(head.startswith(b"HTTP/1.1 101"), "no websocket upgrade: " + head.decode(errors="replace"))

    def send(self, text):
        payload = text.encode()
        header = bytearray([0x81])
        if len(payload) < 126:
            header.append(0x80 | len(payload))
        elif len(payload) < 65536:
            header += bytes([0x80 | 126]) + struct.pack(">H", len(payload))
        else:
            header += bytes([0x80 | 127]) + struct.pack(">Q", len(payload))
        mask = os.urandom(4)
        self.sock.sendall(bytes(header) + mask + bytes(b ^ mask[i % 4] for i, b in enumerate(payload)))

    def _read(self, size):
        while len(self.buffer) < size:
            chunk = self.sock.recv(1 << 20)
            if not chunk:
                raise Failure("the browser closed the DevTools connection")
            self.buffer += chunk
        data, self.buffer = self.buffer[:size], self.buffer[size:]
        return data

    def receive(self):
        message = b""
        while True:
            first, second = self._read(2)
            size = second & 0x7F
            if size == 126:
                size = struct.unpack(">H", self._read(2))[0]
            elif size == 127:
                size = struct.unpack(">Q", self._read(8))[0]
            payload = self._read(size)
            opcode = first & 0x0F
            if opcode == 0x8:
                raise Failure("the browser closed the DevTools connection")
            if opcode in (0x9, 0xA):  # ping, pong
                continue
            message += payload
            if first & 0x80:
                return message.decode()


# ---- The browser ----

def find_browser():
    for name in BROWSERS:
        path = shutil.which(name)
        if path:
            return path
    return None


def start_browser():
    """A Browser, or the exit status to end with: SKIPPED where there is
    none, 1 where it does not start."""
    browser = find_browser()
    if browser is None:
        print("skipped: no headless Chromium found (Debian's chromium-headless-shell or chromium)")
        return SKIPPED
    try:
        return Browser(browser)
    except Failure as failure:
        print(f"FAILED: {browser}: {failure}")
        return 1


class Browser:
    """A headless Chromium with one page, its console watched."""

    def __init__(self, path):
        self.profile = tempfile.mkdtemp(prefix="velmora_browser_")
        arguments = [path, "--headless", "--remote-debugging-port=0", f"--user-data-dir={self.profile}",
                     "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
                     "--disable-component-update", "--disable-sync", "--hide-scrollbars",
                     f"--window-size={WINDOW[0]},{WINDOW[1]}", "about:blank"]
        # A group of its own: Debian's command is a shell script that starts
        # the browser as its child, and the browser starts more; all end together.
        self.process = subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.PIPE, text=True, start_new_session=True)
        try:
            self._connect()
        except BaseException:
            self.close()
            raise

    def _connect(self):
        port = None
        deadline = time.monotonic() + 60
        while port is None and time.monotonic() < deadline:
            line = self.process.stderr.readline()
            if not line:
                break
            found = re.search(r"DevTools listening on ws://[^:]+:(\d+)/", line)
            if found:
                port = int(found.group(1))
        if port is None:
            raise Failure("the browser did not print its DevTools address")
        connection = http.client.HTTPConnection("127.0.0.1", port, timeout=30)
        connection.request("GET", "/json/list")
        pages = [t for t in json.loads(connection.getresponse().read()) if t["type"] == "page"]
        expect(pages, "the browser has no page")
        self.socket = WebSocket(pages[0]["webSocketDebuggerUrl"])
        self.next_id = 0
        self.events = []
        for domain in ("Page", "Runtime", "Log"):
            self.call(domain + ".enable")

    def call(self, method, **params):
        self.next_id += 1
        self.socket.send(json.dumps({"id": self.next_id, "method": method, "params": params}))
        while True:
            message = json.loads(self.socket.receive())
            if message.get("id") == self.next_id:
                if "error" in message:
                    raise Failure(f"{method}: {message['error']}")
                return message["result"]
            if "method" in message:
                self.events.append(message)

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise Failure(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def open(self, path, timeout=120):
        """Loads a file and waits until the report says it is ready; the
        seconds from navigation to then."""
        self.events.clear()
        start = time.monotonic()
        self.call("Page.navigate", url="file://" + urllib.parse.quote(os.path.abspath(path)))
        while time.monotonic() - start < timeout:
            if self.evaluate("document.readyState === 'complete' && !!window.velmoraReport"):
                return time.monotonic() - start
            time.sleep(0.05)
        raise Failure(f"{path}: the report did not become ready in {timeout} s")

    def click(self, selector):
        """A real mouse click at the middle of the element the selector finds."""
        box = self.evaluate(f"""(() => {{
            const node = document.querySelector({json.dumps(selector)});
            if (!node) return null;
            node.scrollIntoView({{block: 'nearest'}});
            const r = node.getBoundingClientRect();
            return [r.left + r.width / 2, r.top + r.height / 2];
        }})()""")
        expect(box is not None, f"nothing to click at {selector}")
        for kind in ("mouseMoved", "mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=box[0], y=box[1], button="left", clickCount=1)

    def errors(self):
        found = []
        for event in self.events:
            method, params = event["method"], event.get("params", {})
            if method == "Runtime.exceptionThrown":
                found.append(params["exceptionDetails"].get("exception", {}).get("description") or str(params))
            elif method == "Runtime.consoleAPICalled" and params.get("type") in ("error", "assert"):
                found.append(" ".join(str(a.get("value", a.get("description"))) for a in params.get("args", [])))
            elif method == "Log.entryAdded" and params["entry"].get("level") == "error":
                found.append(params["entry"].get("text", ""))
        return found

    def screenshot(self, path):
        """The page from its top to the end of its content."""
        bottom = self.evaluate("document.querySelector('body > section:last-of-type').getBoundingClientRect().bottom")
        height = min(WINDOW[1], int(bottom) + 12)
        clip = {"x": 0, "y": 0, "width": WINDOW[0], "height": height, "scale": 1}
        data = self.call("Page.captureScreenshot", format="png", clip=clip)["data"]
        with open(path, "wb") as out:
            out.write(base64.b64decode(data))

    def close(self):
        """Ends the browser's process group, the processes this driver started."""
        for sig in (signal.SIGTERM, signal.SIGKILL):
            try:
                os.killpg(self.process.pid, sig)
            except ProcessLookupError:
                break
            deadline = time.monotonic() + 10
            while time.monotonic() < deadline:
                try:
                    os.killpg(self.process.pid, 0)
                except ProcessLookupError:
                    break
                self.process.poll()
                time.sleep(0.05)
            else:
                continue
            break
        self.process.wait()
        shutil.rmtree(self.profile, ignore_errors=True)


# ---- What velmora itself says of a trace ----

def velmora(binary, kind, trace, output):
    arguments = [binary, "-q"] + (["--to", kind] if kind else []) + [trace, output]
    run = subprocess.run(arguments, capture_output=True, text=True)
    expect(run.returncode == 0, f"{' '.join(arguments)}: exit {run.returncode}: {run.stderr}")
    with open(output, encoding="utf-8", errors="surrogateescape", newline="") as text:
        return text.read()


def decoded_texts(trace_lines, message_file):
    """The text the message file holds behind each input line's copy."""
    texts, at = {}, 0
    for number, line in enumerate(trace_lines, 1):
        expect(message_file.startswith(line, at), f"the message file lost line {number}")
        at += len(line)
        end = message_file.find(trace_lines[number], at) if number < len(trace_lines) else len(message_file)
        texts[number] = message_file[at:end]
        at = end
    return texts


def frame_facts(line):
    """Call reference value, flag, message type, TEI and TX/RX of a frame
    line carrying Q.931 in an I or a UI frame, read straight from its cells;
    None for any other line."""
    anchor = line.find("HDLC")
    if len(line) < 80 or "****" not in line or anchor < 0:
        return None
    count = re.match(r"\d*", line[anchor + 5:]).group()
    cells = line[anchor + 5 + len(count) + 4:]
    octets = [int(cells[5 * k + 2:5 * k + 4], 16) for k in range(int(count or 0))]
    if len(octets) >= 5 and octets[2] & 1 == 0 and octets[4] == 0x08:
        message = octets[4:]
    elif len(octets) >= 4 and octets[2] & 0xEF == 0x03 and octets[3] == 0x08:
        message = octets[3:]
    else:
        return None
    if len(message) < 3 or not 0 < message[1] < len(message) - 2:
        return None
    reference = message[2:2 + message[1]]
    value = reference[0] & 0x7F
    for octet in reference[1:]:
        value = value << 8 | octet
    marker = re.search(r"\b(TX|RX)\b", line[:anchor], re.IGNORECASE)
    return {"ref": value, "flag": reference[0] >> 7, "type": message[2 + message[1]], "tei": octets[1] >> 1,
            "tx": None if not marker else marker.group(1).upper() == "TX"}


# ---- The checks ----

ROWS = "[...document.querySelectorAll('#table-rows .row')]"
ROW_CELLS = ROWS + ".map(r => [...r.children].map(c => c.textContent))"
LADDER = """(() => {
  const x = (n, a) => Number(n.getAttribute(a));
  return {
    lifelines: [...document.querySelectorAll('#ladder g.lifeline')].map(g => ({
      side: g.dataset.side, tei: g.dataset.tei === undefined ? null : Number(g.dataset.tei),
      x: x(g.querySelector('line'), 'x1'), label: g.querySelector('.side').textContent})),
    gaps: [...document.querySelectorAll('#ladder g.gap text')].map(t => t.textContent),
    arrows: [...document.querySelectorAll('#ladder g.arrow')].map(g => ({
      line: Number(g.dataset.line), from: x(g.querySelector('line'), 'x1'), y: x(g.querySelector('line'), 'y1'),
      tip: Number(g.querySelector('polygon').getAttribute('points').split(' ')[0]),
      name: g.querySelector('.name').textContent, time: g.querySelector('.time').textContent,
      cause: (g.querySelector('.cause') || {}).textContent || null})),
  };
})()"""


def expected_rows(csv_text):
    """The table's cells as the page shows them: '-' for unknown, the cause
    value and its meaning in one column."""
    rows = list(csv.reader(io.StringIO(csv_text)))[1:]
    return [[c or "-" for c in row[:11]] + [" ".join(c for c in row[11:] if c) or "-"] for row in rows]


def show_row(page, index):
    """Scrolls the table, still in the trace's order, to a call's row."""
    page.evaluate(f"""new Promise(done => {{
        const body = document.getElementById('table-body');
        body.scrollTop = {index} * document.querySelector('#table-head').offsetHeight;
        requestAnimationFrame(() => requestAnimationFrame(done));
    }})""")


def check_ladder(page, call, index, trace_lines, texts):
    show_row(page, index)
    page.click(f'#table-rows .row[data-call="{index}"]')
    ladder = page.evaluate(LADDER)
    where = f"call at line {call['first_line']}"
    # A call's messages: those of its call reference and TEI; a SETUP
    # broadcast to TEI 127 gathers those of every TEI.
    broadcast = frame_facts(trace_lines[call["first_line"] - 1])["tei"] == 127
    messages = []
    for number in range(call["first_line"], call["last_line"] + 1):
        facts = frame_facts(trace_lines[number - 1])
        if facts and facts["ref"] == call["call_ref"] and (broadcast or facts["tei"] == call["tei"]):
            messages.append(dict(facts, line=number))
    arrows = ladder["arrows"]
    expect(len(arrows) == len(messages) == len(call["messages"]),
           f"{where}: {len(arrows)} arrows, {len(messages)} messages in the trace, {len(call['messages'])} in JSON")
    # One lifeline for each side; with several TEIs, the callee's side has
    # one for each of them.
    teis = sorted({m["tei"] for m in messages})
    lanes = ladder["lifelines"]
    expect(sorted(l["side"] for l in lanes) == ["callee"] * max(1, len(teis) if len(teis) > 1 else 1) + ["caller"]
           and (len(teis) == 1 or sorted(l["tei"] for l in lanes if l["side"] == "callee") == teis),
           f"{where}: lifelines {lanes} for TEIs {teis}")
    def lane(side, tei):
        return next(l for l in lanes if l["side"] == side and (len(teis) == 1 or side == "caller" or l["tei"] == tei))
    for arrow, message, name in zip(arrows, messages, call["messages"]):
        at = f"{where}, {name} on line {message['line']}"
        sender, receiver = ("callee", "caller") if message["flag"] else ("caller", "callee")
        expect(arrow["name"] == name and arrow["line"] == message["line"], f"{at}: arrow {arrow}")
        expect(arrow["from"] == lane(sender, message["tei"])["x"] and arrow["tip"] == lane(receiver, message["tei"])["x"],
               f"{at}: the arrow runs from x={arrow['from']} to x={arrow['tip']}, not {sender} to {receiver}")
        label = lane(sender, message["tei"])["label"]
        if len(teis) > 1 and sender == "callee":
            expect(label == f"TEI {message['tei']}", f"{at}: sent from the lifeline {label}")
        elif call["direction"] and message["tx"] is not None:
            side = "this side" if message["tx"] else "far side"
            expect(label == side, f"{at}: sent from {label}, not {side}")
        elif not call["direction"]:
            expect(label == sender, f"{at}: lifeline labelled {label}")
    expect(call["start"] is None or arrows[0]["time"] == call["start"], f"{where}: first time {arrows[0]['time']}")
    expect(call["end"] is None or arrows[-1]["time"] == call["end"], f"{where}: last time {arrows[-1]['time']}")
    # Arrows spaced by the time between their messages: more room for a
    # longer gap, and a break, saying how long, for ten seconds or more.
    def seconds(text):
        t = re.search(r"(\d{1,2}):(\d{2}):(\d{2})(\.\d+)?", text)
        d = re.search(r"(\d{4})-(\d{2})-(\d{2})", text)
        if not t:
            return None
        day = (int(d.group(1)) * 372 + int(d.group(2)) * 31 + int(d.group(3))) * 86400 if d else 0
        return day + int(t.group(1)) * 3600 + int(t.group(2)) * 60 + int(t.group(3)) + float(t.group(4) or 0)
    steps = []
    for before, after in zip(arrows, arrows[1:]):
        a, b = seconds(before["time"]), seconds(after["time"])
        expect(after["y"] > before["y"], f"{where}: line {after['line']} stands above the message before it")
        if a is not None and b is not None and b >= a:
            steps.append((b - a, after["y"] - before["y"]))
    for gap, room in steps:
        for other_gap, other_room in steps:
            if gap < 10 and other_gap > gap * 10:
                expect(other_room > room, f"{where}: {other_gap:.3f} s got {other_room} px, {gap:.3f} s {room} px")
    expect(len(ladder["gaps"]) == sum(1 for gap, _ in steps if gap >= 10),
           f"{where}: breaks {ladder['gaps']} for gaps {[g for g, _ in steps]}")
    # The call's cause stands on a clearing message: the first one with a
    # Cause in codeset 0, of the terminal that answered a broadcast SETUP.
    clearing = [a for a in arrows if a["name"] in ("DISCONNECT", "RELEASE", "RELEASE COMPLETE")]
    if call["cause_value"] is not None:
        cause = f"cause {call['cause_value']}" + (f" {call['cause_text']}" if call["cause_text"] else "")
        expect(any(a["cause"] == cause for a in clearing), f"{where}: no clearing message shows {cause}: {clearing}")
    for k, message in enumerate(messages):
        page.click(f'#ladder g.arrow[data-message="{k}"] .name')
        shown = page.evaluate("document.getElementById('frame-text').textContent")
        expected = texts[message["line"]].rstrip("\n")
        expect(shown == expected, f"{where}: line {message['line']} shows\n{shown}\ninstead of\n{expected}")


def check_trace(page, binary, trace, work):
    name = os.path.basename(trace)
    report = os.path.join(work, name + ".html")
    velmora(binary, "report", trace, report)
    calls = [json.loads(l) for l in velmora(binary, "calls-json", trace, os.path.join(work, "calls.jsonl")).splitlines()]
    rows = expected_rows(velmora(binary, "calls-csv", trace, os.path.join(work, "calls.csv")))
    message_file = velmora(binary, None, trace, os.path.join(work, "message.txt"))
    with open(trace, encoding="utf-8", errors="surrogateescape", newline="") as text:
        trace_lines = text.read().splitlines(keepends=True)
    texts = decoded_texts(trace_lines, message_file)

    page.open(report)
    expect(page.evaluate("document.getElementById('input-name').textContent") == trace,
           f"{name}: the heading names {page.evaluate('document.title')}")
    expect(page.evaluate("window.velmoraReport.calls") == len(calls), f"{name}: not {len(calls)} calls")
    shown = page.evaluate(ROW_CELLS)
    expect(shown and shown == rows[:len(shown)], f"{name}: rows {shown} instead of {rows[:len(shown)]}")
    # Every ladder of a short trace; of a long one the first, the last and some between.
    picked = range(len(calls)) if len(calls) <= 20 else sorted({0, 1, len(calls) // 2, len(calls) - 2, len(calls) - 1})
    for index in picked:
        check_ladder(page, calls[index], index, trace_lines, texts)
    page.evaluate("document.getElementById('table-body').scrollTop = 0")

    # Sorted by a click on the line heading, twice: last line first.
    page.click("#table-head > div:nth-child(1)")
    page.click("#table-head > div:nth-child(1)")
    lines = [r[0] for r in page.evaluate(ROW_CELLS)]
    last = sorted((c["first_line"] for c in calls), reverse=True)[:len(lines)]
    expect(lines == [str(n) for n in last], f"{name}: sorted by line down: {lines}")
    # Filtered by outcome, then by the first cause value.
    page.evaluate("(s => { s.value = '0'; s.dispatchEvent(new Event('change')); })"
                  "(document.getElementById('outcome-filter'))")
    shown_count = "Number(document.getElementById('shown').textContent.split(' ')[0].replace(/,/g, ''))"
    unanswered = sum(1 for c in calls if not c["answered"])
    expect(page.evaluate(shown_count) == unanswered, f"{name}: {unanswered} unanswered calls expected")
    cause = next((c["cause_value"] for c in calls if not c["answered"] and c["cause_value"] is not None), None)
    if cause is not None:
        page.evaluate(f"(s => {{ s.value = '{cause}'; s.dispatchEvent(new Event('change')); }})"
                      "(document.getElementById('cause-filter'))")
        wanted = sum(1 for c in calls if not c["answered"] and c["cause_value"] == cause)
        expect(page.evaluate(shown_count) == wanted, f"{name}: {wanted} unanswered calls with cause {cause} expected")
        causes = {r[-1] for r in page.evaluate(ROW_CELLS)}
        expect(len(causes) == 1 and causes.pop().split(" ")[0] == str(cause), f"{name}: rows of other causes shown")
    # Nothing from the trace became markup or script.
    expect(page.evaluate("document.querySelectorAll('#table-rows b, #table-rows i, #frame-text *, "
                         "h1 * *, [id=injected]').length === 0 && window.injected === undefined"),
           f"{name}: text from the trace was taken for markup")
    errors = page.errors()
    expect(not errors, f"{name}: the console holds errors: {errors}")
    return len(calls)


def main(argv):
    # Ended from outside (a test's time limit, Ctrl-C): the browser still ends.
    for sig in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(sig, lambda number, frame: sys.exit(128 + number))
    if len(argv) < 2 or argv[1] not in ("check", "screenshot", "measure"):
        print(__doc__)
        return 64
    page = start_browser()
    if not isinstance(page, Browser):
        return page
    work = tempfile.mkdtemp(prefix="velmora_report_")
    try:
        if argv[1] == "check":
            # The first trace 400 times over: the data of many calls, in several chunks.
            long_trace = os.path.join(work, "long.txt")
            with open(argv[3], "rb") as one, open(long_trace, "wb") as many:
                many.write(one.read() * 400)
            for trace in argv[3:] + [long_trace]:
                # The trace under a name that is markup, as the report must show it.
                named = os.path.join(work, '<b id="injected">&amp;\'"' + os.path.basename(trace))
                shutil.copyfile(trace, named)
                calls = check_trace(page, argv[2], named, work)
                print(f"{os.path.basename(trace)}: {calls} calls, every ladder as the trace has it")
        elif argv[1] == "screenshot":
            report = os.path.join(work, "report.html")
            velmora(argv[2], "report", argv[3], report)
            page.open(report)
            page.click('#table-rows .row[data-call="0"]')
            page.click('#ladder g.arrow[data-message="5"] .name')
            page.screenshot(argv[4])
            expect(not page.errors(), f"the console holds errors: {page.errors()}")
            print(f"{argv[4]}: the report of {argv[3]} with the first call's ladder open")
        else:
            seconds = page.open(argv[2], timeout=600)
            ready = page.evaluate("window.velmoraReport.readyAt") / 1000
            start = time.monotonic()
            page.click('#table-rows .row[data-call="0"]')
            arrows = page.evaluate("document.querySelectorAll('#ladder g.arrow').length")
            ladder = time.monotonic() - start
            heap = page.evaluate("performance.memory ? performance.memory.usedJSHeapSize : 0") / 1e6
            calls = page.evaluate("window.velmoraReport.calls")
            # The last call too, whose data comes last.
            show_row(page, calls - 1)
            page.click(f'#table-rows .row[data-call="{calls - 1}"]')
            expect(page.evaluate("document.getElementById('frame-text').textContent").startswith("ISDN Layer 2"),
                   "the last call's first message shows no decoded text")
            start = time.monotonic()
            page.click("#table-head > div:nth-child(3)")
            page.evaluate("new Promise(done => requestAnimationFrame(done))")
            sort = time.monotonic() - start
            print(f"{argv[2]}: {os.path.getsize(argv[2]) / 1e6:.1f} MB, {calls} calls; table rendered "
                  f"{ready:.2f} s after navigation ({seconds:.2f} s seen by the driver); a ladder of "
                  f"{arrows} arrows opened in {ladder:.3f} s; sorted by calling in {sort:.2f} s; JS heap {heap:.0f} MB")
            expect(not page.errors(), f"the console holds errors: {page.errors()}")
    except Failure as failure:
        print(f"FAILED: {failure}")
        return 1
    finally:
        page.close()
        shutil.rmtree(work, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
