#!/usr/bin/env python3
"""Attacks the server of `avsk live` and ends its simulator, and checks that it refuses, survives and goes on.

usage: server_test.py AVSK DEMO WATCHED

AVSK is the program, DEMO the root of the sample plugins, WATCHED a folder with builds of one plugin. Raw sockets
only: what is sent here no HTTP library would send.
"""

import base64
import contextlib
import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time

AVSK, DEMO, WATCHED = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
PATIENCE = 60  # seconds; for a slow computer
TEXT, BINARY, CLOSE, PING, PONG = 1, 2, 8, 9, 10
PROTOCOL, UNKNOWN, INVALID, POLICY, TOO_BIG = 1002, 1003, 1007, 1008, 1009
failures = []


def check(holds, what):
    if not holds:
        failures.append(what)
        print(f"FAILED: {what}", flush=True)


def await_that(holds, what):
    end = time.monotonic() + PATIENCE
    while not (result := holds()) and time.monotonic() < end:
        time.sleep(0.05)
    check(result, what)
    return result


class Live:
    """A run of `avsk live`."""

    def __init__(self, *arguments, environment=None):
        self.folder = tempfile.mkdtemp()
        self.process = subprocess.Popen(
            [AVSK, "live", "--no-open", "--quiet", *arguments], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True, env={**os.environ, "TMPDIR": self.folder, "SSH_CONNECTION": "", **(environment or {})})
        self.lines = []
        self.reader = threading.Thread(target=lambda: self.lines.extend(self.process.stdout), daemon=True)
        self.port, self.token = 0, ""
        seen = []
        for line in self.process.stdout:
            seen.append(line)
            if found := re.fullmatch(r"live: http://127\.0\.0\.1:(\d+)/#([0-9a-f]{32})\n", line):
                self.port, self.token = int(found[1]), found[2]
                break
        if not self.port:
            sys.exit(f"avsk live printed no address: {seen}")
        self.reader.start()
        self.host = f"127.0.0.1:{self.port}"

    def connect(self):
        connection = socket.create_connection(("127.0.0.1", self.port), timeout=PATIENCE)
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        return connection

    def ask(self, request):
        """Sends the bytes. Returns status, headers and body; status 0 if the connection was closed without an answer."""
        with self.connect() as connection:
            with contextlib.suppress(OSError):
                connection.sendall(request)
            return read_answer(connection, request.startswith(b"HEAD"))

    def simulator(self):
        """The ID of its process."""
        pid = self.process.pid
        children = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
        return int(children[0]) if children else 0

    def memory(self):
        return int(re.search(r"VmRSS:\s+(\d+)", pathlib.Path(f"/proc/{self.process.pid}/status").read_text())[1])

    def end(self, what, hangs=False):
        child = self.simulator()
        if hangs:
            os.kill(child, signal.SIGSTOP)
            self.process.send_signal(signal.SIGINT)
            time.sleep(0.5)  # less than the simulator is given to end by itself
        self.process.send_signal(signal.SIGINT)
        begin = time.monotonic()
        check(self.process.wait(PATIENCE) == 0, f"{what}: Ctrl-C gives status 0")
        check(not hangs or time.monotonic() - begin < 2, f"{what}: a second Ctrl-C ends it at once")
        check(not child or not os.path.exists(f"/proc/{child}"), f"{what}: Ctrl-C ends the simulator")
        check(not os.listdir(self.folder), f"{what}: no temporary file stays")
        shutil.rmtree(self.folder)


def read_answer(connection, has_no_body=False):
    data = b""
    with contextlib.suppress(OSError):
        while b"\r\n\r\n" not in data and (part := connection.recv(65536)):
            data += part
    head, _, body = data.partition(b"\r\n\r\n")
    if not head.startswith(b"HTTP/1.1 "):
        return 0, {}, b""
    lines = head.decode().split("\r\n")
    headers = {name.lower(): value for name, value in (line.split(": ", 1) for line in lines[1:])}
    length = 0 if has_no_body else int(headers.get("content-length", 0))
    while len(body) < length and (part := connection.recv(65536)):
        body += part
    return int(lines[0].split()[1]), headers, body


