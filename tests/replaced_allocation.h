// The replacement allocation functions of a whole test program (the
// library's allocations included), over the two functions that the one file
// including this header defines before it:
//   void* Allocate(std::size_t size);  // null when the allocation fails
//   void Release(void* p);             // out of line, so that the compiler
//                                      // does not pair a replaced new with free
// Include it in one file of a program only.
#pragma once

#include <cstddef>
#include <new>

void* operator new(std::size_t size) {
    void* p = Allocate(size);
    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}
void* operator new[](std::size_t size) {
    void* p = Allocate(size);
    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void operator delete(void* p) noexcept {
    Release(p);
}
void operator delete[](void* p) noexcept {
    Release(p);
}
void operator delete(void* p, std::size_t) noexcept {
    Release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    Release(p);
}
