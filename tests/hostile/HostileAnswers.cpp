#include "HostileMessages.h"

namespace {

/// A well-formed answer with one member replaced.
std::string AnswerWith(const std::string& member, const std::string& value) {
    const auto field = [&](const std::string& name, const std::string& own) {
        return "\"" + name + "\":" + (name == member ? value : own);
    };
    return "{" + field("SerialNumber", "7") + "," + field("ControlPort", "3600") + "," +
           field("Address", "\"127.0.0.1\"") + "," + field("DeviceModel", "\"m\"") + "," +
           field("WebPort", "0") + "," + field("Mask", "\"255.0.0.0\"") + "," + field("Dhcp", "false") + "}";
}

std::string Nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

} // namespace

std::vector<HostileAnswer> HostileAnswers() {
    constexpr std::size_t kMaxDatagramSize = 65'507;
    std::string random;
    for (unsigned i = 0, state = 1; i < 1000; ++i, state = state * 1664525U + 1013904223U)
        random += static_cast<char>(state >> 24U);
    const std::string good = AnswerWith("", "");
    return {
        {"empty", ""},
        {"one-byte", "{"},
        {"zeros", std::string(100, '\0')},
        {"random-bytes", random},
        {"the-largest-datagram", std::string(kMaxDatagramSize, '{')},
        {"the-largest-datagram-of-blanks", std::string(kMaxDatagramSize, ' ')},
        {"list", "[" + good + "]"},
        {"number", "1"},
        {"text", "\"x\""},
        {"null", "null"},
        {"empty-object", "{}"},
        {"two-objects", good + good},
        {"key-twice", good.substr(0, good.size() - 1) + R"(,"x":[1],"x":[2]})"},
        {"port-twice", good.substr(0, good.size() - 1) + R"(,"ControlPort":3600})"},
        {"keys-equal-up-to-a-zero-byte",
         good.substr(0, good.size() - 1) + std::string(",\"x\0y\":[1],\"x\0z\":[2]}", 21)},
        {"cut", good.substr(0, good.size() - 1)},
        {"the-question-itself", R"({"ostra":"discover","version":1})"},
        {"nested-30000-deep", AnswerWith("AppName", Nested(1)) + Nested(30'000)},
        {"unknown-member-nested-too-deep",
         R"({"SerialNumber":7,"ControlPort":1,"Address":"1.2.3.4","x":)" + Nested(64) + "}"},
        {"no-serial-number", R"({"ControlPort":3600,"Address":"127.0.0.1"})"},
        {"no-port", R"({"SerialNumber":7,"Address":"127.0.0.1"})"},
        {"no-address", R"({"SerialNumber":7,"ControlPort":3600})"},
        {"serial-number-negative", AnswerWith("SerialNumber", "-1")},
        {"serial-number-of-text", AnswerWith("SerialNumber", "\"7\"")},
        {"serial-number-with-a-fraction", AnswerWith("SerialNumber", "7.5")},
        {"serial-number-beyond-2-to-53", AnswerWith("SerialNumber", "18014398509481985")},
        {"serial-number-beyond-a-double", AnswerWith("SerialNumber", "1e999")},
        {"serial-number-null", AnswerWith("SerialNumber", "null")},
        {"port-0", AnswerWith("ControlPort", "0")},
        {"port-65536", AnswerWith("ControlPort", "65536")},
        {"port-99999", AnswerWith("ControlPort", "99999")},
        {"port-negative", AnswerWith("ControlPort", "-1")},
        {"port-of-32-bits-too-many", AnswerWith("ControlPort", "4294970896")},
        {"port-with-a-fraction", AnswerWith("ControlPort", "3600.5")},
        {"port-of-text", AnswerWith("ControlPort", "\"3600\"")},
        {"port-true", AnswerWith("ControlPort", "true")},
        {"address-empty", AnswerWith("Address", "\"\"")},
        {"address-of-three-numbers", AnswerWith("Address", "\"127.0.1\"")},
        {"address-of-five-numbers", AnswerWith("Address", "\"127.0.0.0.1\"")},
        {"address-beyond-255", AnswerWith("Address", "\"127.0.0.256\"")},
        {"address-negative", AnswerWith("Address", "\"127.0.0.-1\"")},
        {"address-with-blanks", AnswerWith("Address", "\" 127.0.0.1\"")},
        {"address-with-a-suffix", AnswerWith("Address", "\"127.0.0.1x\"")},
        {"address-with-a-zero-byte", AnswerWith("Address", "\"127.0.0.1\\u0000x\"")},
        {"address-of-letters", AnswerWith("Address", "\"localhost\"")},
        {"address-of-another-family", AnswerWith("Address", "\"::1\"")},
        {"address-a-number", AnswerWith("Address", "2130706433")},
        {"address-of-60000-letters", AnswerWith("Address", "\"" + std::string(60'000, '1') + "\"")},
        {"address-with-a-format", AnswerWith("Address", "\"%s%n\"")},
        {"model-a-number", AnswerWith("DeviceModel", "5")},
        {"web-port-99999", AnswerWith("WebPort", "99999")},
        {"web-port-of-text", AnswerWith("WebPort", "\"80\"")},
        {"mask-that-is-none", AnswerWith("Mask", "\"255.0\"")},
        {"dhcp-a-number", AnswerWith("Dhcp", "1")},
        {"no-utf-8", "{\"SerialNumber\":7,\"ControlPort\":1,\"Address\":\"\xff\xfe\"}"},
    };
}
