#pragma once

#include <functional>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// While it lives, a fault of the processor prints what was at work before it ends the program.
class LastWords
{
public:
    explicit LastWords(std::function<std::string()> newTell);
    ~LastWords();
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;

private:
    std::function<std::string()> tell;
};

} // namespace zvk::Pelkraft::TestSupport
