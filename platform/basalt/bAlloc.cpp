#include "basalt/bAlloc.h"

bAlloc bAlloc_Application() {
    return std::pmr::new_delete_resource();
}
