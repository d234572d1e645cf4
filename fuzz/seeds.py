#!/usr/bin/env python3
"""Writes fuzz/corpus: the initial inputs of each fuzzer (small complete inputs of each format, and a reduced real track),
and every input that once broke a promise, by its name ("regression-...").

    fuzz/seeds.py [FOLDER]
"""
import io
import pathlib
import struct
import sys
import tarfile

HERE = pathlib.Path(__file__).resolve().parent
DATA = HERE.parent / "tests" / "data"
OUT = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else HERE / "corpus"


def put(target, name, content):
    folder = OUT / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(content)


def put_track(encoding, name, track):
    """A track to read, and the same track to write paths into."""
    put(encoding + "_reader", name, track)
    put(encoding + "_update", name, track + paths_to_write())


def text_track():
    return (b"Info\nXResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height\n"
            b"0.1,0.1,0.01,0,0,-5,3,2\nYX,0.0,0.1,0.2\n10.0,1.25,,1.30\n10.1,1.27,1.29,1.31\nEnd\n"
            b"Anchor\nX,Y,Angle\n1,2,3\nEnd\n\n"
            b"Ruler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\n0,0,0,1,2,3,4,1,50\nEnd\n\n"
            b"Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n"
            b"0,0,12.5,3.2,0.25,0.4,1,100,50,100\n0,1,20.5,3.2,0.65,0.4,1,100,50,100\n"
            b"1,0,1,2,0.125,0.5,2,10,5,7\nEnd\n")


def real_text_track(columns=6, rows=4):
    """The first cells of the real surface, with its own header and paths."""
    lines = (DATA / "fault.trk").read_text().splitlines()
    at = next(i for i, line in enumerate(lines) if line.startswith("YX"))
    info = lines[at - 1].split(",")
    info[6:8] = [str(columns), str(rows)]
    body = [",".join(line.split(",")[:columns + 1]) for line in lines[at:at + rows + 1]]
    end = next(i for i in range(at, len(lines)) if lines[i].startswith("End"))
    return "\n".join(lines[:at - 1] + [",".join(info)] + body + lines[end:end + 40]).encode() + b"\n"


def binary_track(version=1, magic=b"Track  \0", blocks="ARS"):
    head = magic + struct.pack("<i6d2i", version, .1, .2, .01, 1, 2, -5, 3, 2)
    cells = struct.pack("<6h", 1, -32768, 300, -32767, 32767, 0)
    block = {
        "A": struct.pack("<i3d", 65, 1, 2, 3),
        "R": struct.pack("<2i", 82, 1) + struct.pack("<3i4did", 0, 0, 0, 1, 2, 3, 4, 1, 50),
        "S": struct.pack("<2i", 83, 3) + b"".join(
            struct.pack("<2i4d4i", path, point, 1, 2, .25, .5, 1, 100, 50, 20)
            for path, point in ((0, 0), (0, 1), (1, 0))),
    }
    return head + cells + b"".join(block[letter] for letter in blocks)


def paths_to_write():
    """Two paths and a transform, as the path update fuzzers read them from an input's end: last byte first."""
    one_byte = bytes([1])  # a number of one byte follows, in steps of 1/256
    taken = bytes([2])
    for points in (2, 1):
        taken += bytes([points - 1])
        for point in range(points):
            taken += one_byte + bytes([40 + point]) + one_byte + bytes([90])  # x and y
            taken += struct.pack("<4i", point % 3, 100, 50, 20)  # method, length, width, space
        taken += bytes([1]) + bytes([1] + [1, 64] * 4) * (points - 1)  # ruler marks: one tick per segment
    taken += (one_byte + bytes([128])) * 5
    return taken[::-1]