def frame(opcode, payload=b"", final=True, mask=True, rsv=0, length=None):
    if isinstance(payload, str):
        payload = payload.encode()
    length = len(payload) if length is None else length
    size = struct.pack("!B", length) if length < 126 else \
        struct.pack("!BH", 126, length) if length < 65536 else struct.pack("!BQ", 127, length)
    head = bytes([(0x80 if final else 0) | rsv | opcode, size[0] | (0x80 if mask else 0)]) + size[1:]
    key = b"\x01\x02\x03\x04"
    return head + (key + bytes(byte ^ key[i % 4] for i, byte in enumerate(payload)) if mask else payload)


def handshake(live, protocols=None, origin=None, host=None, extra="", path="/live"):
    protocols = f"avsk, {live.token}" if protocols is None else protocols
    origin = f"http://{live.host}" if origin is None else origin
    lines = [f"GET {path} HTTP/1.1", f"Host: {host or live.host}", "Connection: Upgrade", "Upgrade: websocket",
             "Sec-WebSocket-Version: 13", f"Sec-WebSocket-Key: {base64.b64encode(bytes(16)).decode()}"]
    lines += [f"Sec-WebSocket-Protocol: {protocols}"] if protocols else []
    lines += [f"Origin: {origin}"] if origin else []
    return ("\r\n".join(lines) + "\r\n" + extra + "\r\n").encode()


class Page:
    """A WebSocket."""

    def __init__(self, live, topics=None):
        self.connection = live.connect()
        self.connection.sendall(handshake(live))
        data = b""
        while not data.endswith(b"\r\n\r\n") and (part := self.connection.recv(1)):
            data += part
        self.status = int(data.split()[1])
        self.data = b""
        if topics is not None:
            self.say({"do": "topics", "open": topics})

    def say(self, message):
        self.connection.sendall(frame(TEXT, json.dumps(message)))

    def take(self, count):
        while len(self.data) < count:
            part = self.connection.recv(65536)
            if not part:
                raise OSError("closed")
            self.data += part
        taken, self.data = self.data[:count], self.data[count:]
        return taken

    def next(self):
        """The next frame's opcode and payload."""
        head = self.take(2)
        length = head[1]
        if length >= 126:
            length = struct.unpack("!H" if length == 126 else "!Q", self.take(2 if length == 126 else 8))[0]
        return head[0] & 0xF, self.take(length)

    def close_code(self):
        """0 if the connection was closed without one."""
        with contextlib.suppress(OSError):
            while True:
                opcode, payload = self.next()
                if opcode == CLOSE:
                    return struct.unpack("!H", payload[:2])[0]
        return 0

    def find(self, what, **wanted):
        """The next message with these values."""
        end = time.monotonic() + PATIENCE
        with contextlib.suppress(OSError):
            while time.monotonic() < end:
                opcode, payload = self.next()
                message = json.loads(payload) if opcode == TEXT else {}
                if all(message.get(name) == value for name, value in wanted.items()):
                    return message
        check(False, f"{what}: a message with {wanted}")
        return {}

    def close(self):
        self.connection.close()


def goes_on(page, what):
    """Frames are run, and reach a page that was there before."""
    while select.select([page.connection], [], [], 0)[0]:
        page.next()  # what waits may be old
    first = page.find(what, topic="simulator").get("frame", 0)
    check(page.find(what, topic="simulator").get("frame", 0) > first, f"{what}: the frames go on")


# ---- The tests

COMMON = {"content-security-policy", "x-content-type-options", "referrer-policy", "cache-control",
          "cross-origin-opener-policy", "cross-origin-resource-policy"}


