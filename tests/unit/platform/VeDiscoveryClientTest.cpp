#include "ostrasdk/VeDiscoveryClient.h"

#include "DiscoveryResponder.h"
#include "ostrasdk/DiscoveryTargets.h"
#include "ostrasdk/VeInstance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>

namespace {

using OstraSdk::VeDiscoveryClient;
using OstraSdk::VeInstance;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

constexpr std::int64_t kTimeout = 10'000;

/// "serial@address:port" of each server found by a discovery of `targets`.
std::vector<std::string> Found(const std::string& targets, std::int64_t timeout = kTimeout) {
    setenv("OSTRA_DISCOVERY", targets.c_str(), 1);
    VeDiscoveryClient client;
    client.BlockingDiscover(timeout);
    std::vector<std::string> found;
    for (const VeInstance& instance : client.InstanceList()) {
        char address[bIpAddress_TEXT_SIZE] = "";
        bIpAddress_Format(instance.GetIpAddress(), address, sizeof(address));
        found.push_back(std::to_string(instance.GetSerialNumber()) + "@" + address + ":" +
                        std::to_string(instance.GetControlPort()));
    }
    return found;
}

std::vector<std::string> FoundOf(const std::vector<std::string>& answers) {
    const DiscoveryResponder responder(answers);
    return Found(responder.Target());
}

/// A well-formed answer in which one piece of text is replaced by another.
std::string AnswerWith(const std::string& before, const std::string& after) {
    std::string answer = DiscoveryAnswer(7, "10.0.0.7", 3600);
    const std::size_t at = answer.find(before);
    EXPECT_NE(at, std::string::npos) << before;
    return answer.replace(at, before.size(), after);
}

TEST(VeDiscoveryClient, sendsTheProtocolsRequest) {
    const DiscoveryResponder responder({});
    EXPECT_THAT(Found(responder.Target()), IsEmpty());
    EXPECT_THAT(responder.Questions(), ElementsAre(R"({"ostra":"discover","version":1})"));
}

TEST(VeDiscoveryClient, findsServersOnSeveralTargetsInTheOrderOfTheirAnswers) {
    const DiscoveryResponder slow({DiscoveryAnswer(1, "10.0.0.1", 3600)}, 80ms);
    const DiscoveryResponder quick(
        {DiscoveryAnswer(2, "10.0.0.2", 1), DiscoveryAnswer(3, "10.0.0.3", 65535)});
    EXPECT_THAT(Found(slow.Target() + "," + quick.Target()),
                ElementsAre("2@10.0.0.2:1", "3@10.0.0.3:65535", "1@10.0.0.1:3600"));
}

TEST(VeDiscoveryClient, keepsOneRecordForEachSerialNumberAndAddress) {
    EXPECT_THAT(FoundOf({DiscoveryAnswer(1, "10.0.0.1", 3600), DiscoveryAnswer(1, "10.0.0.1", 3600),
                         DiscoveryAnswer(1, "10.0.0.1", 3700), DiscoveryAnswer(1, "10.0.0.2", 3600),
                         DiscoveryAnswer(2, "10.0.0.1", 3600)}),
                ElementsAre("1@10.0.0.1:3600", "1@10.0.0.2:3600", "2@10.0.0.1:3600"));
}

TEST(VeDiscoveryClient, dropsTheResultsOfAnEarlierCall) {
    VeDiscoveryClient client;
    {
        const DiscoveryResponder responder({DiscoveryAnswer(1, "10.0.0.1", 3600)});
        setenv("OSTRA_DISCOVERY", responder.Target().c_str(), 1);
        client.BlockingDiscover(kTimeout);
        EXPECT_EQ(client.InstanceList().size(), 1U);
    }
    client.BlockingDiscover(kTimeout);
    EXPECT_THAT(client.InstanceList(), IsEmpty());
}

TEST(VeDiscoveryClient, returnsTheCompleteRecord) {
    const auto instance = VeInstance::FromAnswer(DiscoveryAnswer(7, "10.0.0.7", 3600));
    ASSERT_TRUE(instance);
    const OstraSdk::VeJson& record = instance->GetRecord();
    EXPECT_EQ(record.At(OstraSdk::kSerialNumber).Get<std::int64_t>(), 7);
    EXPECT_EQ(record.At(OstraSdk::kDeviceModel).Get<std::string>(), "Desk");
    EXPECT_EQ(record.At(OstraSdk::kAppName).Get<std::string>(), "server");
    EXPECT_EQ(record.At(OstraSdk::kAppId).Get<std::string>(), "1");
    EXPECT_EQ(record.At(OstraSdk::kAppVersion).Get<std::string>(), "1.0");
    EXPECT_EQ(record.At(OstraSdk::kControlPort).Get<std::int64_t>(), 3600);
    EXPECT_EQ(record.At(OstraSdk::kWebPort).Get<std::int64_t>(), 0);
    EXPECT_EQ(record.At(OstraSdk::kVdpPort).Get<std::int64_t>(), 0);
    EXPECT_EQ(record.At(OstraSdk::kAddress).Get<std::string>(), "10.0.0.7");
    EXPECT_EQ(record.At(OstraSdk::kMask).Get<std::string>(), "255.0.0.0");
    EXPECT_EQ(record.At(OstraSdk::kGateway).Get<std::string>(), "127.0.0.1");
    EXPECT_FALSE(record.At(OstraSdk::kDhcp).Get<bool>());
    EXPECT_FALSE(record.At(OstraSdk::kIsRemote).Get<bool>());
    EXPECT_FALSE(record.At(OstraSdk::kAddressConflict).Get<bool>());
}

TEST(VeDiscoveryClient, needsOnlySerialNumberPortAndAddress) {
    EXPECT_TRUE(VeInstance::FromAnswer(R"({"SerialNumber":0,"ControlPort":1,"Address":"1.2.3.4"})"));
    for (const char* const key : {"SerialNumber", "ControlPort", "Address"})
        EXPECT_FALSE(VeInstance::FromAnswer(AnswerWith(std::string("\"") + key, "\"x"))) << key;
    for (const char* const key : {"DeviceModel", "WebPort", "Mask", "Dhcp"})
        EXPECT_TRUE(VeInstance::FromAnswer(AnswerWith(std::string("\"") + key, "\"x"))) << key;
}

TEST(VeDiscoveryClient, ignoresValuesOfTheWrongTypeOrRange) {
    const std::vector<std::pair<std::string, std::string>> changes = {
        {"\"SerialNumber\":7", "\"SerialNumber\":\"7\""},
        {"\"SerialNumber\":7", "\"SerialNumber\":-7"},
        {"\"SerialNumber\":7", "\"SerialNumber\":7.5"},
        {"\"ControlPort\":3600", "\"ControlPort\":0"},
        {"\"ControlPort\":3600", "\"ControlPort\":99999"},
        {"\"ControlPort\":3600", "\"ControlPort\":65536"},
        {"\"ControlPort\":3600", "\"ControlPort\":-1"},
        {"\"ControlPort\":3600", "\"ControlPort\":1e300"},
        {"\"ControlPort\":3600", "\"ControlPort\":true"},
        {"\"10.0.0.7\"", "\"10.0.0\""},
        {"\"10.0.0.7\"", "\"10.0.0.256\""},
        {"\"10.0.0.7\"", "\"%s\""},
        {"\"10.0.0.7\"", "\"\""},
        {"\"10.0.0.7\"", "7"},
        {"\"WebPort\":0", "\"WebPort\":65536"},
        {"\"VdpPort\":0", "\"VdpPort\":null"},
        {"\"Dhcp\":false", "\"Dhcp\":0"},
        {"\"Desk\"", "1"},
        {"\"255.0.0.0\"", "\"255\""},
    };
    for (const auto& [before, after] : changes)
        EXPECT_FALSE(VeInstance::FromAnswer(AnswerWith(before, after))) << after;
    EXPECT_TRUE(VeInstance::FromAnswer(AnswerWith("7", "7")));
}

TEST(VeDiscoveryClient, ignoresDatagramsThatAreNotAnswers) {
    std::mt19937 random(1); // NOLINT(bugprone-random-generator-seed,cert-msc51-cpp): to be repeatable
    std::string noise(1000, '\0');
    for (char& byte : noise)
        byte = static_cast<char>(random());
    const std::string good = DiscoveryAnswer(9, "10.0.0.9", 3600);
    EXPECT_THAT(FoundOf({"", "x", std::string(65507, '['), std::string(65507, '\0'), noise, "[]", "{}",
                         "null", good.substr(0, good.size() - 1), good + "x", good}),
                ElementsAre("9@10.0.0.9:3600"));
}

TEST(VeDiscoveryClient, ignoresAddressesThatAreNotUnicast) {
    EXPECT_THAT(FoundOf({DiscoveryAnswer(1, "0.0.0.0", 3600), DiscoveryAnswer(2, "224.0.0.1", 3600),
                         DiscoveryAnswer(3, "239.255.255.250", 3600), DiscoveryAnswer(4, "240.0.0.1", 3600),
                         DiscoveryAnswer(5, "255.255.255.255", 3600), DiscoveryAnswer(6, "127.0.0.1", 3600),
                         DiscoveryAnswer(7, "223.255.255.1", 3600)}),
                ElementsAre("6@127.0.0.1:3600", "7@223.255.255.1:3600"));
}

TEST(VeDiscoveryClient, acceptsAnAnswerOfTheMaximumSize) {
    std::string answer = DiscoveryAnswer(9, "10.0.0.9", 3600);
    answer.insert(answer.size() - 1, 65507 - answer.size(), ' ');
    ASSERT_EQ(answer.size(), 65507U);
    EXPECT_THAT(FoundOf({answer}), ElementsAre("9@10.0.0.9:3600"));
}

TEST(VeDiscoveryClient, continuesWhenATargetCannotBeReached) {
    const DiscoveryResponder responder({DiscoveryAnswer(1, "10.0.0.1", 3600)});
    EXPECT_THAT(Found("127.0.0.1:9," + responder.Target()), ElementsAre("1@10.0.0.1:3600"));
}

TEST(VeDiscoveryClient, listensForAQuarterOfASecondUpToOneSecond) {
    const std::vector<std::pair<std::int64_t, std::chrono::milliseconds>> expected = {
        {INT64_MIN, 250ms}, {0, 250ms},          {10'000, 250ms},
        {400'000, 400ms},   {1'000'000, 1000ms}, {INT64_MAX, 1000ms}};
    for (const auto& [timeout, time] : expected) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_THAT(Found("127.0.0.1:9", timeout), IsEmpty());
        const auto taken = std::chrono::steady_clock::now() - start;
        EXPECT_GE(taken, time);
        EXPECT_LT(taken, time + 500ms);
    }
}

TEST(VeDiscoveryClient, keepsAtMostAThousandRecords) {
    constexpr std::size_t kSent = 1200;
    std::vector<std::string> answers;
    answers.reserve(kSent);
    for (std::size_t i = 0; i < kSent; ++i)
        answers.push_back(R"({"SerialNumber":)" + std::to_string(i) +
                          R"(,"ControlPort":1,"Address":"10.0.0.1"})");
    EXPECT_LE(FoundOf(answers).size(), 1000U);
}

TEST(DiscoveryTargets, areReadFromAList) {
    using OstraSdk::ParseDiscoveryTargets;
    const auto texts = [](std::string_view list) {
        std::vector<std::string> targets;
        for (const auto& target : ParseDiscoveryTargets(list))
            targets.push_back(target.address().to_string() + ":" + std::to_string(target.port()));
        return targets;
    };
    EXPECT_THAT(texts("127.0.0.1"), ElementsAre("127.0.0.1:3601"));
    EXPECT_THAT(texts("127.0.0.1:4000"), ElementsAre("127.0.0.1:4000"));
    EXPECT_THAT(texts(" 10.0.0.1,127.0.0.1:1 ,\t10.0.0.2:65535 "),
                ElementsAre("10.0.0.1:3601", "127.0.0.1:1", "10.0.0.2:65535"));
    EXPECT_THAT(texts("127.0.0.1,127.0.0.1"), ElementsAre("127.0.0.1:3601"));
    EXPECT_THAT(texts(""), IsEmpty());
    EXPECT_THAT(texts(",, ,"), IsEmpty());
    EXPECT_THAT(texts("localhost 1.2.3 1.2.3.4: 1.2.3.4:0 1.2.3.4:65536 1.2.3.4:x 1.2.3.4:1x 1.2.3.4:-1 :1"),
                IsEmpty());
}

TEST(DiscoveryTargets, areReplacedByTheEnvironment) {
    setenv("OSTRA_DISCOVERY", "127.0.0.1:1234", 1);
    ASSERT_EQ(OstraSdk::DiscoveryTargets().size(), 1U);
    EXPECT_EQ(OstraSdk::DiscoveryTargets()[0].port(), 1234);
    setenv("OSTRA_DISCOVERY", "", 1);
    EXPECT_THAT(OstraSdk::DiscoveryTargets(), IsEmpty());
}

TEST(DiscoveryTargets, holdLoopbackAndNoDuplicatesWithoutTheEnvironment) {
    unsetenv("OSTRA_DISCOVERY"); // nothing is sent in this test
    auto targets = OstraSdk::DiscoveryTargets();
    ASSERT_FALSE(targets.empty());
    EXPECT_EQ(targets.front().address().to_string(), "127.0.0.1");
    for (const auto& target : targets)
        EXPECT_EQ(target.port(), 3601);
    const std::size_t all = targets.size();
    std::sort(targets.begin(), targets.end());
    targets.erase(std::unique(targets.begin(), targets.end()), targets.end());
    EXPECT_EQ(targets.size(), all);
}

} // namespace
