"""The rows of the table: the contestants, and the goals."""

import atexit
import os
import re
import shutil
import subprocess
import sys
import time

from contest import Command, Row

MIB = 1 << 20
GROWTH = 1.25  # allowed factor beyond proportional growth, because of cache sizes


class Bench:
    """Makes commands, and their data when first needed."""

    def __init__(self, top, folder, quick):
        self.program = os.path.join(top, "build/release/benchmarks/corvane-bench")
        self.server_program = os.path.join(top, "build/release/server/ostra-server")
        self.peers = os.path.join(top, "benchmarks/peers")
        self.folder = folder
        self.quick = quick
        self.made = {}

    def size(self, full, quick):
        return quick if self.quick else full

    def path(self, name):
        return os.path.join(self.folder, name)

    def make(self, *words):
        subprocess.run([self.program, *map(str, words)], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)

    def once(self, name, maker):
        """The path of data that is made when first used."""
        if name not in self.made:
            self.made[name] = self.path(name)
            maker(self.made[name])
        return self.made[name]

    def grid(self, side, file):
        def maker(path):
            os.mkdir(path)
            self.make("make-grid", path, side, side)
        return os.path.join(self.once(f"grid{side}", maker), file)

    def binary(self, side):
        return self.once(f"binary{side}.trk", lambda path: self.make("make-binary", path, side, side))

    def text(self, side):
        return self.once(f"text{side}.trk", lambda path: self.make("make-text", path, side, side))

    def tree(self, small, large):
        def maker(path):
            os.mkdir(path)
            self.make("make-tree", path, small, large)
        return self.once(f"tree{small}-{large}", maker)

    def archive(self, small, large):
        tree = self.tree(small, large)
        return self.once(f"tree{small}-{large}.tar", lambda path: self.make("pack", tree, path))

    def ours(self, *words, figure="seconds", prepare=None, data=None):
        """A contestant of our program; `data` is a function that returns further words when it is first run."""
        def run():
            more = [str(word) for word in data()] if data else []
            return Command([self.program, *map(str, words), *more], figure, prepare)()
        return run

    def program_time(self, words, prepare=None):
        """The user and system time of any program; `words` is a function."""
        return lambda: Command(words(), "process", prepare)()

    def cleared(self, name):
        """A function that removes a file or folder that the work creates."""
        def clear():
            path = self.path(name)
            if os.path.isdir(path):
                shutil.rmtree(path)
            elif os.path.exists(path):
                os.remove(path)
        return clear

    def with_memory_at_hand(self, size, *prepare):
        """A function that does these and then makes memory available to the machine: see the README."""
        def run():
            for each in prepare:
                each()
            self.make("touch-memory", size)
        return run


def in_turn(*commands):
    """Work whose values are added."""
    return lambda: sum(command() for command in commands)


def growth_rows(name, what, sizes, work, command):
    """Two rows: each size against a quarter of it; `work` is the factor of the work."""
    return [Row(f"{name}-growth{step}", f"{what}: {large} against {small}", command(large), GROWTH, command(small),
                "the smaller", work=work)
            for step, (small, large) in enumerate(zip(sizes, sizes[1:]), 1)]


