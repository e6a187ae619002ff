// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FailingAllocation.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

constexpr int64_t None = -2;
constexpr int64_t Failed = -1;
thread_local int64_t g_allocationsLeft = None;

} // namespace

void* operator new(size_t size)
{
    if (g_allocationsLeft >= 0 && g_allocationsLeft-- == 0)
        throw std::bad_alloc();
    if (void* memory = std::malloc(std::max<size_t>(size, 1)))
        return memory;
    throw std::bad_alloc();
}

void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

namespace ek {

FailingAllocation::FailingAllocation(uint64_t nth)
{
    g_allocationsLeft = static_cast<int64_t>(nth);
}

FailingAllocation::~FailingAllocation()
{
    g_allocationsLeft = None;
}

bool FailingAllocation::HasFailed() const
{
    return g_allocationsLeft == Failed;
}

} // namespace ek
