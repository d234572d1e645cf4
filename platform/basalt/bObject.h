#pragma once

#include "basalt/bStatus.h"

#include <memory>
#include <memory_resource>
#include <new>
#include <utility>

/// Where an object of the platform takes its memory from. The handle is borrowed: the memory resource
/// outlives every object made with it.
using bAlloc = std::pmr::memory_resource*;

/// The allocator of the program: the heap. Never null; usable from every thread.
bAlloc bAlloc_Application();

/// What lists, files and archives have in common: they live in memory of their allocator, are made by a
/// ..._Construct call and ended by xbObject_DestroyImpl.
class bObject {
  public:
    explicit bObject(bAlloc allocator) : allocator(allocator) {}
    bObject(const bObject&) = delete;
    bObject& operator=(const bObject&) = delete;
    virtual ~bObject() = default;

    /// The last step of the object's work that can fail; called once, before it is destroyed.
    [[nodiscard]] virtual bStatus Close() { return bOK; }

    [[nodiscard]] bAlloc Allocator() const { return allocator; }

  private:
    template<typename Object, typename... Arguments>
    friend bStatus bObject_New(Object** object, bAlloc allocator, Arguments&&... arguments);
    friend bStatus xbObject_DestroyImpl(bObject* object);

    bAlloc allocator;
    void (*release)(bObject*) = nullptr;
};

/// Makes an object in memory of `allocator`; its constructor gets the allocator and then `arguments`.
/// @return 1; bERROR_PARAMETER when a pointer is null; bERROR_MEMORY, `*object` is then null.
template<typename Object, typename... Arguments>
bStatus bObject_New(Object** object, bAlloc allocator, Arguments&&... arguments) {
    if (object == nullptr || allocator == nullptr)
        return bERROR_PARAMETER;
    *object = nullptr;
    try {
        std::pmr::polymorphic_allocator<> memory(allocator);
        *object = memory.new_object<Object>(allocator, std::forward<Arguments>(arguments)...);
    } catch (const std::bad_alloc&) {
        return bERROR_MEMORY;
    }
    static_cast<bObject*>(*object)->release = [](bObject* made) {
        std::pmr::polymorphic_allocator<>(made->allocator).delete_object(static_cast<Object*>(made));
    };
    return bOK;
}

/// Closes an object and frees its memory, whatever the status. Null is allowed.
/// @return what the object's Close returned; 1 for null.
bStatus xbObject_DestroyImpl(bObject* object);

/// Destroys an object at the end of a scope, where its last status no longer matters.
struct bDestroyer {
    void operator()(bObject* object) const { xbObject_DestroyImpl(object); }
};

/// The one owner of an object.
template<typename Object>
using bOwned = std::unique_ptr<Object, bDestroyer>;
