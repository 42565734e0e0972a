#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A value that finds no memory for its content follows a null pointer when it is destroyed.
template <typename Value>
struct AllocatorOrEnd : std::allocator<Value>
{
    template <typename Other>
    struct rebind
    {
        using other = AllocatorOrEnd<Other>;
    };

    AllocatorOrEnd() = default;
    template <typename Other>
    AllocatorOrEnd(const AllocatorOrEnd<Other>&) noexcept
    {}

    // Being noexcept it ends the program where there is none.
    Value* allocate(std::size_t count) noexcept { return std::allocator<Value>::allocate(count); }
};

// In the order of insertion.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, double, AllocatorOrEnd>;

// Names may hold bytes that are no UTF-8.
inline std::string JsonText(const Json& json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace zvk::Pelkraft::Client
