#include "basalt/FileDescriptor.h"

#include <io.h>

bool FileDescriptor::Close() {
    return !IsOpen() || _close(Release()) == 0;
}
