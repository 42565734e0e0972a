#include "dither/mask_generator.h"

#include <cstddef>
#include <iostream>

// Writes the source of the built-in mask to standard output.
int main()
{
    constexpr std::size_t perLine = 16;
    const auto ranks = zvk::Pelkraft::MakeMask();
    std::cout << "#include \"dither/mask.h\"\n\n"
                 "namespace zvk::Pelkraft {\nnamespace {\n\n"
                 "// Two commands make this file:\n"
                 "//   cmake --build build/release --target write_mask_table\n"
                 "//   build/release/dither/write_mask_table > dither/mask_table.cpp\n"
                 "// clang-format off\n"
                 "constexpr std::uint16_t ranks[maskPlaces] = {\n";
    for (std::size_t i = 0; i != ranks.size(); ++i)
        std::cout << (i % perLine == 0 ? "    " : "") << ranks[i]
                  << (i % perLine == perLine - 1 ? ",\n" : ",");
    std::cout << "};\n// clang-format on\n\n} // namespace\n\n"
                 "const std::uint16_t* BuiltInMask()\n{\n    return ranks;\n}\n\n"
                 "} // namespace zvk::Pelkraft\n";
    return std::cout.good() ? 0 : 1;
}
