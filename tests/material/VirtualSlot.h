#ifndef VIRTUALSLOT_H
#define VIRTUALSLOT_H

#include <array>
#include <cstddef>
#include <cstring>

/// The place of a virtual operation in its class's virtual table, as the interface counts them: the destructor is
/// slot 0 and everything else counts from 1.
///
/// In the Itanium C++ ABI a pointer to a virtual member function holds the function's offset in the virtual table (plus
/// 1 on most processors), and a virtual destructor takes two entries there. A function that is not virtual gives some
/// number far beyond any table.
template <typename MemberFunction>
std::ptrdiff_t VirtualSlot(MemberFunction function)
{
    std::array<std::ptrdiff_t, 2> words{};
    static_assert(sizeof(function) == sizeof(words));
    std::memcpy(words.data(), &function, sizeof(words));
    const std::ptrdiff_t entry = words[0] / static_cast<std::ptrdiff_t>(sizeof(void*));
    return entry - 1;
}

#endif