def text_rows(bench):
    side = bench.size(2000, 200)
    what = f"load a {side} x {side} text track"

    def load(side=side):
        return bench.ours("text-load", data=lambda: [bench.grid(side, "track.trk")])

    def python(script, file):
        return lambda: Command([sys.executable, os.path.join(bench.peers, script), bench.grid(side, file)])()

    def datatable():
        return Command(["Rscript", "--vanilla", os.path.join(bench.peers, "load_datatable.R"),
                        bench.grid(side, "grid.csv")])()

    plain = bench.ours("text-load-plain", data=lambda: [bench.grid(side, "track.trk")])
    gdal = bench.program_time(lambda: ["gdal_translate", "-q", "-of", "GTiff", bench.grid(side, "grid.asc"),
                                       bench.path("out.tif")], bench.cleared("out.tif"))
    return [
        Row("1-text", what, load(), 15, plain, "the plain way", faster=True),
        Row("1-text-same", what + ": differences to the plain way",
            bench.ours("text-compare", figure="differences", data=lambda: [bench.grid(side, "track.trk")]), 0, unit=""),
        *growth_rows("1-text", "load a text track, side", [side // 4, side // 2, side], 4, load),
        Row("2-pandas", what, load(), 5, python("load_pandas.py", "grid.csv"), "pandas read_csv, C engine", faster=True),
        Row("2-numpy", what, load(), 2.5, python("load_numpy.py", "grid-nan.csv"), "numpy.loadtxt", faster=True),
        Row("2-gdal", what, load(), 7, gdal, "gdal_translate", faster=True),
        Row("2-datatable", what, load(), 1.3, datatable, "fread, one thread", faster=True),
        Row("3-info", "ReadInfo of it",
            bench.ours("text-info", data=lambda: [bench.grid(side, "track.trk")]), 3,
            bench.ours("text-commas", data=lambda: [bench.grid(side, "track.trk")]), "memchr for every comma"),
        *[Row(f"4-memory-{s}", f"memory of loading {s} x {s} beyond image and pixmap",
              bench.ours("text-memory", figure="bytes", data=lambda s=s: [bench.grid(s, "track.trk")]), 16 * MIB,
              unit="B")
          for s in (side // 2, side, 2 * side)],
    ]


def binary_rows(bench):
    side = bench.size(4000, 500)

    def load(side):
        return bench.ours("binary-load", data=lambda: [bench.binary(side)])

    return [
        Row("5-binary", f"load a {side} x {side} binary track", load(side), 4,
            bench.ours("binary-limit", data=lambda: [bench.binary(side), side, side]), "read the file, clear the image"),
        *growth_rows("5-binary", "load a binary track, side", [side // 4, side // 2, side], 4, load),
        Row("6-ramp", f"colour {side} x {side} samples", bench.ours("ramp", side), 4, bench.ours("ramp-copy", side),
            "memcpy of the pixels"),
        Row("6-ramp-same", "colours unlike the formula, of 65,536",
            bench.ours("ramp", 8, figure="differences"), 0, unit=""),
    ]


def zoom_rows(bench):
    side = bench.size(4000, 500)
    large = bench.size(10_000, 1000)

    def zoom(side, percent, kind="canvas", figure="seconds"):
        return bench.ours("zoom", kind, side, percent, figure=figure)

    rows = []
    for percent, goal in ((200, 90), (400, 250)):
        rows.append(Row(f"7-zoom-{percent}", f"first paint at {percent} % of {side} x {side}", zoom(side, percent), goal,
                        zoom(side, percent, "label"), "a plain label", faster=True))
    for size in (side, large):
        for percent in (50, 200, 400):
            rows.append(Row(f"7-memory-{size}-{percent}", f"memory of it at {percent} % of {size} x {size}",
                            zoom(size, percent, figure="bytes"), 16e6, unit="B"))
    rows += growth_rows("7-zoom", "first paint at 200 % of a map, side", [side // 4, side // 2, side], 1,
                        lambda side: zoom(side, 200))
    for percent in (200, 400):
        rows.append(Row(f"8-zoom-{percent}", f"first paint at {percent} % of {large} x {large}", zoom(large, percent), 2,
                        zoom(side, percent), f"the same of {side} x {side}"))
    return rows


def paint_rows(bench):
    side = bench.size(4000, 500)

    def of(work, kind, percent=100):
        return bench.ours(work, kind, side, percent)

    return [
        *[Row(f"9-repaint-{percent}", f"the complete view repainted at {percent} %", of("repaint", "canvas", percent), 2,
              of("repaint", "label", percent), "the label from its cache") for percent in (50, 100, 200)],
        Row("9-move", "a mouse move with what it repaints", of("mouse-move", "canvas"), 2, of("repaint", "label"),
            "the label's repaint"),
        Row("9-small", "64 x 64 pixels repainted", of("repaint-small", "canvas"), 0.0002),
        Row("10-whole", "difference to the label at 50, 100, 200, 400 %", bench.ours("pixels", figure="whole"), 0,
            unit=""),
        Row("10-upper", "the same at any other step from 35 % up", bench.ours("pixels", figure="upper"), 6, unit=""),
        Row("10-lower", "the same below, where one smooth scaling gives 0", bench.ours("pixels", figure="lower"), 0,
            unit=""),
    ]


def path_rows(bench):
    count = bench.size(100_000, 10_000)
    paths = bench.size(1000, 100)

    def points(count, percent):
        return bench.ours("points", bench.path("points.trk"), count, percent)

    rows = [Row(f"11-points-{percent}", f"{count} path points painted at {percent} %", points(count, percent),
                0.015 if percent >= 100 else 0.025) for percent in (5, 25, 50, 95, 100, 200, 400)]
    rows += growth_rows("11-points", "points painted at 100 %", [count // 16, count // 4, count], 4,
                        lambda count: points(count, 100))
    rows.append(Row("12-drag", f"one drag step, ruler shown, {paths} paths of 100 points",
                    bench.ours("drag", bench.path("drag.trk"), paths, 100), 0.002))
    rows.append(Row("12-undo", "taking a drag step back, or making it again, there",
                    bench.ours("undo", bench.path("drag.trk"), paths, 100), 1.1,
                    bench.ours("drag", bench.path("drag.trk"), paths, 100), "a drag step"))
    large = bench.size(10_000, 1000)
    rows.append(Row("alive", f"the longest operation on a canvas of {large} x {large}", bench.ours("blocking", large),
                    0.05))
    rows.append(Row("wheel", f"a wheel step with Ctrl to the complete picture, wall-clock time, {large} x {large} from 25 % up",
                    bench.ours("wheel", large, figure="wall"), 0.03))
    for encoding, file in (("text", bench.text), ("binary", bench.binary)):
        rows.append(Row(f"hover-{encoding}", f"the longest mouse move over a {encoding} track of {large} x {large}, wall-clock time",
                        bench.ours("hover", figure="wall", data=lambda file=file: [file(large)]), 0.02))
    return rows


def archive_rows(bench):
    small, large = bench.size((1000, 20), (60, 1))
    amount = f"{small} x 100 KB + {large} x 20 MB"
    packed = bench.path("packed.tar")
    unpacked = bench.path("unpacked")
    written = small * 100_000 + large * 20_000_000
    no_packed = bench.with_memory_at_hand(2 * written, bench.cleared("packed.tar"))
    no_unpacked = bench.with_memory_at_hand(2 * written, bench.cleared("unpacked"))
    empty_folder = bench.with_memory_at_hand(2 * written, bench.cleared("unpacked"), lambda: os.mkdir(unpacked))

    def tree():
        return bench.tree(small, large)

    def pack(small=small, large=large, figure="process"):
        return bench.ours("pack", data=lambda: [bench.tree(small, large), packed], figure=figure, prepare=no_packed)

    def unpack(figure="process"):
        return bench.ours("unpack", data=lambda: [bench.archive(small, large), unpacked], figure=figure,
                          prepare=no_unpacked)

    def peer(words, prepare):
        return bench.program_time(words, prepare)

    copy = peer(lambda: ["cp", "-r", tree(), unpacked], no_unpacked)
    sizes = [(small // 16, max(1, large // 16)), (small // 4, max(1, large // 4)), (small, large)]
    rows = []
    for tool, pack_goal, unpack_goal in (("tar", 1.2, 1.2), ("bsdtar", 1.15, 1.15)):
        rows.append(Row(f"13-pack-{tool}", f"pack {amount}", pack(), pack_goal,
                        peer(lambda tool=tool: [tool, "-cf", packed, "-C", tree(), "."], no_packed), tool))
        rows.append(Row(f"13-unpack-{tool}", f"unpack {amount}", unpack(), unpack_goal,
                        peer(lambda tool=tool: [tool, "-xf", bench.archive(small, large), "-C", unpacked], empty_folder),
                        tool))
    rows.insert(0, Row("13-pack-cp", f"pack {amount}", pack(), 1.35, copy, "cp -r"))
    rows.insert(1, Row("13-unpack-cp", f"unpack {amount}", unpack(), 1.35, copy, "cp -r"))
    rows.append(Row("13-memory-pack", "memory of packing", pack(figure="bytes"), 16e6, unit="B"))
    rows.append(Row("13-memory-unpack", "memory of unpacking", unpack(figure="bytes"), 16e6, unit="B"))
    for step, ((few, none), (many, some)) in enumerate(zip(sizes, sizes[1:]), 1):
        work = (many * 0.1 + some * 20) / (few * 0.1 + none * 20)
        rows.append(Row(f"13-pack-growth{step}", f"pack {many} + {some} files against {few} + {none}", pack(many, some),
                        GROWTH, pack(few, none), "the smaller", work=work))
    return rows


class SensorServer:
    """An ostra-server over a workspace of many tracks."""

    def __init__(self, bench, megabytes):
        self.bench = bench
        self.megabytes = megabytes
        self.process = None
        self.port = None

    def start(self):
        if self.process:
            return
        workspace = self.bench.path("workspace")
        tracks = os.path.join(workspace, "vdk/ContourPath")
        os.makedirs(tracks)
        self.bench.make("make-tree", tracks, 0, self.megabytes // 20)
        log = open(self.bench.path("server.txt"), "w+", encoding="utf-8")
        self.process = subprocess.Popen([self.bench.server_program, "--port", "0", "--discovery-port", "0",
                                         "--workspace", workspace, "--log", self.bench.path("server.log")],
                                        stdout=log, stderr=subprocess.STDOUT)
        atexit.register(self.stop)
        while not self.port:
            time.sleep(0.02)
            with open(self.bench.path("server.txt"), encoding="utf-8") as said:
                found = re.search(r"^control .*:(\d+)$", said.read(), re.MULTILINE)
            self.port = found and found.group(1)

    def stop(self):
        self.process.terminate()
        self.process.wait()

    def seconds(self):
        """The processor time of the process so far, including threads that have ended."""
        self.start()
        clock_of_process = (~self.process.pid << 3) | 2  # as clock_getcpuclockid makes it
        return time.clock_gettime(clock_of_process)

    def peak_bytes(self):
        """The peak memory of the process since its start, including code and libraries."""
        with open(f"/proc/{self.process.pid}/status", encoding="ascii") as file:
            return int(re.search(r"VmHWM:\s+(\d+)", file.read()).group(1)) * 1024


def sensor_rows(bench):
    megabytes = bench.size(500, 40)
    n = megabytes * 1_000_000
    server = SensorServer(bench, megabytes)

    equal_start = bench.with_memory_at_hand(2 * n, bench.cleared("fetched.osbak"), bench.cleared("copied"))

    def backup_file():
        """A backup to restore and to copy."""
        def fetch(path):
            server.start()
            bench.make("backup", server.port, path)
        return bench.once("Ostra.osbak", fetch)

    def exchange(what, figure="seconds"):
        def run():
            server.start()
            file = bench.path("fetched.osbak") if what == "backup" else backup_file()
            others = server.seconds if figure == "seconds" else None
            return Command([bench.program, what, server.port, file], figure, equal_start, others)()
        return run

    def bare(what, figure="seconds"):
        # A backup is synced, a restore is not: the peer does the same.
        synced = ["synced"] if what == "backup" else []

        def run():
            return Command([bench.program, "socket-copy", backup_file(), bench.path("copied"), *synced], figure,
                           equal_start)()
        return run

    def server_memory():
        for what in ("backup", "restore"):
            exchange(what)()
        return server.peak_bytes()

    rows = []
    for figure, suffix, of in (("seconds", "", "processor time of both ends"), ("wall", "-wall", "wall-clock time")):
        for what, goal in (("backup", 1.4), ("restore", 2.0)):
            against = "a bare socket copy to a file" + (", synced" if what == "backup" else "")
            rows.append(Row(f"14-{what}{suffix}", f"{what} of {megabytes} MB, {of}", exchange(what, figure), goal,
                            bare(what, figure), against))
    rows += [Row(f"14-memory-{what}", f"memory of a {what} in the editor", exchange(what, "bytes"), 1.5 * n, unit="B")
             for what in ("backup", "restore")]
    rows.append(Row("14-memory-server", "memory of the server process", server_memory, 16e6, unit="B"))
    return rows


def window_rows(bench):
    folder = bench.path("start")

    def shown(kind):
        def run():
            os.makedirs(folder, exist_ok=True)
            words = ["env", "-C", folder, bench.program, kind]
            return Command(words, "wall")()
        return run

    def difference():
        return shown("window")() - shown("window-bare")()

    return [Row("15-start", "start to shown window beyond a bare window, no server", difference, 0.3)]


def all_rows(top, folder, quick):
    bench = Bench(top, folder, quick)
    rows = []
    for group in (text_rows, binary_rows, zoom_rows, paint_rows, path_rows, archive_rows, sensor_rows, window_rows):
        rows += group(bench)
    return rows