def requests_are_checked(live):
    own = f"Host: {live.host}\r\n"
    get = f"GET / HTTP/1.1\r\n{own}"
    rows = [
        (200, get), (200, f"GET /index.html HTTP/1.1\r\n{own}"), (200, f"HEAD / HTTP/1.1\r\n{own}"),
        (200, f"GET / HTTP/1.1\r\nHost: localhost:{live.port}\r\n"), (200, get + f"Origin: http://{live.host}\r\n"),
        *((403, f"GET / HTTP/1.1\r\n{host}") for host in (
            "", f"Host: evil.example:{live.port}\r\n", "Host: 127.0.0.1\r\n", f"Host: 127.0.0.1:{live.port + 1}\r\n",
            f"Host: {live.host}.evil.example\r\n", f"Host: [::1]:{live.port}\r\n", own + own,
            own + "Host: evil.example\r\n", f"Host: evil.example, {live.host}\r\n")),
        *((403, f"{get}Origin: {origin}\r\n") for origin in (
            "http://evil.example", "null", "", f"https://{live.host}", f"http://{live.host}.evil.example",
            f"http://{live.host}/")),
        *((405, f"{method} / HTTP/1.1\r\n{own}") for method in ("POST", "PUT", "DELETE", "OPTIONS", "TRACE", "BREW")),
        (413, get + "Content-Length: 5\r\n"), (413, get + "Transfer-Encoding: chunked\r\n"),
        (413, f"POST / HTTP/1.1\r\n{own}Content-Length: 4000000000\r\n"),
        (400, get + "Content-Length: -1\r\n"), (400, get + "Content-Length: 1\r\nContent-Length: 2\r\n"),
        (400, "GARBAGE\r\n"), (400, get + "no colon\r\n"), (400, get + "A: \0\r\n"), (400, "GET / HTTP/9.9\r\n" + own),
        (400, "\x16\x03\x01\x02\0\x01\0\x01\xfc\x03\x03\r\n"),
        (431, get + "X: " + "x" * 9000 + "\r\n"), (431, get + "X: y\r\n" * 3000), (431, "x" * 20000),
        (431, f"GET /{'x' * 9000} HTTP/1.1\r\n{own}"),
        *((404, f"GET {target} HTTP/1.1\r\n{own}") for target in (
            "/../../../../etc/passwd", "/..%2f..%2fetc/passwd", "/%2e%2e/Hub.cpp", "/../Hub.cpp", "//etc/passwd",
            "/page/index.html", "/./index.html", "/.index.html", "/index.html%00.js", "/index.html?x", "/index.html/",
            f"http://{live.host}/", "index.html", "/..\\index.html", "*")),
        (403, f"GET /live HTTP/1.1\r\n{own}"),
        (400, f"GET /live HTTP/1.1\r\n{own}Origin: http://{live.host}\r\n"
              f"Sec-WebSocket-Protocol: avsk, {live.token}\r\n"),
    ]
    for wanted, request in rows:
        status, headers, body = live.ask((request + "\r\n").encode("latin-1"))
        check(status == wanted, f"{request[:80]!r}: {wanted}, not {status}")
        check(COMMON <= headers.keys(), f"{request[:80]!r}: the answer has all headers of security")
        check(live.token.encode() not in body and not (request.startswith("HEAD") and body),
              f"{request[:80]!r}: the body is what was asked for")
    with live.connect() as connection:
        for _ in range(3):
            connection.sendall((get + "\r\n").encode())
            check(read_answer(connection)[0] == 200, "a connection serves several requests")


def pages_need_the_token(live):
    token = live.token
    other_end, other_begin = token[:-1] + chr(ord(token[-1]) ^ 1), chr(ord(token[0]) ^ 1) + token[1:]
    rows = [dict(protocols=text) for text in (
        "", "avsk", token, f"{token}, avsk", f"avsk, {token[:-1]}", f"avsk, {token}0", f"avsk, {other_end}",
        f"avsk, {other_begin}", f"avsk, {token.upper()}x", f"avsk, {token}, avsk", "avsk, ", f"avsk,{'x' * 3000}")]
    rows += [dict(origin=text) for text in ("http://evil.example", "null", f"https://{live.host}")]
    rows += [dict(host=text) for text in ("evil.example", f"evil.example:{live.port}")]
    rows += [dict(extra=f"Sec-WebSocket-Protocol: avsk, {token}\r\n"), dict(extra="Origin: http://evil.example\r\n")]
    for row in rows:
        check(live.ask(handshake(live, **row))[0] == 403, f"a page with {row} is refused")
    no_origin = handshake(live).replace(f"Origin: http://{live.host}\r\n".encode(), b"")
    check(live.ask(no_origin)[0] == 403, "a page without an origin is refused")
    check(live.ask(handshake(live, path="/other"))[0] == 404, "there is no other WebSocket")


