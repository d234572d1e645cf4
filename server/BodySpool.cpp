#include "BodySpool.h"

#include "RequestError.h"

#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

BodySpool::BodySpool(std::string folder, std::uint64_t& size) : folder(std::move(folder)), size(size) {
    size = 0;
}

void BodySpool::Open() {
    file = FileDescriptor(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (file.IsOpen())
        return;
    // Not every file system makes files without a name.
    std::string path = folder + "/.ostra-body-XXXXXX";
    file = FileDescriptor(mkostemp(path.data(), O_CLOEXEC));
    if (!file.IsOpen())
        throw RequestError(500, "The request cannot be stored.");
    unlink(path.c_str());
}

void BodySpool::Append(const char* bytes, std::size_t count) {
    if (!file.IsOpen())
        Open();
    while (count > 0) {
        const ssize_t written = write(file.Number(), bytes, count);
        if (written <= 0)
            throw RequestError(500, "The request cannot be stored.");
        bytes += written;
        count -= static_cast<std::size_t>(written);
        size += static_cast<std::uint64_t>(written);
    }
}

std::size_t BodySpool::Read(std::uint64_t offset, char* bytes, std::size_t count) const {
    std::size_t total = 0;
    while (total < count && offset + total < size) {
        const ssize_t got =
            pread(file.Number(), bytes + total, count - total, static_cast<off_t>(offset + total));
        if (got <= 0)
            throw RequestError(500, "The stored request cannot be read.");
        total += static_cast<std::size_t>(got);
    }
    return total;
}

std::string BodySpool::Content() const {
    std::string content(static_cast<std::size_t>(size), '\0');
    content.resize(Read(0, content.data(), content.size()));
    return content;
}
