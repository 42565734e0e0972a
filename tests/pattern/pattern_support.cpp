#include "tests/pattern/pattern_support.h"

#include <new>

namespace zvk::Pelkraft::TestSupport {

std::string WhatIsThrown(const std::function<void()>& action)
{
    try {
        action();
    } catch (const char* text) {
        return std::string("narrow: ") + text;
    } catch (const wchar_t* text) {
        std::string narrow;
        for (const wchar_t* letter = text; *letter != 0; ++letter)
            narrow += static_cast<char>(*letter);
        return "wide: " + narrow;
    } catch (const std::bad_alloc&) {
        return "std::bad_alloc";
    }
    return "nothing";
}

std::string Numbered(const char* prefix, int number)
{
    std::string text(prefix);
    text += std::to_string(number);
    return text;
}

std::string Names(const char* prefix, int count)
{
    std::string names;
    for (int i = 0; i < count; ++i)
        names += Numbered(prefix, i);
    return names;
}

const char* const exampleText = R"(DotWeavePattern
VERSION 2
RANDOM_SEED 1234
#comment up to the end of the line
BEGIN_OUT_INKS
Cyan LightCyan Black
END_OUT_INKS
BEGIN_IN_COLORS
Cyan Black
END_IN_COLORS
BEGIN_IN_COLOR
Cyan
BEGIN_INKS
Cyan LightCyan
END_INKS
BEGIN_VALUES
1 1 1-64
2 1:3 1-128 0-40
3+ 1 0-255
END_VALUES
END_IN_COLOR
BEGIN_IN_COLOR
Black
BEGIN_INKS
Black
END_INKS
BEGIN_VALUES
1 1 0-255
END_VALUES
END_IN_COLOR
)";

std::string Head(const std::string& version, const std::string& inColors,
                 const std::string& outInks)
{
    return "DotWeavePattern VERSION " + version + " BEGIN_OUT_INKS " + outInks +
           " END_OUT_INKS BEGIN_IN_COLORS " + inColors + " END_IN_COLORS\n";
}

std::string InColor(const std::string& name, const std::string& inks, const std::string& values)
{
    return "\nBEGIN_IN_COLOR " + name + " BEGIN_INKS " + inks + " END_INKS BEGIN_VALUES\n" +
           values + "\nEND_VALUES END_IN_COLOR\n";
}

} // namespace zvk::Pelkraft::TestSupport