def frames_are_checked(live, witness):
    longest = '{"do":"x","x":"' + "x" * (16 * 1024 - 17) + '"}'
    rows = [
        (PROTOCOL, frame(TEXT, '{"do":"pause"}', mask=False)), (PROTOCOL, frame(3, "x")),
        (PROTOCOL, frame(TEXT, "x", rsv=0x40)), (PROTOCOL, frame(0, "x")), (PROTOCOL, frame(PING, "x" * 126)),
        (PROTOCOL, frame(PING, "x", final=False)),
        (PROTOCOL, frame(TEXT, "{", final=False) + frame(TEXT, '"do":"x"}')),
        (PROTOCOL, frame(CLOSE, "x")), (TOO_BIG, frame(TEXT, longest + " ")),
        (TOO_BIG, frame(TEXT, "x", length=2 ** 31)), (TOO_BIG, frame(TEXT, "x", length=2 ** 62)),
        (TOO_BIG, frame(TEXT, "x" * 9000, final=False) + frame(0, "x" * 9000)),
        (INVALID, frame(TEXT, b'{"do":"\xff"}')), (UNKNOWN, frame(BINARY, '{"do":"x"}')),
        *((POLICY, frame(TEXT, text)) for text in (
            "", "no JSON", "[]", "[" * 8000, "{}", '{"do":7}', '{"do":""}', '{"do":"pause"', "null",
            '{"do":"shown","version":-1}', '{"do":"shown"}')),
        (POLICY, frame(TEXT, '{"do":"move","x":1,"y":1}') * 2000),
    ]
    for wanted, data in rows:
        page = Page(live)
        with contextlib.suppress(OSError):
            page.connection.sendall(data)
        code = page.close_code()
        check(code == wanted, f"{data[:60]!r}: closed with {wanted}, not {code}")
        page.close()
    page = Page(live)
    page.connection.sendall(frame(TEXT, longest) + frame(TEXT, '{"do":', final=False) + frame(PING, "in between") +
                            frame(0, '"x"}') + frame(TEXT, '{"do":"topics","open":{"a":[7,"simulator"]}}'))
    opcode = 0
    while opcode != PONG:
        opcode, payload = page.next()
    check(payload == b"in between", "the longest and fragmented messages are accepted, and pings answered")
    page.say({"do": "topics", "open": ["simulator"]})
    page.find("a page after odd messages", topic="simulator")
    page.close()
    goes_on(witness, "after wrong frames")


def others_go_on(live, witness):
    before = live.memory()
    deaf = Page(live, ["simulator", "screen", "log", "calls", "time", "plugins", "datarefs"])
    deaf.connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
    end = time.monotonic() + 4
    with contextlib.suppress(OSError):
        while time.monotonic() < end:
            deaf.connection.send(frame(TEXT, '{"do":"line","line":"nonsense","id":1}'))
            time.sleep(0.004)
    goes_on(witness, "beside a page that does not read")
    pages = [Page(live, ["simulator"]) for _ in range(50)]
    count = [page.status for page in pages].count(101)
    check(14 <= count <= 15 and all(page.status in (101, 503) for page in pages), f"of 50 more pages {count} are let in")
    goes_on(witness, "with 50 pages")
    idle = [live.connect() for _ in range(100)]
    check(live.ask(f"GET / HTTP/1.1\r\nHost: {live.host}\r\n\r\n".encode())[0] == 200, "beside 100 idle connections")
    goes_on(witness, "beside 100 idle connections")
    for closed in [*idle, *pages, deaf]:
        closed.close()
    check(live.memory() - before < 64 * 1024, f"memory does not grow: {before} KiB, then {live.memory()} KiB")

    def there_is_room():
        page = Page(live)
        page.close()
        return page.status == 101
    await_that(there_is_room, "closed pages make room")


