#include "server/ArchiveRequest.h"

#include "server/ReplayMode.h"
#include "server/ServerIdentity.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// The CBOR bytes ahead of the byte string of `{"data": <size bytes>}`.
std::string DataHead(std::uint64_t size) {
    constexpr char kMapOfOne = '\xa1';
    constexpr char kTextOfFour = '\x64';
    constexpr char kBytesLengthIn8 = '\x5b';
    constexpr unsigned kTopShift = 56;
    constexpr unsigned kByteBits = 8;
    std::string head = std::string(1, kMapOfOne) + kTextOfFour + "data" + kBytesLengthIn8;
    for (unsigned shift = kTopShift + kByteBits; shift > 0; shift -= kByteBits)
        head += static_cast<char>(size >> (shift - kByteBits) & 0xffU);
    return head;
}

} // namespace

ArchiveRequest::ArchiveRequest(const Sensor& sensor) : archive(sensor.workspace.Open(), Info(sensor)) {
}

std::string ArchiveRequest::Info(const Sensor& sensor) {
    const QJsonObject info{
        {QStringLiteral("serial"), QString::number(sensor.identity.SerialNumber())},
        {QStringLiteral("replay"), sensor.replay.Enabled()},
    };
    return QJsonDocument(info).toJson(QJsonDocument::Compact).toStdString();
}

void ArchiveRequest::Reply(ReplyWriter& reply) const {
    const std::string head = DataHead(archive.Size());
    reply.Head(200, "application/cbor", head.size() + archive.Size());
    reply.Body(head.data(), head.size());
    if (archive.Send([&](const char* bytes, std::size_t size) { return reply.Body(bytes, size); }))
        reply.End();
    else
        reply.Fail();
}
