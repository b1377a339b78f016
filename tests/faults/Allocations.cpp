#include "tests/faults/Allocations.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include <link.h>

namespace {

std::atomic<long> allocations{0};
std::atomic<long> liveBlocks{0};
thread_local long allowed = -1; // below zero: all
thread_local bool hasFailed = false;

/// Where libraries with that in their path lie in memory.
struct Ranges {
    const char* name;
    std::uintptr_t begins[64], ends[64];
    std::size_t count = 0;

    explicit Ranges(const char* part) : name(part) { dl_iterate_phdr(&Ranges::Add, this); }

    static int Add(dl_phdr_info* info, std::size_t, void* self)
    {
        auto& own = *static_cast<Ranges*>(self);
        if (!std::strstr(info->dlpi_name, own.name)) return 0;
        for (int i = 0; i < info->dlpi_phnum && own.count < std::size(own.begins); ++i) {
            if (info->dlpi_phdr[i].p_type != PT_LOAD) continue;
            own.begins[own.count] = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr;
            own.ends[own.count++] = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr + info->dlpi_phdr[i].p_memsz;
        }
        return 0;
    }

    bool Hold(const void* place) const
    {
        const auto at = reinterpret_cast<std::uintptr_t>(place);
        for (std::size_t i = 0; i < count; ++i)
            if (at >= begins[i] && at < ends[i]) return true;
        return false;
    }
};

const void* places[1024];
std::size_t nPlaces = 0;

void Note(const void* place)
{
    const auto end = places + nPlaces;
    if (std::find(places, end, place) == end && nPlaces < std::size(places)) places[nPlaces++] = place;
}

bool Fails(const void* caller)
{
    static const Ranges qt("/libQt5");
    if (allowed < 0 || qt.Hold(caller) || allowed-- > 0) return false;
    hasFailed = true;
    Note(caller);
    return true;
}

void* Allocate(std::size_t size, std::size_t alignment, const void* caller)
{
    void* const block = Fails(caller) ? nullptr : std::aligned_alloc(alignment, (size / alignment + 1) * alignment);
    if (block) {
        ++allocations;
        ++liveBlocks;
    }
    return block;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment, const void* caller)
{
    void* const block = Allocate(size, alignment, caller);
    return block ? block : throw std::bad_alloc();
}

void Free(void* block)
{
    if (block) --liveBlocks;
    std::free(block);
}

constexpr std::size_t kUsual = alignof(std::max_align_t);
using Size = std::size_t;
using Align = std::align_val_t;
using NoThrow = std::nothrow_t;

} // namespace

#define CALLER __builtin_return_address(0)
// clang-format off
void* operator new(Size size) { return AllocateOrThrow(size, kUsual, CALLER); }
void* operator new[](Size size) { return AllocateOrThrow(size, kUsual, CALLER); }
void* operator new(Size size, Align at) { return AllocateOrThrow(size, Size(at), CALLER); }
void* operator new[](Size size, Align at) { return AllocateOrThrow(size, Size(at), CALLER); }
void* operator new(Size size, const NoThrow&) noexcept { return Allocate(size, kUsual, CALLER); }
void* operator new[](Size size, const NoThrow&) noexcept { return Allocate(size, kUsual, CALLER); }
void* operator new(Size size, Align at, const NoThrow&) noexcept { return Allocate(size, Size(at), CALLER); }
void* operator new[](Size size, Align at, const NoThrow&) noexcept { return Allocate(size, Size(at), CALLER); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, Size) noexcept { Free(block); }
void operator delete[](void* block, Size) noexcept { Free(block); }
void operator delete(void* block, Align) noexcept { Free(block); }
void operator delete[](void* block, Align) noexcept { Free(block); }
void operator delete(void* block, Size, Align) noexcept { Free(block); }
void operator delete[](void* block, Size, Align) noexcept { Free(block); }
void operator delete(void* block, const NoThrow&) noexcept { Free(block); }
void operator delete[](void* block, const NoThrow&) noexcept { Free(block); }
void operator delete(void* block, Align, const NoThrow&) noexcept { Free(block); }
void operator delete[](void* block, Align, const NoThrow&) noexcept { Free(block); }

long Allocations::Count() { return allocations; }
long Allocations::Live() { return liveBlocks; }
void Allocations::FailAfter(long nAllowed) { hasFailed = false, allowed = nAllowed; }
bool Allocations::StopFailing() { return allowed = -1, hasFailed; }
// clang-format on

long Allocations::PlacesFailedIn(const char* strLibrary)
{
    const Ranges library(strLibrary);
    return std::count_if(places, places + nPlaces, [&](const void* place) { return library.Hold(place); });
}