def only_loopback_listens(live):
    port = f"{live.port:04X}"
    sockets = [line.split() for name in ("tcp", "tcp6") if os.path.exists(f"/proc/net/{name}")
               for line in pathlib.Path(f"/proc/net/{name}").read_text().splitlines()[1:]]
    listening = [row[1] for row in sockets if row[3] == "0A" and row[1].endswith(":" + port)]
    check(listening == [f"0100007F:{port}"], f"only 127.0.0.1 listens: {listening}")


def the_simulator_may_end(live, witness):
    os.kill(live.simulator(), signal.SIGSEGV)
    report = witness.find("a crash", topic="ended", status=3).get("report", "")
    check("SIGSEGV" in report and "The stack, the innermost function first:" in report, f"the page gets the report: {report}")
    late = Page(live, ["simulator"])
    check(late.find("a crash", topic="connected").get("running") is False, "a late page knows that nothing runs")
    late.find("a crash", topic="ended", status=3)
    late.say({"do": "line", "line": "press", "id": 7})
    late.find("a line after a crash", topic="answer", id=7, ok=False)
    late.say({"do": "restart"})
    for page in (witness, late):
        page.find("after a crash", topic="restarted", why="asked")
        page.find("after a restart", topic="hello")
    goes_on(witness, "after a restart")
    stopped = live.simulator()
    os.kill(stopped, signal.SIGSTOP)  # as a plugin that does not return
    late.say({"do": "restart"})
    witness.find("a simulator that does not return", topic="restarted", why="asked")
    goes_on(witness, "after a simulator that did not return")
    check(not os.path.exists(f"/proc/{stopped}"), "it was killed")
    late.close()


def slow_requests_end(live):
    """A request that never ends is given up after 10 s, however it is sent. Returns the thread's check."""
    seconds = []

    def trickle(pause):
        begin = time.monotonic()
        with live.connect() as connection, contextlib.suppress(OSError):
            connection.sendall(f"GET / HTTP/1.1\r\nHost: {live.host}\r\nX: ".encode())
            while not select.select([connection], [], [], pause)[0]:
                connection.sendall(b"x")
        seconds.append(time.monotonic() - begin)
    threads = [threading.Thread(target=trickle, args=(pause,)) for pause in (0.2, 5)]
    for thread in threads:
        thread.start()

    def finish():
        for thread in threads:
            thread.join(PATIENCE)
        check(len(seconds) == 2 and all(9 < taken < 25 for taken in seconds), f"slow requests end: {seconds}")
    return finish


def a_rebuilt_plugin_is_loaded():
    with tempfile.TemporaryDirectory() as root:
        plugin = pathlib.Path(root, "Resources/plugins/Watched/lin.avp")
        plugin.parent.mkdir(parents=True)

        def build(name):
            shutil.copy(WATCHED / f"{name}.avp", f"{plugin}.new")
            os.rename(f"{plugin}.new", plugin)
        build("FIRST")
        live = Live("--root", root, "--port", "0", "--watch")
        page = Page(live, ["simulator"])
        page.find("a watch", topic="hello")
        for name in ("SECOND", "CRASHES", "FIRST"):
            begin = time.monotonic()
            build(name)
            page.find(f"a build {name}", topic="restarted", why="Watched/lin.avp was rebuilt")
            check(time.monotonic() - begin < 3, f"a build {name} is noticed at once")
            page.find(f"a build {name}", topic="ended" if name == "CRASHES" else "hello")
        plugin.write_bytes(plugin.read_bytes()[:1000])
        time.sleep(0.5)
        goes_on(page, "beside a file that is half written")
        live.end("a watch")


