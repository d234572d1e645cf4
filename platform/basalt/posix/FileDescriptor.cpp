#include "basalt/FileDescriptor.h"

#include <unistd.h>

bool FileDescriptor::Close() {
    const int closing = Release();
    return closing < 0 || close(closing) == 0;
}
