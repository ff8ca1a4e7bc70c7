#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>

/// Checks the order of the virtual operations of an exported class, on which separately built plug-ins rely.
///
///     struct Open : Core::Plugin { using Plugin::incref; using Plugin::getSharedLibrary; };
///     EXPECT_EQ(0, virtualSlot(&Open::incref));
///     EXPECT_EQ(4, virtualSlot(&Open::getSharedLibrary));
///
/// Slots count from 0 in the class's primary table. The destructor takes two, since the table holds one entry
/// for ending an object and one for deleting it; no pointer to it can be formed, so it shows as the gap.
/// Protected operations are reached by a using-declaration in a class derived for the purpose, as above; an
/// overloaded one is picked by a cast to its type.
namespace Testing {

/// The slot that a pointer to a virtual member selects; -1 if the member is not virtual, -2 if it belongs to a
/// base that stands further back in the object, and so to another table.
///
/// In the Itanium C++ ABI, which all compilers of this project follow, such a pointer is two words: 1 plus the
/// offset in the table (an odd number, which no function's address is), and the adjustment of `this`.
template<typename Member>
int virtualSlot(Member member) {
    static_assert(std::is_member_function_pointer_v<Member>);
    struct {
        std::ptrdiff_t function;
        std::ptrdiff_t adjustment;
    } words;
    static_assert(sizeof words == sizeof member);
    std::memcpy(&words, &member, sizeof words);
    if (words.adjustment != 0)
        return -2;
    if (words.function % 2 == 0)
        return -1;
    return static_cast<int>((words.function - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
}

/// How many slots the primary table of a class has: the one that a further virtual operation would get.
/// The class needs a destructor that derived classes may call.
template<typename Class>
int virtualSlotCount() {
    struct Next : Class {
        virtual void next() {}
    };
    return virtualSlot(&Next::next);
}

} // namespace Testing
