// Stands in for the parts of a C++ library that programs in Microsoft's binary interface link, and
// that Wine and LLVM's headers don't have: memory, the exceptions of the standard, entry points.
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <malloc.h>
#include <new>
#include <stdexcept>
#include <string>
#include <typeinfo>

// A program has this function from its C start-up, which there is none of here.
#pragma comment(linker, "/alternatename:atexit=_crt_atexit")

// The compiler wants this class's table for the type of whatever is thrown.
class type_info
{
public:
    virtual ~type_info();
    void* data;
    char name[1];
};
type_info::~type_info() = default;
type_info* MakeTableOfTypeInfo()
{
    return new type_info;
}

extern "C" {

int _fltused = 0;

// Streams are narrow here.
int __cdecl fwide(FILE*, int)
{
    return -1;
}

using Initializer = void(__cdecl*)();
#pragma section(".CRT$XCA", long, read)
#pragma section(".CRT$XCZ", long, read)
// The linker puts the module's own initializers between these two.
__declspec(allocate(".CRT$XCA")) const Initializer firstInitializer = nullptr;
__declspec(allocate(".CRT$XCZ")) const Initializer endOfInitializers = nullptr;
void __cdecl _initterm(const Initializer* first, const Initializer* end);

int __stdcall StartLibrary(void*, unsigned long reason, void*)
{
    constexpr unsigned long processAttaches = 1;
    if (reason == processAttaches)
        _initterm(&firstInitializer, &endOfInitializers);
    return 1;
}
}

void* operator new(std::size_t bytes)
{
    if (void* memory = std::malloc(bytes == 0 ? 1 : bytes))
        return memory;
    throw std::bad_alloc();
}

void* operator new[](std::size_t bytes)
{
    return operator new(bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return std::malloc(bytes == 0 ? 1 : bytes);
}

void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    return _aligned_malloc(bytes, static_cast<std::size_t>(alignment));
}

void* operator new(std::size_t bytes, std::align_val_t alignment)
{
    if (void* memory = operator new(bytes, alignment, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    _aligned_free(memory);
}

namespace std {

const nothrow_t nothrow{};

// Only a function object that is asked for its type would come here.
int type_info::__compare(const type_info& other) const noexcept
{
    return this == &other ? 0 : 1;
}

exception::~exception() noexcept = default;
const char* exception::what() const noexcept
{
    return "exception";
}

bad_alloc::bad_alloc() noexcept = default;
bad_alloc::~bad_alloc() noexcept = default;
const char* bad_alloc::what() const noexcept
{
    return "bad allocation";
}

bad_array_new_length::bad_array_new_length() noexcept = default;
bad_array_new_length::~bad_array_new_length() noexcept = default;
const char* bad_array_new_length::what() const noexcept
{
    return "bad array new length";
}

inline namespace __1 {

// The headers give constant texts alone.
__libcpp_refstring::__libcpp_refstring(const char* text) : __imp_(text) {}
__libcpp_refstring::__libcpp_refstring(const __libcpp_refstring&) noexcept = default;
__libcpp_refstring::~__libcpp_refstring() = default;

#define PELKRAFT_TO_STRING(Number, form)                                                           \
    string to_string(Number value)                                                                 \
    {                                                                                              \
        char text[24];                                                                             \
        return {text, static_cast<size_t>(sprintf(text, form, value))};                            \
    }
PELKRAFT_TO_STRING(int, "%d")
PELKRAFT_TO_STRING(unsigned, "%u")
PELKRAFT_TO_STRING(long, "%ld")
PELKRAFT_TO_STRING(unsigned long, "%lu")
PELKRAFT_TO_STRING(long long, "%lld")
PELKRAFT_TO_STRING(unsigned long long, "%llu")
#undef PELKRAFT_TO_STRING

namespace __itoa {

char* __u32toa(std::uint32_t value, char* to) noexcept
{
    return to + std::sprintf(to, "%u", value);
}

} // namespace __itoa
} // namespace __1

logic_error::logic_error(const char* text) : __imp_(text) {}
logic_error::logic_error(const logic_error&) noexcept = default;
logic_error::~logic_error() noexcept = default;
const char* logic_error::what() const noexcept
{
    return __imp_.c_str();
}

// The text is kept for good: a program that throws one of these is about to end.
runtime_error::runtime_error(const string& text) : __imp_(_strdup(text.c_str())) {}
runtime_error::runtime_error(const runtime_error&) noexcept = default;
runtime_error::~runtime_error() noexcept = default;
const char* runtime_error::what() const noexcept
{
    return __imp_.c_str();
}

length_error::~length_error() noexcept = default;
out_of_range::~out_of_range() noexcept = default;

} // namespace std