def wrong_requests_are_explained():
    with socket.socket() as taken, tempfile.TemporaryDirectory() as empty:
        taken.bind(("127.0.0.1", 0))
        taken.listen()
        session = pathlib.Path(empty, "x.avs")
        session.write_text("frames 1\n")
        port = str(taken.getsockname()[1])
        rows = [(["--root", DEMO, "--port", port], ["--port", port]), (["--root", "/nowhere"], ["--root", "/nowhere"]),
                (["--root", empty], ["Resources/plugins"]),
                ([str(session), "--fps", "30"], ["--fps"]), (["--root", DEMO, "--port", "70000"], ["--port"]),
                (["--root", DEMO, "--fps", "0"], ["--fps"]), (["/nowhere.avs"], ["/nowhere.avs"]),
                (["--root", DEMO, "--plugin", "Mneu"], ["Mneu", "Menu"])]
        for arguments, words in rows:
            run = subprocess.run([AVSK, "live", "--no-open", *arguments], capture_output=True, text=True,
                                 timeout=PATIENCE)
            check(run.returncode == 2 and run.stderr.count("\n") == 1 and all(word in run.stderr for word in words),
                  f"{arguments}: status {run.returncode}, {run.stderr!r}")


def the_browser_gets_no_token_in_its_arguments():
    """Any user can list the arguments of programs."""
    with tempfile.TemporaryDirectory() as folder:
        opener, arguments = pathlib.Path(folder, "xdg-open"), pathlib.Path(folder, "arguments")
        opener.write_text(f'#!/bin/sh\necho "$@" >{folder}/new\nmv {folder}/new {arguments}\n')
        opener.chmod(0o755)
        terminal, side = pty.openpty()
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("SSH_CONNECTION", "DISPLAY", "WAYLAND_DISPLAY")}
        environment.update(PATH=f"{folder}:{os.environ['PATH']}", DISPLAY=":7")
        process = subprocess.Popen([AVSK, "live", "--root", DEMO, "--plugin", "Menu", "--port", "0", "--quiet"],
                                   stdout=side, stderr=subprocess.DEVNULL, env=environment)
        os.close(side)
        await_that(arguments.exists, "the browser is opened")
        file = pathlib.Path(arguments.read_text().strip())
        token = re.search(r"#([0-9a-f]{32})", os.read(terminal, 4096).decode())[1]
        check(token not in str(file) and token in file.read_text(), "the browser gets a file that leads to the address")
        check(file.parent.stat().st_mode & 0o77 == 0, "other users cannot read that file")
        process.terminate()
        check(process.wait(PATIENCE) == 0 and not file.exists(), "a signal to terminate ends it, and removes the file")
        os.close(terminal)
    live = Live("--root", DEMO, "--plugin", "Menu", environment={"SSH_CONNECTION": "192.0.2.1 5 192.0.2.9 22"})
    await_that(lambda: f"ssh -N -L {live.port}:{live.host} " in "".join(live.lines), "over ssh the command is printed")
    check("@192.0.2.9\n" in "".join(live.lines), "it names this computer")
    live.end("over ssh")


def main():
    live = Live("--root", DEMO, "--plugin", "Menu", "--port", "0")
    finish_slow = slow_requests_end(live)
    witness = Page(live, ["simulator"])
    witness.find("the first page", topic="hello")
    only_loopback_listens(live)
    requests_are_checked(live)
    goes_on(witness, "after wrong requests")
    pages_need_the_token(live)
    frames_are_checked(live, witness)
    others_go_on(live, witness)
    the_simulator_may_end(live, witness)
    finish_slow()
    live.end("after all", hangs=True)
    a_rebuilt_plugin_is_loaded()
    wrong_requests_are_explained()
    the_browser_gets_no_token_in_its_arguments()
    if failures:
        sys.exit(f"{len(failures)} checks failed")


if __name__ == "__main__":
    main()
