#include "tools/commandline/Output.h"

#include "tools/commandline/Failure.h"

#include <QBuffer>
#include <QJsonDocument>

#include <cerrno>
#include <cstdio>
#include <new>
#include <system_error>

TextOutput::TextOutput(const std::optional<std::string>& file) : name(file.value_or("standard output")) {
    if (!file)
        return;
    target.emplace(*file);
    if (!target->IsOpen())
        Fail();
}

void TextOutput::Write(std::string_view text) {
    if (target)
        target->Write(text);
    else
        failed = std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || failed;
}

void TextOutput::Finish() {
    if (target ? !target->Commit() : std::fflush(stdout) != 0 || failed)
        Fail();
}

void TextOutput::Fail() const {
    const std::error_code reason =
        target ? target->Failure() : std::error_code(errno, std::generic_category());
    throw Failure(ExitCode::Unwritable, name + ": " + reason.message());
}

std::string JsonLine(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() + '\n';
}

void WritePicture(const QImage& picture, const std::string& file) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, "PNG"))
        throw std::bad_alloc(); // writing into memory fails for no other reason
    TextOutput output(file);
    output.Write({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    output.Finish();
}
