// All memory is allocated here, so that the failure hook is called even for an allocation made by
// `new`. Nothing here throws: if `new` fails, the process ends after the call to the hook.

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <new>
#include <utility>

#include "platform/shared.h"

namespace korv::platform {
namespace {

// Process-wide, like the allocator itself.
AllocationFailureHook failureHook = nullptr;
std::FILE* failureStream = nullptr;  // null: standard error

// Calls the hook if `memory` is null. A failure inside the hook is not reported.
void* Reported(void* memory, std::size_t size) {
    if (memory == nullptr && failureHook != nullptr) {
        const AllocationFailureHook hook = std::exchange(failureHook, nullptr);
        hook(size);
        failureHook = hook;
    }
    return memory;
}

}  // namespace

Fault allocationFault = nullptr;

AllocationFailureHook SetAllocationFailureHook(AllocationFailureHook hook) {
    return std::exchange(failureHook, hook);
}

void* TryReallocate(void* memory, std::size_t size) {
    return FailsOnPurpose(allocationFault) ? nullptr : std::realloc(memory, size);
}

void* Reallocate(void* memory, std::size_t size) {
    return Reported(TryReallocate(memory, size == 0 ? 1 : size), size);
}

void* Allocate(std::size_t size) {
    return Reallocate(nullptr, size);
}

// Memory fresh from the system is already zero, so `calloc` may be quicker than clearing it.
void* AllocateZeroed(std::size_t size) {
    return Reported(FailsOnPurpose(allocationFault) ? nullptr : std::calloc(size, 1), size);
}

void Free(void* memory) {
    std::free(memory);
}

bool Buffer::Grow(std::size_t count) {
    constexpr std::size_t firstSize = 4096;
    const std::size_t grownSize = std::bit_ceil(std::max(used + count, firstSize));
    void* const grown = Reallocate(data, grownSize);
    if (grown != nullptr) {
        data = static_cast<char*>(grown);
        capacity = grownSize;
    }
    return grown != nullptr;
}

std::FILE* SetMemoryFailureStream(std::FILE* stream) {
    return std::exchange(failureStream, stream);
}

void PrintMemoryFailure(const char* line) {
    std::fprintf(failureStream == nullptr ? stderr : failureStream, "%s\n", line);
}

}  // namespace korv::platform

// Replaces every form of `new` and `delete` in use: any other might be a sanitizer's, which must
// not free memory allocated here.
void* operator new(std::size_t size) {
    void* const memory = korv::platform::Allocate(size);
    if (memory == nullptr) {
        std::exit(-1);
    }
    return memory;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return korv::platform::Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return korv::platform::Allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
