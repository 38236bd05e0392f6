#include "allocationcounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

// The bounds of the binary's code, as the linker places it.
extern "C" const char __executable_start[];
extern "C" const char etext[];

namespace {

std::atomic<qint64> live{0};
std::atomic<int> own{0};
std::atomic<int> failing{0};

bool isOwnCode(const void *address)
{
    const char *at = static_cast<const char *>(address);
    return at >= __executable_start && at < etext;
}

void *allocate(std::size_t size, const void *caller)
{
    if (isOwnCode(caller)) {
        const int count = ++own;
        if (count == failing.load())
            throw std::bad_alloc();
    }
    void *block = std::malloc(size ? size : 1);
    if (!block)
        throw std::bad_alloc();
    ++live;
    return block;
}

void release(void *block) noexcept
{
    if (!block)
        return;
    --live;
    std::free(block);
}

} // namespace

qint64 AllocationCounter::liveBlocks()
{
    return live.load();
}

void AllocationCounter::failOwnAllocation(int nth)
{
    own = 0;
    failing = nth;
}

int AllocationCounter::failEachInTurn(const std::function<void()> &make, QString *leak)
{
    for (int nth = 1;; ++nth) {
        const qint64 before = liveBlocks();
        bool made = false;
        failOwnAllocation(nth);
        try {
            make();
            made = true;
        } catch (const std::bad_alloc &) { }
        failOwnAllocation(0);
        const qint64 left = liveBlocks() - before;
        if (left != 0) {
            *leak = QStringLiteral("allocation %1 failed: %2 blocks left").arg(nth).arg(left);
            return nth - 1;
        }
        if (made)
            return nth - 1;
    }
}

void *operator new(std::size_t size)
{
    return allocate(size, __builtin_return_address(0));
}

void *operator new[](std::size_t size)
{
    return allocate(size, __builtin_return_address(0));
}

void operator delete(void *block) noexcept
{
    release(block);
}

void operator delete[](void *block) noexcept
{
    release(block);
}

void operator delete(void *block, std::size_t) noexcept
{
    release(block);
}

void operator delete[](void *block, std::size_t) noexcept
{
    release(block);
}
