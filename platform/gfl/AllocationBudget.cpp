#include "AllocationBudget.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t t_left = SIZE_MAX;

} // namespace

AllocationBudget::AllocationBudget(std::size_t bytes)
{
    t_left = bytes;
}

AllocationBudget::~AllocationBudget()
{
    t_left = SIZE_MAX;
}

// The program's own allocation: shared libraries come here too. The other forms of `new` lead to
// it.
void *operator new(std::size_t size)
{
    if (t_left != SIZE_MAX) {
        if (size > t_left)
            throw std::bad_alloc();
        t_left -= size;
    }
    for (;;) {
        if (void *const memory = std::malloc(size == 0 ? 1 : size))
            return memory;
        const std::new_handler handler = std::get_new_handler();
        if (!handler)
            throw std::bad_alloc();
        handler();
    }
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

// A sanitizer brings all forms of its own, which would not go with these.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void *operator new[](std::size_t size)
{
    return operator new(size);
}

void *operator new[](std::size_t size, const std::nothrow_t &nothrow) noexcept
{
    return operator new(size, nothrow);
}

void operator delete[](void *memory) noexcept
{
    operator delete(memory);
}

void operator delete[](void *memory, std::size_t) noexcept
{
    operator delete(memory);
}
