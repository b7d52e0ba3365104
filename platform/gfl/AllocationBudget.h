#pragma once

#include <cstddef>

/// Bounds what the code of this thread may allocate by `new` while this lives: what goes beyond
/// throws std::bad_alloc. For foreign code that believes the sizes in hostile files. All is
/// counted that is allocated, whether it is freed meanwhile or not. Not nested.
class AllocationBudget
{
public:
    explicit AllocationBudget(std::size_t bytes);
    ~AllocationBudget();
    AllocationBudget(const AllocationBudget &) = delete;
    AllocationBudget &operator=(const AllocationBudget &) = delete;
};
