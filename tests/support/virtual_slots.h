#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft::TestSupport {

// A pointer to a member operation is stored so in the common C++ binary interface.
struct MemberPointer
{
    std::uintptr_t place;
    std::ptrdiff_t adjustment;
};

#if defined(__aarch64__) || defined(__arm__) || defined(__wasm__)
constexpr bool marksInAdjustment = true;
#else
constexpr bool marksInAdjustment = false;
#endif

constexpr int notVirtual = -1;

// The place of an operation in its class's virtual table, where a destructor takes two.
template <typename Operation>
int SlotOf(Operation operation)
{
    static_assert(sizeof(operation) == sizeof(MemberPointer));
    MemberPointer pointer;
    std::memcpy(&pointer, &operation, sizeof pointer);
    if constexpr (marksInAdjustment)
        return (pointer.adjustment & 1) == 0 ? notVirtual
                                             : static_cast<int>(pointer.place / sizeof(void*));
    else
        return (pointer.place & 1) == 0 ? notVirtual
                                        : static_cast<int>((pointer.place - 1) / sizeof(void*));
}

} // namespace zvk::Pelkraft::TestSupport
