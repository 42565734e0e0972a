// The streams that a test needs, over those of C: LLVM's own need more of its library than can be
// had for Microsoft's binary interface.
#pragma once

#include <cstdio>
#include <iosfwd>
#include <string>

namespace std {
inline namespace __1 {

template <>
class basic_ostream<char>
{
public:
    explicit basic_ostream(FILE* stream = nullptr) : file(stream) {}

    basic_ostream& operator<<(const string& text)
    {
        if (file != nullptr)
            fwrite(text.data(), 1, text.size(), file);
        else
            held += text;
        return *this;
    }

    basic_ostream& operator<<(const char* text) { return *this << string(text); }
    basic_ostream& operator<<(char character) { return *this << string(1, character); }

    template <typename Number>
    basic_ostream& operator<<(Number number)
    {
        return *this << to_string(number);
    }

protected:
    string held;

private:
    FILE* file;
};

inline ostream cout(stdout);
inline ostream cerr(stderr);

template <>
class basic_ostringstream<char> : public ostream
{
public:
    const string& str() const { return held; }
};

// Words between blanks.
template <>
class basic_istringstream<char>
{
public:
    explicit basic_istringstream(const string& newText) : text(newText) {}

    bool operator>>(string& word)
    {
        const size_t start = text.find_first_not_of(' ', place);
        if (start == string::npos)
            return false;
        place = text.find(' ', start);
        word = text.substr(start, place - start);
        place = start + word.size();
        return true;
    }

private:
    string text;
    size_t place = 0;
};

template <>
class basic_ifstream<char>
{
public:
    explicit basic_ifstream(const string& path) : file(fopen(path.c_str(), "r")) {}
    ~basic_ifstream()
    {
        if (file != nullptr)
            fclose(file);
    }
    basic_ifstream(const basic_ifstream&) = delete;
    basic_ifstream& operator=(const basic_ifstream&) = delete;

    bool operator!() const { return file == nullptr; }

    bool ReadLine(string& line)
    {
        line.clear();
        int character = fgetc(file);
        if (character == EOF)
            return false;
        for (; character != EOF && character != '\n'; character = fgetc(file))
            line += static_cast<char>(character);
        return true;
    }

private:
    FILE* file;
};

inline bool getline(ifstream& file, string& line)
{
    return file.ReadLine(line);
}

} // namespace __1
} // namespace std
