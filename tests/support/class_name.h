#pragma once

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <typeinfo>

namespace zvk::Pelkraft::TestSupport {

// The name of an object's class without namespaces and spaces, such as "ChunkMultiLoaderI<int>".
template <typename Object>
std::string ClassOf(const Object& object)
{
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(typeid(object).name(), nullptr, nullptr, nullptr), &std::free);
    std::string name = readable.get();
    for (const std::string piece : {"zvk::Pelkraft::", " "})
        for (auto at = name.find(piece); at != std::string::npos; at = name.find(piece))
            name.erase(at, piece.size());
    return name;
}

} // namespace zvk::Pelkraft::TestSupport
