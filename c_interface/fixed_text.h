#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace zvk::Pelkraft {

// A text that allocates nothing, since a failure to allocate is told in it too. The end of one that
// is too long is cut off. The bytes after it are 0.
template <std::size_t capacity>
class FixedText
{
public:
    template <typename... Part>
    explicit FixedText(const Part&... part)
    {
        (Add(part), ...);
    }

    const std::array<char, capacity>& GetChars() const { return chars; }

private:
    void Add(std::string_view part)
    {
        for (const char character : part)
            if (length + 1 < capacity)
                chars[length++] = character;
    }

    void Add(std::uint64_t number)
    {
        std::array<char, std::numeric_limits<std::uint64_t>::digits10 + 1> digits;
        std::size_t begin = digits.size();
        do {
            digits[--begin] = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number != 0);
        Add(std::string_view(digits.data() + begin, digits.size() - begin));
    }

    void Add(std::int64_t number)
    {
        if (number < 0)
            Add("-");
        // Negated as unsigned: the smallest number has no opposite.
        const auto bits = static_cast<std::uint64_t>(number);
        Add(number < 0 ? 0 - bits : bits);
    }

    void Add(std::int32_t number) { Add(std::int64_t{number}); }
    void Add(std::uint32_t number) { Add(std::uint64_t{number}); }
    void Add(const char* part) { Add(std::string_view(part)); }

    std::array<char, capacity> chars = {};
    std::size_t length = 0;
};

} // namespace zvk::Pelkraft
