#include "wire/CborReader.h"

#include "basalt/Exception.h"
#include "basalt/LargePages.h"
#include "basalt/bStatus.h"
#include "wire/CborFrame.h"
#include "wire/JsonText.h"

#include <algorithm>

namespace OstraSdk {

namespace {

constexpr std::size_t kMostByteStrings = 1000;
constexpr std::uint8_t kByteString = 2;
constexpr std::uint8_t kTextString = 3;
constexpr unsigned kKindShift = 5;
constexpr unsigned kLongestDirect = 23; // a value up to this stands in the first byte itself
constexpr unsigned kEightBytesFollow = 27;
constexpr char kEmptyByteString = 0x40;

[[noreturn]] void Throw(int line, bStatus status, const char* reason) {
    throw Ve::Exception(line, __FILE__, status, "CborReader", "%s", reason);
}

unsigned Information(std::uint8_t first) {
    return first & 0x1FU;
}

/// The bytes of a head, as its first one tells.
std::size_t HeadSize(std::uint8_t first) {
    const unsigned information = Information(first);
    if (information > kEightBytesFollow)
        Throw(__LINE__, bERROR_FORMAT, "A length is not definite.");
    return information <= kLongestDirect ? 1 : 1 + (std::size_t{1} << (information - kLongestDirect - 1));
}

std::uint64_t HeadValue(const std::vector<std::uint8_t>& head) {
    if (head.size() == 1)
        return Information(head.front());
    std::uint64_t value = 0;
    for (std::size_t i = 1; i < head.size(); ++i)
        value = value << 8U | head[i];
    return value;
}

} // namespace

void CborReader::Take(const std::uint8_t* data, std::size_t size) {
    for (std::size_t taken = 0; size > 0; data += taken, size -= taken) {
        taken = 1;
        if (bytesLeft > 0)
            taken = TakeBytes(data, size);
        else if (textLeft > 0)
            taken = TakeText(data, size);
        else
            TakeHeadByte(*data);
    }
}

VeJson CborReader::Finish() {
    if (!head.empty() || textLeft > 0 || bytesLeft > 0)
        Throw(__LINE__, bERROR_FORMAT, "The body is cut short.");
    return FromCborFrame(frame, std::move(byteStrings));
}

void CborReader::TakeHeadByte(std::uint8_t byte) {
    ++position;
    head.push_back(byte);
    if (head.size() < HeadSize(head.front()))
        return;
    StartItem(static_cast<std::uint8_t>(head.front() >> kKindShift), HeadValue(head));
    head.clear();
}

std::size_t CborReader::TakeText(const std::uint8_t* data, std::size_t size) {
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(size, textLeft));
    AppendToFrame(data, taken);
    position += taken;
    textLeft -= taken;
    return taken;
}

std::size_t CborReader::TakeBytes(const std::uint8_t* data, std::size_t size) {
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(size, bytesLeft));
    MakeRoom(taken);
    byteStrings.back().insert(byteStrings.back().end(), data, data + taken);
    position += taken;
    bytesLeft -= taken;
    return taken;
}

void CborReader::StartItem(std::uint8_t kind, std::uint64_t value) {
    if ((kind == kByteString || kind == kTextString) && bodySize && value > *bodySize - position)
        Throw(__LINE__, bERROR_FORMAT, "A length reaches beyond the body.");
    if (kind != kByteString) {
        AppendToFrame(head.data(), head.size());
        textLeft = kind == kTextString ? value : 0;
        return;
    }
    if (byteStrings.size() == kMostByteStrings)
        Throw(__LINE__, bERROR_LIMIT, "The body has too many byte strings.");
    AppendToFrame(&kEmptyByteString, 1);
    byteStrings.emplace_back();
    bytesLeft = value;
}

void CborReader::AppendToFrame(const void* data, std::size_t size) {
    if (size > kLongestText - static_cast<std::size_t>(frame.size()))
        Throw(__LINE__, bERROR_LIMIT, "The body has too much beside its byte strings.");
    frame.append(static_cast<const char*>(data), static_cast<int>(size));
}

/// The room grows with what has really arrived, never by the declared length alone; and it grows in steps
/// that leave the last copying to where little is in it, so that the peak is the size of the whole.
void CborReader::MakeRoom(std::size_t size) {
    constexpr std::uint64_t kFirstRoom = std::uint64_t{1024} * 1024;
    constexpr std::uint64_t kGrowth = 16;
    VeJson::Bytes& bytes = byteStrings.back();
    if (bytes.capacity() - bytes.size() >= size)
        return;
    const std::uint64_t whole = bytes.size() + bytesLeft;
    const std::uint64_t arrived = std::max<std::uint64_t>(bytes.size() + size, kFirstRoom);
    const std::uint64_t room = whole / (2 * kGrowth) <= arrived ? whole : kGrowth * arrived;
    ReserveInLargePages(bytes, static_cast<std::size_t>(room));
}

} // namespace OstraSdk
