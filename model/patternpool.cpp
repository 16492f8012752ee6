// Storage for segments. Reading a large document creates millions of them,
// and with the general allocator each costs 16 bytes of header and, on fresh
// memory, a page fault per 64 of them; on virtual machines a fault costs
// microseconds. Here segments are carved from blocks whose pages the kernel
// maps in one go, and freed ones are kept on a list for the next. Blocks are
// not given back: the next document reuses them.
//
// Under AddressSanitizer the general allocator is used instead, so that a
// segment used after its deletion is still caught.
#include "pattern.h"

#include <atomic>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#if defined(__SANITIZE_ADDRESS__)
#define VOK_PATTERN_POOL 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VOK_PATTERN_POOL 0
#endif
#endif
#ifndef VOK_PATTERN_POOL
#define VOK_PATTERN_POOL 1
#endif

namespace kesu::toolvok {

#if VOK_PATTERN_POOL

namespace {

union Slot {
    Slot* next;
    alignas(Pattern) unsigned char bytes[sizeof(Pattern)];
};

class PatternPool
{
public:
    void* take()
    {
        Guard guard(lock_);
        if (Slot* slot = free_) {
            free_ = slot->next;
            return slot;
        }
        if (fresh_ == end_ && !grow())
            return nullptr;
        return fresh_++;
    }

    void give(void* p)
    {
        Guard guard(lock_);
        auto* slot = static_cast<Slot*>(p);
        slot->next = free_;
        free_ = slot;
    }

private:
    // The model lives on one thread; the lock only makes a mistake there
    // harmless, and costs next to nothing when nobody else holds it.
    class Guard
    {
    public:
        explicit Guard(std::atomic_flag& flag) : flag_(flag)
        {
            while (flag_.test_and_set(std::memory_order_acquire)) {}
        }
        ~Guard() { flag_.clear(std::memory_order_release); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        std::atomic_flag& flag_;
    };

    bool grow()
    {
        // Blocks double from 64 KB up to 4 MB: a small document maps little.
        const std::size_t bytes = blockBytes_;
        if (blockBytes_ < MaxBlockBytes)
            blockBytes_ *= 2;
        void* block = nullptr;
#if defined(__linux__)
        block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
        if (block == MAP_FAILED)
            return false;
#else
        block = ::operator new(bytes, std::nothrow);
        if (!block)
            return false;
#endif
        fresh_ = static_cast<Slot*>(block);
        end_ = fresh_ + bytes / sizeof(Slot);
        return true;
    }

    static constexpr std::size_t MaxBlockBytes = std::size_t(4) << 20;
    std::atomic_flag lock_ = ATOMIC_FLAG_INIT;
    Slot* free_ = nullptr;
    Slot* fresh_ = nullptr;
    Slot* end_ = nullptr;
    std::size_t blockBytes_ = std::size_t(64) << 10;
};

// Never destroyed: segments may still be deleted while statics are torn down.
PatternPool& pool()
{
    static PatternPool* const instance = new PatternPool;
    return *instance;
}

} // namespace

void* Pattern::operator new(std::size_t size)
{
    // Anything larger than a segment (a derived class) goes elsewhere.
    if (size != sizeof(Pattern))
        return ::operator new(size);
    if (void* p = pool().take())
        return p;
    throw std::bad_alloc();
}

void Pattern::operator delete(void* p, std::size_t size) noexcept
{
    if (!p)
        return;
    if (size != sizeof(Pattern))
        ::operator delete(p);
    else
        pool().give(p);
}

#else

void* Pattern::operator new(std::size_t size)
{
    return ::operator new(size);
}

void Pattern::operator delete(void* p, std::size_t) noexcept
{
    ::operator delete(p);
}

#endif

} // namespace kesu::toolvok
