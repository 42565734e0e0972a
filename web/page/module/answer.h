#pragma once

#include <string>

// JavaScript calls the functions that bear this mark. They answer 0, and what they have made is
// the answer; or 1, and the answer is a sentence that says why there is nothing.
#define PELKRAFT_FOR_PAGE(name) extern "C" __attribute__((export_name(#name))) int

namespace zvk::Pelkraft::Page {

// Keeps what JavaScript reads after the call, until the next one.
void SetAnswer(std::string bytes);
// Each module says of its own failures what they mean.
void SetAnswerToCurrentException();

// Runs the body, which gives the answer.
template <typename Body>
int Answer(Body body)
{
    try {
        SetAnswer(body());
        return 0;
    } catch (...) {
        SetAnswerToCurrentException();
        return 1;
    }
}

} // namespace zvk::Pelkraft::Page
