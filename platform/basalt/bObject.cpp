#include "basalt/bObject.h"

bAlloc bAlloc_Application() {
    return std::pmr::new_delete_resource();
}

bStatus xbObject_DestroyImpl(bObject* object) {
    if (object == nullptr)
        return bOK;
    const bStatus status = object->Close();
    object->release(object);
    return status;
}