def archive(entries, kind):
    out = io.BytesIO()
    with tarfile.open(fileobj=out, mode="w", format=kind) as tar:
        for name, content in entries:
            info = tarfile.TarInfo(name)
            if content is None:
                info.type, info.mode = tarfile.DIRTYPE, 0o755
                tar.addfile(info)
            elif isinstance(content, tuple):
                info.type, info.linkname = content
                tar.addfile(info)
            else:
                info.size = len(content)
                tar.addfile(info, io.BytesIO(content))
    data = out.getvalue()
    end = len(data.rstrip(b"\0"))
    return data[:(end + 511) // 512 * 512] + bytes(1024)


WORKSPACE = [("vdk", None), ("vdk/ContourPath", None), ("vdk/ContourPath/a.trk", b"track"), ("readme", b"r" * 600)]


def archives():
    yield "ustar", archive(WORKSPACE, tarfile.USTAR_FORMAT)
    long = [("n" * 90, None), ("n" * 90 + "/" + "m" * 90, b"long")]
    yield "gnu-long", archive(WORKSPACE + long, tarfile.GNU_FORMAT)
    yield "pax-long", archive(WORKSPACE + long, tarfile.PAX_FORMAT)
    yield "links", archive([("a", b"x"), ("h", (tarfile.LNKTYPE, "a")), ("s", (tarfile.SYMTYPE, "../canary"))]
                           + WORKSPACE, tarfile.GNU_FORMAT)
    yield "dots", archive([("./a", b"x"), ("b/../../canary", b"y")], tarfile.USTAR_FORMAT)
    records = b"".join(("%d %s\n" % (len(r) + 4, r)).encode() for r in (
        "GNU.sparse.major=1", "GNU.sparse.minor=0", "GNU.sparse.name=hole", "GNU.sparse.realsize=1024"))
    out = io.BytesIO()
    with tarfile.open(fileobj=out, mode="w", format=tarfile.USTAR_FORMAT) as tar:
        info = tarfile.TarInfo("PaxHeader")
        info.type, info.size = tarfile.XHDTYPE, len(records)
        tar.addfile(info, io.BytesIO(records))
        data = b"1\n512\n512\n".ljust(512, b"\0") + b"d" * 512
        info = tarfile.TarInfo("GNUSparseFile.0/hole")
        info.size = len(data)
        tar.addfile(info, io.BytesIO(data))
    yield "sparse", out.getvalue()[:5 * 512 + 1024]


def reply(body, kind=b"application/json", extra=b"", length=True):
    fields = b"Content-Length: %d\r\n" % len(body) if length else b""
    return b"HTTP/1.1 200 OK\r\nContent-Type: " + kind + b"\r\n" + fields + extra + b"\r\n" + body


def request(line, body=b"", kind=b"application/json", extra=b""):
    return line + b" HTTP/1.1\r\nHost: x\r\nContent-Type: " + kind + b"\r\nContent-Length: %d\r\n" % len(body) \
        + extra + b"\r\n" + body


CBOR = b"application/cbor"
EVERYTHING = b"\xa8\x61a\x01\x61b\x20\x61c\xfb\x40\x09\x21\xfb\x54\x44\x2d\x18\x61d\xf5\x61e\xf6\x61f\x83\x01\x60\x80" \
             b"\x61g\xa1\x61h\xf9\x3c\x00\x61i\x43xyz"


def regressions():
    """Inputs that once broke a promise."""
    other_size = text_track().replace(b"-5,3,2", b"-5,2,3").split(b"YX")[0] + b"End\n"
    negative = binary_track().replace(struct.pack("<2i", 3, 2), struct.pack("<2i", -3, -2))
    put_track("text", "regression-information-after-the-map", text_track() + other_size)
    put_track("binary", "regression-negative-width", negative)
    put_track("binary", "regression-end-within-the-first-tag", binary_track(blocks="") + b"A\0")
    put("rest_reply", "regression-last-chunk-in-single-bytes", reply(
        b"0\r\n\r\n", length=False, extra=b"Transfer-Encoding: chunked\r\n"))
    put("rest_reply", "regression-keys-that-differ-after-a-zero-byte", reply(b'{"a\0b":1,"a\0c":2}'))
    put("rest_reply", "regression-escaped-zero-bytes-in-keys", reply(b'{"a\\u0000b":1,"a\\u0000c":2}'))
    answer = b'{"SerialNumber":1,"ControlPort":65535,"Address":"10.0.0.1%s"}'
    put("discovery_answer", "regression-zero-byte-in-the-address", answer % b"\\u0000.9")
    put("discovery_answer", "regression-keys-that-differ-after-a-zero-byte", b'{"a\0b":1,"a\0c":2,' + answer[1:] % b"")
    put("server_request", "regression-last-chunk-in-single-bytes",
        b"POST /system/commands/archive HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n")
    put("server_request", "regression-verb-that-begins-with-a-hash", request(b"#PUT /replay/playback"))


def main():
    for name, track in (("small", text_track()), ("real", real_text_track()),
                        ("windows-lines", text_track().replace(b"\n", b"\r\n")),
                        ("quotes", text_track().replace(b"1.25", b'"1.25"').replace(b"Anchor", b'"An\\"chor"')),
                        ("two-maps", text_track() + text_track())):
        put_track("text", name, track)
    for name, track in (("small", binary_track()), ("no-anchor", binary_track(blocks="RS")),
                        ("segments-only", binary_track(blocks="S")), ("map-only", binary_track(blocks="")),
                        ("version-2", binary_track(version=2)), ("magic-inside", binary_track(magic=b"xxxTraxx"))):
        put_track("binary", name, track)
    for name, data in archives():
        put("tar_uncompress", name, data)
        put("server_restore", name, data)
    workspace = archive(WORKSPACE, tarfile.USTAR_FORMAT)
    put("server_restore", "backup", archive([("info.json", b'{"replay":true}'), ("workspaces", None),
                                             ("workspaces/Workspace.osws", workspace)], tarfile.PAX_FORMAT))
    put("rest_reply", "enabled", reply(b'{"enabled": true}'))
    put("rest_reply", "data", reply(b"\xa1\x64data\x5b" + struct.pack(">Q", 5) + b"bytes", CBOR))
    put("rest_reply", "everything", reply(EVERYTHING, CBOR))
    put("rest_reply", "json", reply(b'{"a":[1,2.5,-3e9,"\\u00e4\\n",null,false,{"b":{}}],"a":[]}'))
    put("rest_reply", "chunks", reply(b"5\r\n{\"a\":\r\n2\r\n1}\r\n0\r\n\r\n", length=False,
                                      extra=b"Transfer-Encoding: chunked\r\n"))
    put("rest_reply", "to-the-end", reply(b"[1]", length=False, extra=b"Connection: close\r\n"))
    put("rest_reply", "refusal", b"HTTP/1.1 404 Not Found\r\nContent-Length: 15\r\n\r\n{\"error\":\"text\"}")
    put("discovery_answer", "full", b'{"SerialNumber":100001,"DeviceModel":"m","AppName":"n","AppId":"i",'
        b'"AppVersion":"1","ControlPort":3600,"WebPort":0,"VdpPort":0,"Address":"127.0.0.1","Mask":"255.0.0.0",'
        b'"Gateway":"","Dhcp":false,"IsRemote":true,"AddressConflict":false}')
    put("discovery_answer", "least", b'{"SerialNumber":1,"ControlPort":65535,"Address":"10.0.0.1"}')
    put("discovery_answer", "question", b'{"ostra":"discover","version":1}')
    contents = b'{"contents": ["allWorkspaces"]}'
    put("server_request", "archive", request(b"POST /system/commands/archive", contents))
    put("server_request", "archive-cbor", request(b"POST /system/commands/archive",
                                                  b"\xa1\x68contents\x81\x6dallWorkspaces", CBOR))
    put("server_request", "replay", request(b"GET /replay/playback") +
        request(b"PUT /replay/playback", b'{"enabled":true}') + request(b"GET /replay/playback"))
    put("server_request", "info", request(b"GET /system/info", extra=b"Connection: close\r\n"))
    small = archive([("info.json", b"{}"), ("workspaces", None), ("workspaces/Workspace.osws", archive(
        WORKSPACE[:3], tarfile.USTAR_FORMAT))], tarfile.USTAR_FORMAT)
    put("server_request", "restore", request(
        b"POST /system/commands/restore", b"\xa2\x68contents\x81\x6dallWorkspaces\x64data\x5b"
        + struct.pack(">Q", len(small)) + small, CBOR))
    put("server_request", "chunks", b"POST /system/commands/archive HTTP/1.1\r\nTransfer-Encoding: chunked\r\n"
        b"Expect: 100-continue\r\n\r\n1f\r\n" + contents + b"\r\n0\r\n\r\n")
    put("server_request", "head", b"HEAD /system/info HTTP/1.1\r\n\r\n" * 2)
    put("server_request", "digest", b"GET /system/info HTTP/1.1\r\nWant-Content-Digest: crc32c=1\r\n\r\n" * 2)
    put("server_request", "wrong", request(b"GET /system/commands/archive") + request(b"GET /nowhere"))
    regressions()


main()
