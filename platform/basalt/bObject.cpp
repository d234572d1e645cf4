#include "basalt/bObject.h"

bStatus xbObject_DestroyImpl(bObject* object) {
    if (object == nullptr)
        return bOK;
    const bStatus status = object->Close();
    object->release(object);
    return status;
}
