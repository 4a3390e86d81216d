#include "ZAXAllocationMeter.h"

#include <algorithm>
#include <cstdlib>

#include <malloc.h>

namespace {

bool isMeasuring = false;
std::ptrdiff_t inUse = 0;
std::ptrdiff_t peak = 0;

void Count(std::ptrdiff_t bytes)
{
    if (!isMeasuring)
        return;
    inUse += bytes;
    peak = std::max(peak, inUse);
}

} // namespace

#ifndef __has_feature
#define __has_feature(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || __has_feature(address_sanitizer)

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                         void (*)(const volatile void*));
extern "C" size_t __sanitizer_get_allocated_size(const volatile void*);

namespace {

[[maybe_unused]] const int hooks = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, size_t size) { Count(static_cast<std::ptrdiff_t>(size)); },
    [](const volatile void* memory) {
        if (memory && isMeasuring)
            Count(-static_cast<std::ptrdiff_t>(__sanitizer_get_allocated_size(memory)));
    });

} // namespace

#else

extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* memory, size_t size);
extern "C" void __libc_free(void* memory);

namespace {

void* Counted(void* memory)
{
    Count(static_cast<std::ptrdiff_t>(malloc_usable_size(memory)));
    return memory;
}

} // namespace

// In the place of the C library's, for all libraries of the program: Qt's containers do not ask operator new.
extern "C" void* malloc(size_t size)
{
    return Counted(__libc_malloc(size));
}

extern "C" void* calloc(size_t count, size_t size)
{
    return Counted(__libc_calloc(count, size));
}

extern "C" void* realloc(void* memory, size_t size)
{
    const auto before = static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    void* const moved = Counted(__libc_realloc(memory, size));
    Count(-before);
    return moved;
}

extern "C" void free(void* memory)
{
    Count(-static_cast<std::ptrdiff_t>(malloc_usable_size(memory)));
    __libc_free(memory);
}

#endif

ZAXAllocationMeter::ZAXAllocationMeter()
{
    inUse = peak = 0;
    isMeasuring = true;
}

ZAXAllocationMeter::~ZAXAllocationMeter()
{
    isMeasuring = false;
}

std::ptrdiff_t ZAXAllocationMeter::Peak()
{
    return peak;
}
