#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace zvk::Diagnostics {

// A line under construction. It never throws: a short line needs no memory, so that a failed
// allocation can be logged too, and a long one that finds none is cut.
template <typename Character>
class LineBuffer
{
public:
    LineBuffer() = default;
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;

    void Append(Character character)
    {
        // One place stays free for the end.
        if (length + 1 == capacity && !Grow())
            return;
        characters[length++] = character;
    }

    // Adds the last character, for which there is always room.
    void End(Character character) { characters[length++] = character; }

    const Character* Data() const { return characters; }

    std::size_t Length() const { return length; }

private:
    bool Grow()
    {
        // Once cut, it stays cut: a hole in the middle would read like a whole line.
        if (cut)
            return false;
        std::unique_ptr<Character[]> wider(new (std::nothrow) Character[2 * capacity]);
        cut = wider == nullptr;
        if (cut)
            return false;
        std::memcpy(wider.get(), characters, length * sizeof(Character));
        heap = std::move(wider);
        characters = heap.get();
        capacity *= 2;
        return true;
    }

    std::array<Character, 512> stack;
    std::unique_ptr<Character[]> heap;
    Character* characters = stack.data();
    std::size_t capacity = stack.size();
    std::size_t length = 0;
    bool cut = false;
};

} // namespace zvk::Diagnostics
