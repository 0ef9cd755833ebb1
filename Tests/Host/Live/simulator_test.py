#!/usr/bin/env python3
"""Drives the simulator's process of `avsk live` over its channel, as the server does.

usage: simulator_test.py AVSK DEMO DIES [CLAIM]
"""
import json
import os
import re
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import time
import zlib

AVSK, DEMO, DIES = (os.path.abspath(path) for path in sys.argv[1:4])


class Live:
    """A simulator's process and what it has sent."""

    def __init__(self, *arguments, folder):
        self.folder = folder
        self.socket, child = socket.socketpair()
        self.process = subprocess.Popen([AVSK, "live", *arguments, "--simulator", str(child.fileno())], cwd=folder,
                                        pass_fds=[child.fileno()], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        child.close()
        self.bytes = b""
        self.latest = {}  # by topic
        self.lines = {"log": [], "calls": []}
        self.frames = []  # times
        self.pictures = []  # (version, frame, size, tiles)
        self.ids = 0
        self.until("hello", lambda hello: True)

    def send(self, do, **values):
        text = json.dumps({"do": do, **values}).encode()
        self.socket.sendall(struct.pack("<I", len(text) + 1) + b"J" + text)

    def ask(self, do, **values):
        self.ids += 1
        self.send(do, id=self.ids, **values)
        return self.until("answer", lambda answer: answer["id"] == self.ids)

    def do(self, line):
        answer = self.ask("line", line=line)
        assert answer["ok"], (line, answer)
        return answer["text"]

    def open(self, *topics):
        self.send("topics", open=topics)

    def take(self, seconds=10):
        self.socket.settimeout(seconds)
        while len(self.bytes) < 4 or len(self.bytes) < 4 + struct.unpack_from("<I", self.bytes)[0]:
            more = self.socket.recv(1 << 20)
            if not more:
                raise EOFError(self.process.communicate()[0].decode())
            self.bytes += more
        end = 4 + struct.unpack_from("<I", self.bytes)[0]
        kind, message, self.bytes = self.bytes[4:5], self.bytes[5:end], self.bytes[end:]
        if kind == b"T":
            self.pictures.append(picture(message))
            return "picture"
        message = json.loads(message)
        topic = message["topic"]
        self.latest[topic] = message
        if topic in self.lines:
            self.lines[topic] += message["lines"]
        if topic == "time":
            self.frames += message["frames"]
        return topic

    def until(self, topic, holds, seconds=20):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if self.take() == topic and holds(self.latest.get(topic)):
                return self.latest.get(topic)
        raise AssertionError(f"{topic} did not become so: {self.latest.get(topic)}")

    def becomes(self, topic, holds):
        """As until(), but the topic may have become so before: a state is sent only when it changes."""
        latest = self.latest.get(topic)
        return latest if latest and holds(latest) else self.until(topic, holds)

    def close(self):
        """Closes the channel. Returns the exit status and the output."""
        self.socket.close()
        output = self.process.communicate(timeout=60)[0].decode()
        return self.process.returncode, output


def picture(message):
    version, frame, width, height, count = struct.unpack_from("<IIHHH", message)
    at, tiles = 14, []
    for _ in range(count):
        x, y, w, h, length = struct.unpack_from("<HHHHI", message, at)
        tiles.append((x, y, w, h, message[at + 12:at + 12 + length]))
        at += 12 + length
    assert at == len(message)
    return version, frame, (width, height), tiles


def pixels(png, width, height):
    """The rows of a PNG file with three channels whose rows are differences from the row above."""
    assert png[:8] == b"\x89PNG\r\n\x1a\n" and struct.unpack_from(">II", png, 16) == (width, height)
    data, at = b"", 8
    while at < len(png):
        length = struct.unpack_from(">I", png, at)[0]
        if png[at + 4:at + 8] == b"IDAT":
            data += png[at + 8:at + 8 + length]
        at += length + 12
    raw, rows, above = zlib.decompress(data), [], bytes(3 * width)
    for y in range(height):
        line = raw[y * (3 * width + 1):(y + 1) * (3 * width + 1)]
        assert line[0] == 2
        above = bytes((a + b) & 255 for a, b in zip(line[1:], above))
        rows.append(above)
    return rows


def run(session, *arguments):
    done = subprocess.run([AVSK, "run", session, *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          cwd="/", text=True, timeout=120)
    return done.returncode, done.stdout


def everything_that_a_page_does_is_recorded_and_passes(folder):
    live = Live("--root", DEMO, "--fps", "50", folder=folder)
    assert live.latest["hello"]["fps"] == 50 and live.latest["hello"]["folder"] == folder
    live.open("simulator", "windows", "datarefs", "menus", "commands", "plugins", "recording", "screen", "time")
    live.until("windows", lambda topic: any(w["place"] == [40, 500, 392, 410] for w in topic["windows"]))
    # The mouse moves while frames run, and only the last place before a frame counts.
    live.send("move", x=60, y=495)
    live.do("press")
    for step in range(1, 30):
        live.send("move", x=60 + 3 * step, y=495 - step)
        live.send("move", x=60 + 4 * step, y=495 - 2 * step)
        time.sleep(0.005)
    live.do("release")
    moved = live.becomes("windows", lambda topic: any(w["plugin"] == "Window" and w["place"][0] == 156
                                                      for w in topic["windows"]))
    place = next(w["place"] for w in moved["windows"] if w["plugin"] == "Window")
    live.do("expect window Window " + ",".join(map(str, place)) + " visible front")
    live.do("click 250,420")
    live.do('type "a \\"b\\" \\\\"')
    live.do("keydown C shift")
    time.sleep(0.1)
    live.do("keyup C")
    live.do("mark")
    time.sleep(0.1)
    live.do('expect call drawString * * * "> a \\"b\\" \\\\C_"')
    live.do("key Escape")
    live.do("keydown F5")
    time.sleep(0.2)
    live.do("keyup F5")
    live.do("wheel 100,100 -2 1")
    live.do('menu "Plugins/Sample lights/Landing light"')
    live.do('expect item "Plugins/Sample lights/Landing light" checked enabled')
    live.do("begin sim/flight/climb")
    time.sleep(0.1)
    live.do("end sim/flight/climb")
    live.do("command sim/view/next")
    live.do("button 2 press")
    live.send("pause")
    live.do("button 2 release")
    live.do("set sample/counter 7")
    for _ in range(3):
        live.send("frame")
    live.do("view cockpit")
    live.do("expect view cockpit")
    live.send("continue")
    live.send("speed", factor=10)
    live.do("disable Menu")
    live.do("expect plugin Menu disabled")
    live.do("enable Menu")
    live.do("message all 5 \"a text\"")
    live.do("lag 0.5")
    live.do("drag 200,300 210,310 3")
    live.do("hold loads")
    live.do("crash")
    live.send("speed", factor=0.5)
    live.do("reload")
    time.sleep(0.3)
    live.do("# goes on behind the reload")
    live.send("pause")
    looked = live.do("get sim/time/elapsed")
    assert re.match(r"sim/time/elapsed = [0-9.]+ \(float\)", looked), looked
    live.do("expect dataref sim/time/elapsed " + looked.split()[2])
    for wrong, why in [("pres", "did you mean 'press'"), ("frames 3", "run by themselves"), ("unload", "stay loaded"),
                       ("expect tidy", "after 'unload'"), ("fps 10", "before the first step"),
                       ("screenshot x.png", "expect the picture"), ("menu Plugins/Nothing", "no such item"),
                       ("expect view tower", "seen: cockpit"), ("set sample/countr 1", "did you mean"),
                       ("move 1,", "expected a point"), ("press\nrelease", "control characters"),
                       ("load aircraft /etc/passwd", "outside"), ("expect file ../x", "outside"),
                       ("keyup C", "not down")]:
        answer = live.ask("line", line=wrong)
        assert not answer["ok"] and why in answer["text"] and "line:1" not in answer["text"], (wrong, answer)
    for request, why in [({"file": "../x.avs"}, "or below it"), ({"file": "/tmp/x.avs"}, "or below it"),
                         ({"file": "link/x.avs"}, "or below it"), ({"file": "x.txt"}, "ends in .avs"),
                         ({"file": "none/x.avs"}, "no such folder"), ({"file": 7}, "wrong type"), ({}, "missing")]:
        answer = live.ask("save", **request)
        assert not answer["ok"] and why in answer["text"], (request, answer)
    for name in ["first.avs", "below/second.avs"]:
        answer = live.ask("save", file=name)
        assert answer == {"topic": "answer", "id": live.ids, "ok": True, "text": os.path.join(folder, name)}, answer
    assert not live.ask("save", file="first.avs")["ok"] and live.ask("save", file="first.avs", replace=True)["ok"]
    recorded = live.until("recording", lambda topic: topic["saved"] == "first.avs")["lines"]
    status, output = live.close()
    assert "0 failed" in output, output
    text = open(os.path.join(folder, "first.avs")).read()
    assert not re.search(r"^(get|pres|expect view tower)\b", text, re.M), text
    assert text.splitlines()[:len(recorded) - 1][-20:] == recorded[:-1][-20:]
    for name in ["first.avs", "below/second.avs"]:
        status, output = run(os.path.join(folder, name))
        assert status == 0 and " 0 failed" in output, output + open(os.path.join(folder, name)).read()


def a_session_goes_on_where_its_lines_end(folder):
    shutil.copy(os.path.join(DEMO, "Resources/plugins/Window/lin.avp"), os.path.join(folder, "Odd name.avp"))
    with open(os.path.join(folder, "begin.avs"), "w") as file:
        file.write(f'plugin "./Odd name.avp"\nscreen 640x480\nfps 30\nallow dataref-readonly "it is \\"so\\""\nbudget 500\n\n'
                   f'frames 2\nexpect view chase\ndrag 60,495 160,445 5\nframes 1\nunload\nexpect tidy\n')
    live = Live("begin.avs", folder=folder)
    hello = live.latest["hello"]
    assert (hello["name"], hello["screen"], hello["fps"], hello["budget"]) == ("begin", [640, 480], 30, 500), hello
    live.open("screen", "recording", "log", "simulator")
    live.until("picture", lambda _: True)
    assert live.pictures[0][2] == (640, 480) and len(live.pictures[0][3]) == 10 * 15
    live.do("expect window Window 140,450,492,360")
    assert live.ask("picture", file="window.png")["ok"]
    assert not live.ask("picture", file="window.png")["ok"]
    live.do("expect picture window.png 40,1%")
    wrong = live.ask("line", line="expect no picture window.png")  # takes a frame, which is recorded
    assert not wrong["ok"] and "differ" in wrong["text"], wrong
    live.send("pause")
    live.do("expect dataref sim/time/elapsed " + live.do("get sim/time/elapsed").split()[2])
    assert live.ask("save", file="below/end.avs")["ok"]
    assert any("from 'unload' on are left out" in line for line in live.lines["log"]), live.lines["log"]
    status, output = live.close()
    text = open(os.path.join(folder, "below/end.avs")).read()
    assert text.startswith('plugin "../Odd name.avp"\nfps 30\nscreen 640x480\n'), text
    assert 'expect picture "../window.png"\nframes ' in text and "expect view chase" not in text and "unload" not in text, text
    status, output = run(os.path.join(folder, "below/end.avs"))
    assert status == 0, output


def what_ends_the_simulator_is_recorded(folder):
    for way, line, last in [("abort", "keydown F8", "keydown F8"), ("throw", None, "frames 1")]:
        os.environ["AVSK_TEST_DIES"] = way
        live = Live("--root", DIES, folder=folder)
        try:
            if line:
                live.ask("line", line="press")
                live.ask("line", line=line)
            live.until("answer", lambda _: False)
        except (EOFError, ConnectionError) as end:
            report = str(end)
        found = re.search(r"The session until then, for 'avsk run': (\S+)", report)
        assert found, report
        with open(found[1]) as file:
            assert file.read().rstrip("\n").endswith(last)
        status, output = run(found[1])
        assert status == (1 if way == "throw" else 3), output
    del os.environ["AVSK_TEST_DIES"]


def topics_tell_what_there_is(folder):
    live = Live("--root", DEMO, folder=folder)
    live.open("plugins", "commands", "menus", "findings", "simulator", "time", "calls", "datarefs", "log")
    live.send("datarefs", pattern="sample/*", pinned=["sim/time/elapsed", "no/such"])
    live.send("calls", filter="AVSKFlightLoop_f", paused=False)
    plugin = next(p for p in live.until("plugins", lambda t: all("time" in p for p in t["plugins"]))["plugins"]
                  if p["name"] == "Menu")
    assert plugin["enabled"] and plugin["calls"] > 0 and any(o["kind"] == "menu" for o in plugin["owns"]), plugin
    datarefs = live.until("datarefs", lambda topic: topic["pinned"])
    assert datarefs["pinned"]["sim/time/elapsed"] > 0 and datarefs["pinned"]["no/such"] is None
    owned = next(d for d in datarefs["datarefs"] if d["name"] == "sample/counter")
    assert owned["writable"] and owned["owner"] == "DatarefOwner" and owned["values"] == [owned["value"]], owned
    live.send("datarefs", pattern="smple/counter")
    assert "did you mean" in live.until("datarefs", lambda topic: not topic["datarefs"])["note"]
    item = next(m for m in live.latest["menus"]["menus"] if m["name"] == "Plugins")["items"]
    assert any(i["path"] == "Plugins/Sample lights" and i["items"] for i in item), item
    assert any("F" in k["key"] for k in live.latest["commands"]["hotKeys"]), live.latest["commands"]["hotKeys"]
    live.until("calls", lambda _: len(live.lines["calls"]) > 20)
    assert all("AVSKFlightLoop_f" in line for line in live.lines["calls"]), live.lines["calls"]
    while len(live.frames) < 50:
        live.take()
    numbers = [frame["frame"] for frame in live.frames]
    assert numbers == list(range(numbers[0], numbers[0] + len(numbers))), numbers
    assert all(sum(frame["plugins"].values()) <= frame["total"] for frame in live.frames)
    live.send("frame-calls", frame=numbers[-1])
    calls = live.until("frameCalls", lambda topic: topic["frame"] == numbers[-1])["calls"]
    assert calls[0]["depth"] == 0 and {"AVSKEventHook", "AVSKDoDrawingHook"} <= {c["name"] for c in calls}, calls
    events = json.loads(live.ask("trace")["text"])
    assert sum(e["ph"] == "B" for e in events) == sum(e["ph"] == "E" for e in events) > 100
    status, output = live.close()
    assert status == 0, output


def real_time_holds_and_pictures_follow(folder):
    live = Live("--root", DEMO, folder=folder)
    live.open("screen", "simulator")
    # In a second of which other programs leave enough.
    fast = live.until("simulator", lambda topic: 50 < topic["framesPerSecond"] < 70 and topic["picturesPerSecond"] >= 8)
    print(f"{fast['framesPerSecond']} frames and {fast['picturesPerSecond']} pictures a second")
    versions = [version for version, *_ in live.pictures]
    assert versions == list(range(1, len(versions) + 1)), versions
    assert len(live.pictures[0][3]) == 384 > 2 * len(live.pictures[-1][3]) > 0
    # From a press to the changed picture: the window that is dragged is drawn at its new place.
    def pictured(x, y):
        """The colour at a place of the screen, from the tiles."""
        for *_, tiles in reversed(live.pictures):
            for left, top, width, height, png in tiles:
                if left <= x < left + width and top <= y < top + height:
                    return pixels(png, width, height)[y - top][3 * (x - left):3 * (x - left) + 3]
        raise AssertionError("no tile")
    delays = []
    live.send("move", x=60, y=495)
    live.do("press")
    for step in range(1, 16):
        before = pictured(45 + 20 * (step - 1), 300)
        begin = time.monotonic()
        live.send("move", x=60 + 20 * step, y=495)
        while pictured(45 + 20 * (step - 1), 300) == before and time.monotonic() < begin + 2:
            live.take()
        delays.append(time.monotonic() - begin)
        time.sleep(0.02)
    live.do("release")
    print(f"{1000 * sorted(delays)[len(delays) // 2]:.0f} ms from the mouse to the picture (median)")
    assert sorted(delays)[len(delays) // 2] < 0.25, delays
    live.send("pause")
    stopped = live.until("simulator", lambda topic: topic["paused"])["frame"]
    live.send("frame")
    assert live.until("simulator", lambda topic: topic["frame"] != stopped)["frame"] == stopped + 1
    live.send("continue")
    live.send("speed", factor=10)
    live.until("simulator", lambda topic: topic["framesPerSecond"] > 200)
    begin = time.monotonic()
    live.do("press")
    assert time.monotonic() < begin + 0.5
    for wrong in [{"do": "nothing"}, {"do": 3}, {"no": 1}, [], {"do": "move", "x": "1", "y": 2}, {"do": "speed", "factor": None}]:
        text = json.dumps(wrong).encode()
        live.socket.sendall(struct.pack("<I", len(text) + 1) + b"J" + text)
        assert not live.until("answer", lambda answer: True)["ok"], wrong
    status, output = live.close()
    assert status == 0, output


def main():
    claims = [everything_that_a_page_does_is_recorded_and_passes, a_session_goes_on_where_its_lines_end,
              what_ends_the_simulator_is_recorded, topics_tell_what_there_is, real_time_holds_and_pictures_follow]
    for claim in claims:
        if len(sys.argv) > 4 and sys.argv[4] not in claim.__name__:
            continue
        begin = time.monotonic()
        with tempfile.TemporaryDirectory() as folder:
            folder = os.path.realpath(folder)
            os.mkdir(os.path.join(folder, "below"))
            os.symlink("/tmp", os.path.join(folder, "link"))
            os.environ["TMPDIR"] = folder
            claim(folder)
        print(f"{claim.__name__}: {time.monotonic() - begin:.1f} s", flush=True)


main()
