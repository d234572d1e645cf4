#include "HostileMessages.h"

namespace {

const std::string kJson = "application/json";
const std::string kCbor = "application/cbor";
const std::string kTenBytes = "\x5b" + std::string(7, '\0') + "\x0a";

std::string Reply(const std::string& type, const std::string& body, const std::string& status = "200 OK") {
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

/// A reply with all its header fields given.
std::string Raw(const std::string& fields, const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n" + fields + "\r\n" + body;
}

/// The map {"data": ...} up to its value.
std::string Data(const std::string& value) {
    return "\xa1\x64"
           "data" +
           value;
}

void AddHeaders(std::vector<HostileReply>& replies) {
    const std::string good = Data("\x43xyz");
    replies.push_back({"nothing", ""});
    replies.push_back({"one-byte", "H"});
    replies.push_back({"garbage", std::string(1000, '\xff')});
    replies.push_back({"zeros", std::string(1000, '\0')});
    replies.push_back({"header-cut", "HTTP/1.1 200 OK\r\nContent-Le"});
    replies.push_back({"another-protocol", "SSH-2.0-server\r\n"});
    replies.push_back({"another-version", "HTTP/9.9 200 OK\r\nContent-Length: 2\r\n\r\n{}"});
    replies.push_back({"status-of-two-digits", "HTTP/1.1 20 OK\r\nContent-Length: 2\r\n\r\n{}"});
    replies.push_back({"status-of-letters", "HTTP/1.1 OK\r\nContent-Length: 2\r\n\r\n{}"});
    for (const char* const status :
         {"201 Created", "301 Moved", "400 Bad", "404 Not Found", "500 Broken", "503 Busy", "999 Odd"})
        replies.push_back({"status-" + std::string(status).substr(0, 3), Reply(kCbor, good, status)});
    replies.push_back({"header-of-a-megabyte", "HTTP/1.1 200 OK\r\nX: " + std::string(1 << 20, 'x') +
                                                   "\r\nContent-Length: 2\r\n\r\n{}"});
    replies.push_back({"field-without-a-colon", "HTTP/1.1 200 OK\r\nnonsense\r\n\r\n"});
    replies.push_back(
        {"zero-byte-in-a-field", "HTTP/1.1 200 OK\r\nX: a" + std::string(1, '\0') + "\r\n\r\n"});
    replies.push_back({"length-negative", Raw("Content-Length: -1\r\n", good)});
    replies.push_back({"length-of-letters", Raw("Content-Length: ten\r\n", good)});
    replies.push_back({"length-of-ten-gigabytes", Raw("Content-Length: 10737418240\r\n", good)});
    replies.push_back({"length-beyond-64-bits", Raw("Content-Length: 99999999999999999999\r\n", good)});
    replies.push_back({"length-one-too-many", Raw("Content-Length: 11\r\n", good)});
    replies.push_back({"two-lengths", Raw("Content-Length: 10\r\nContent-Length: 9\r\n", good)});
    replies.push_back(
        {"length-and-chunks", Raw("Content-Length: 10\r\nTransfer-Encoding: chunked\r\n", good)});
    replies.push_back({"chunk-size-of-letters", Raw("Transfer-Encoding: chunked\r\n", "xyz\r\n" + good)});
    replies.push_back(
        {"chunk-size-beyond-64-bits", Raw("Transfer-Encoding: chunked\r\n", "fffffffffffffffff\r\n" + good)});
    replies.push_back({"chunk-cut", Raw("Transfer-Encoding: chunked\r\n", "ff\r\n" + good)});
    replies.push_back({"chunks-without-end", Raw("Transfer-Encoding: chunked\r\n", "a\r\n" + good + "\r\n")});
}

void AddTexts(std::vector<HostileReply>& replies) {
    const auto json = [&](const std::string& name, const std::string& text) {
        replies.push_back({"json-" + name, Reply(kJson, text)});
    };
    json("empty", "");
    json("blank", " ");
    json("cut", R"({"data": )");
    json("number", "1");
    json("text", "\"data\"");
    json("null", "null");
    json("list", "[]");
    json("without-data", "{}");
    json("data-that-is-text", R"({"data": "eHl6"})");
    json("data-that-is-a-list", R"({"data": [120, 121]})");
    json("data-that-is-null", R"({"data": null})");
    json("key-in-upper-case", R"({"DATA": "x"})");
    json("key-twice", R"({"x": [1], "x": [2]})");
    json("key-twice-once-escaped", R"({"data": {}, "d\u0061ta": {}})");
    json("keys-equal-up-to-a-zero-byte", std::string("{\"x\0y\": [1], \"x\0z\": [2]}", 24));
    json("two-values", "{}{}");
    json("nested-100000-deep", std::string(100'000, '['));
    json("nested-and-closed", std::string(2000, '[') + std::string(2000, ']'));
    json("no-utf-8", "{\"data\": \"\xff\xfe\"}");
    json("zero-byte", std::string("{\"data\"\0: 1}", 12));
    json("two-megabytes", "[\"" + std::string(2 << 20, 'x') + "\"]");
    json("cbor-by-mistake", Data("\x43xyz"));
}

void AddBinaries(std::vector<HostileReply>& replies) {
    const auto cbor = [&](const std::string& name, const std::string& bytes) {
        replies.push_back({"cbor-" + name, Reply(kCbor, bytes)});
    };
    cbor("empty", "");
    cbor("json-by-mistake", R"({"data": "x"})");
    cbor("map-cut", "\xa1");
    cbor("key-cut", "\xa1\x64"
                    "da");
    cbor("value-missing", Data(""));
    cbor("empty-map", "\xa0");
    cbor("list", "\x80");
    cbor("bytes-alone", "\x43xyz");
    cbor("data-that-is-text", Data("\x63xyz"));
    cbor("data-that-is-a-number", Data("\x05"));
    cbor("data-that-is-true", Data("\xf5"));
    cbor("data-that-is-null", Data("\xf6"));
    cbor("data-that-is-undefined", Data("\xf7"));
    cbor("key-that-is-a-number", "\xa1\x01\x43xyz");
    cbor("key-that-is-bytes", "\xa1\x44"
                              "data\x43xyz");
    cbor("key-twice", "\xa2\x64"
                      "data\x43xyz\x64"
                      "data\x43xyz");
    cbor("length-cut", Data("\x5b\x01\x02"));
    cbor("bytes-cut", Data(kTenBytes + "xyz"));
    cbor("length-of-all-ones", Data("\x5b" + std::string(8, '\xff') + "xyz"));
    cbor("length-of-a-terabyte", Data("\x5b" + std::string("\0\0\x01\0\0\0\0\0", 8) + "xyz"));
    cbor("text-length-of-all-ones", "\xa1\x7b" + std::string(8, '\xff') + "data");
    cbor("list-length-of-all-ones", "\x9b" + std::string(8, '\xff'));
    cbor("map-length-of-all-ones", "\xbb" + std::string(8, '\xff'));
    cbor("endless-bytes", Data("\x5f\x43xyz\xff"));
    cbor("endless-map", "\xbf\x64"
                        "data\x43xyz\xff");
    cbor("endless-list", "\x9f\xff");
    cbor("break-alone", "\xff");
    cbor("tagged-bytes", Data("\xc0\x43xyz"));
    cbor("reserved-length", Data("\x5c"));
    cbor("bytes-after-the-value", Data("\x43xyz") + std::string(1, '\0'));
    cbor("nested-100000-deep", Data(std::string(100'000, '\x81')));
    cbor("key-that-is-no-utf-8", "\xa1\x64\xff\xfe\xfd\xfc\x43xyz");
    cbor("integer-beyond-63-bits", "\xa1\x61x\x1b" + std::string(8, '\xff'));
    std::string many = std::string("\x99\x04\x00", 3);
    for (int i = 0; i < 1024; ++i)
        many += '\x40';
    cbor("a-thousand-byte-strings", many);
    cbor("two-megabytes-of-text", "\xa1\x64"
                                  "data\x7a" +
                                      std::string("\x00\x20\x00\x00", 4) + std::string(2 << 20, 'x'));
}

} // namespace

std::vector<HostileReply> HostileReplies() {
    std::vector<HostileReply> replies;
    AddHeaders(replies);
    AddTexts(replies);
    AddBinaries(replies);
    return replies;
}
