#include "HostileMessages.h"

#include "TarBlocks.h"

namespace {

const std::string kArchive = "/system/commands/archive";
const std::string kRestore = "/system/commands/restore";
const std::string kReplay = "/replay/playback";
const std::string kContents = R"({"contents": ["allWorkspaces"]})";
const std::string kCborContents = "\x68"
                                  "contents\x81\x6d"
                                  "allWorkspaces";

std::string Request(const std::string& verb, const std::string& path, const std::string& body,
                    const std::string& type = "application/json") {
    return verb + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

std::string Raw(const std::string& fields, const std::string& body = "") {
    return "POST " + kArchive + " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n" +
           fields + "\r\n" + body;
}

std::string Bytes(const std::string& bytes) {
    std::string head = "\x5b";
    for (int shift = 56; shift >= 0; shift -= 8)
        head += static_cast<char>(bytes.size() >> static_cast<unsigned>(shift) & 0xffU);
    return head + bytes;
}

std::string Restore(const std::string& body) {
    return Request("POST", kRestore, body, "application/cbor");
}

std::string RestoreOf(const std::string& archive) {
    return Restore("\xa2" + kCborContents +
                   "\x64"
                   "data" +
                   Bytes(archive));
}

/// The part of a backup after the information.
std::string Wrapped(const std::string& workspace) {
    return TarFolder("workspaces") + TarFile("workspaces/Workspace.osws", workspace) + TarEnd();
}

std::string WithWorkspace(const std::string& workspace) {
    return RestoreOf(TarFile("info.json", "{}") + Wrapped(workspace));
}

std::string Tracks() {
    return TarFolder("vdk") + TarFolder("vdk/ContourPath");
}

void AddHeaders(std::vector<HostileRequest>& requests) {
    requests.push_back({"garbage", std::string(100, '\xff') + "\r\n\r\n", 400});
    requests.push_back({"zeros", std::string(100, '\0') + "\r\n\r\n", 400});
    requests.push_back({"no-version", "GET /system/info\r\n\r\n", 400});
    requests.push_back({"another-protocol", "GET /system/info FTP/1.1\r\n\r\n", 400});
    requests.push_back({"another-version", "GET /system/info HTTP/3.0\r\n\r\n", 400});
    requests.push_back({"blank-path", "GET  HTTP/1.1\r\n\r\n", 400});
    requests.push_back({"control-character-in-the-path", "GET /a\x01 HTTP/1.1\r\n\r\n", 400});
    requests.push_back({"header-cut", "GET /system/info HTTP/1.1\r\nHost", 400});
    requests.push_back({"header-of-a-megabyte",
                        "GET /system/info HTTP/1.1\r\nX: " + std::string(1 << 20, 'x') + "\r\n\r\n", 400});
    requests.push_back({"field-without-a-colon", "GET /system/info HTTP/1.1\r\nnonsense\r\n\r\n", 400});
    requests.push_back({"path-with-dots", Request("GET", "/system/../replay/playback", ""), 404});
    requests.push_back({"path-to-a-file", Request("GET", "/etc/passwd", ""), 404});
    requests.push_back({"path-with-a-slash-at-its-end", Request("GET", "/system/info/", ""), 404});
    requests.push_back({"path-with-a-question", Request("GET", "/system/info?x=1", ""), 404});
    requests.push_back({"path-of-an-absolute-address", Request("GET", "http://x/system/info", ""), 404});
    requests.push_back({"path-of-7000-letters", Request("GET", "/" + std::string(7000, 'p'), ""), 404});
    requests.push_back({"verb-that-does-not-fit", Request("GET", kArchive, ""), 405});
    requests.push_back({"verb-delete", Request("DELETE", kReplay, ""), 405});
    requests.push_back({"verb-in-lower-case", Request("get", kReplay, ""), 405});
    requests.push_back({"verb-of-its-own", Request("FROB", kReplay, ""), 405});
    requests.push_back({"verb-that-begins-with-a-hash", Request("#PUT", kReplay, ""), 405});
    requests.push_back({"length-negative", Raw("Content-Length: -1\r\n"), 400});
    requests.push_back({"length-of-letters", Raw("Content-Length: ten\r\n"), 400});
    requests.push_back({"length-beyond-64-bits", Raw("Content-Length: 99999999999999999999\r\n"), 400});
    requests.push_back({"length-of-ten-gigabytes", Raw("Content-Length: 10737418240\r\n"), 413});
    requests.push_back({"two-lengths", Raw("Content-Length: 2\r\nContent-Length: 3\r\n", "{}"), 400});
    requests.push_back(
        {"length-and-chunks", Raw("Content-Length: 2\r\nTransfer-Encoding: chunked\r\n", "{}"), 400});
    requests.push_back({"chunk-size-of-letters", Raw("Transfer-Encoding: chunked\r\n", "xyz\r\n"), 400});
    requests.push_back({"chunk-cut", Raw("Transfer-Encoding: chunked\r\n", "ff\r\nabc"), 400});
    requests.push_back({"body-cut", Raw("Content-Length: 100\r\n", "{"), 400});
    requests.push_back({"text-beyond-its-limit", Request("POST", kArchive, std::string(70'000, ' ')), 413});
}

void AddTexts(std::vector<HostileRequest>& requests) {
    const auto archive = [&](const std::string& name, const std::string& body) {
        requests.push_back({"archive-" + name, Request("POST", kArchive, body), 400});
    };
    archive("without-a-body", "");
    archive("of-a-number", "1");
    archive("of-a-list", "[]");
    archive("of-null", "null");
    archive("cut", R"({"contents": ["allWorkspaces")");
    archive("without-contents", "{}");
    archive("of-contents-that-are-text", R"({"contents": "allWorkspaces"})");
    archive("of-other-contents", R"({"contents": ["all"]})");
    archive("of-two-values", kContents + kContents);
    archive("nested-10000-deep", std::string(10'000, '['));
    archive("nested-in-contents", R"({"contents": )" + std::string(65, '[') + std::string(65, ']') + "}");
    archive("with-a-key-twice", R"({"contents": ["allWorkspaces"], "x": [1], "x": [2]})");
    archive("with-contents-twice", R"({"contents": ["allWorkspaces"], "c\u006fntents": ["allWorkspaces"]})");
    archive("with-data", R"({"contents": ["allWorkspaces"], "data": "x"})");
    requests.push_back({"archive-of-another-type", Request("POST", kArchive, kContents, "text/html"), 400});
    const auto replay = [&](const std::string& name, const std::string& body) {
        requests.push_back({"replay-" + name, Request("PUT", kReplay, body), 400});
    };
    replay("without-a-body", "");
    replay("without-enabled", "{}");
    replay("enabled-by-a-number", R"({"enabled": 1})");
    replay("enabled-by-text", R"({"enabled": "true"})");
    replay("enabled-twice", R"({"enabled": true, "enabled": true})");
    replay("enabled-by-null", R"({"enabled": null})");
}

void AddBinaries(std::vector<HostileRequest>& requests) {
    const auto restore = [&](const std::string& name, const std::string& body) {
        requests.push_back({"restore-" + name, Restore(body), 400});
    };
    const std::string data = "\x64"
                             "data";
    requests.push_back({"restore-in-json", Request("POST", kRestore, kContents), 400});
    restore("without-a-body", "");
    restore("of-an-empty-map", "\xa0");
    restore("without-data", "\xa1" + kCborContents);
    restore("without-contents", "\xa1" + data + Bytes("x"));
    restore("of-data-that-is-text", "\xa2" + kCborContents + data + "\x61x");
    restore("of-data-twice", "\xa3" + kCborContents + data + Bytes("x") + data + Bytes("y"));
    restore("of-contents-twice", "\xa2" + kCborContents + kCborContents);
    restore("of-data-cut", "\xa2" + kCborContents + data + "\x5b" + std::string(8, '\xff'));
    restore("of-endless-data", "\xa2" + kCborContents + data + "\x5f\x41x\xff");
    restore("of-an-endless-map", "\xbf" + kCborContents + data + Bytes("x") + "\xff");
    restore("with-a-map-of-all-ones", "\xbb" + std::string(8, '\xff'));
    restore("with-a-list-of-all-ones", "\xa1\x61x\x9b" + std::string(8, '\xff'));
    restore("with-a-key-that-is-a-number", "\xa1\x01\x02");
    restore("with-bytes-after-the-value", "\xa2" + kCborContents + data + Bytes("x") + "z");
    restore("nested-100000-deep", "\xa1\x61x" + std::string(100'000, '\x81'));
    restore("of-nested-tags", "\xa1\x61x" + std::string(1000, '\xc1') + "\x01");
}

void AddArchives(std::vector<HostileRequest>& requests) {
    const auto backup = [&](const std::string& name, const std::string& archive) {
        requests.push_back({"backup-" + name, RestoreOf(archive), 422});
    };
    backup("empty", "");
    backup("of-garbage", std::string(2000, 'g'));
    backup("without-a-workspace", TarFile("info.json", "{}") + TarEnd());
    backup("with-an-unsafe-name", TarFile("../evil", "x") + TarEnd());
    backup("with-a-link", TarLink("l", '2', "..") + TarEnd());
    const auto info = [&](const std::string& name, const std::string& entries) {
        backup("with-info-" + name, entries + Wrapped(Tracks() + TarEnd()));
    };
    info("that-is-no-json", TarFile("info.json", "x"));
    info("that-repeats-a-key", TarFile("info.json", R"({"x": [1], "x": [2]})"));
    info("whose-keys-are-equal-up-to-a-zero-byte",
         TarFile("info.json", std::string("{\"x\0y\": [1], \"x\0z\": [2]}", 24)));
    info("twice", TarFile("info.json", "{}") + TarFile("info.json", "{}"));
    info("of-a-megabyte", TarFile("info.json", "{" + std::string(1 << 20, ' ') + "}"));
    const auto workspace = [&](const std::string& name, const std::string& archive) {
        requests.push_back({"workspace-" + name, WithWorkspace(archive), 422});
    };
    workspace("empty", "");
    workspace("without-tracks", TarFile("a", "x") + TarEnd());
    workspace("without-an-end", Tracks());
    workspace("with-a-name-upwards", Tracks() + TarFile("../evil", "x") + TarEnd());
    workspace("with-an-absolute-name", Tracks() + TarFile("/tmp/evil", "x") + TarEnd());
    workspace("with-a-link-out", Tracks() + TarLink("l", '2', "..") + TarEnd());
    workspace("with-a-hard-link", Tracks() + TarLink("l", '1', "../canary") + TarEnd());
    workspace("with-a-fifo", Tracks() + TarLink("f", '6', "") + TarEnd());
    workspace("with-a-device", Tracks() + TarLink("f", '3', "") + TarEnd());
    workspace("with-a-file-in-place-of-the-tracks",
              TarFolder("vdk") + TarFile("vdk/ContourPath", "x") + TarEnd());
    workspace("cut", (Tracks() + TarFile("vdk/ContourPath/a.trk", std::string(2000, 'x'))).substr(0, 2600));
    TarBlockEntry large;
    large.name = "big";
    large.size = 1LL << 40;
    workspace("with-a-file-of-a-terabyte", Tracks() + TarBlocks(large) + TarEnd());
}

} // namespace

std::vector<HostileRequest> HostileRequests() {
    std::vector<HostileRequest> requests;
    AddHeaders(requests);
    AddTexts(requests);
    AddBinaries(requests);
    AddArchives(requests);
    return requests;
}
