#pragma once

#include <memory_resource>
#include <new>

/// The heap, but its allocation number `failing` (counted from 1; 0 for never) fails.
class FailingAllocator final : public std::pmr::memory_resource {
  public:
    explicit FailingAllocator(int failing) : failing(failing) {}
    [[nodiscard]] int Allocations() const { return allocations; }
    /// Allocations that were not freed.
    [[nodiscard]] int Living() const { return living; }

  private:
    void* do_allocate(std::size_t size, std::size_t alignment) override {
        if (++allocations == failing)
            throw std::bad_alloc();
        void* const memory = std::pmr::new_delete_resource()->allocate(size, alignment);
        ++living;
        return memory;
    }
    void do_deallocate(void* memory, std::size_t size, std::size_t alignment) override {
        --living;
        std::pmr::new_delete_resource()->deallocate(memory, size, alignment);
    }
    [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override {
        return this == &other;
    }

    int failing;
    int allocations = 0;
    int living = 0;
};
