#include "tools/commandline/PictureOutput.h"

#include "tools/commandline/TextOutput.h"

#include <QBuffer>

#include <new>

void WritePicture(const QImage& picture, const std::string& file) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, "PNG"))
        throw std::bad_alloc(); // nothing else fails in memory
    TextOutput output(file);
    output.Write({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    output.Finish();
}
