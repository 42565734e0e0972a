#pragma once

#include <exception>

// JavaScript calls the functions that bear this mark. One that may refuse its work answers with the
// text of the refusal, or with null.
#define PELKRAFT_FOR_JAVASCRIPT(name) extern "C" __attribute__((export_name(#name)))

namespace zvk::Pelkraft::Web {

// Keeps a text for JavaScript, which reads up to the zero byte, until the next failure.
const char* KeepText(const char* text);
// The library's wide texts are of ASCII letters.
const char* KeepText(const wchar_t* text);

// Runs the body, and gives the text of what it throws, or null.
template <typename Body>
const char* TextOfFailure(Body body)
{
    try {
        body();
        return nullptr;
    } catch (const char* text) {
        return KeepText(text);
    } catch (const wchar_t* text) {
        return KeepText(text);
    } catch (const std::exception& failure) {
        return KeepText(failure.what());
    }
}

} // namespace zvk::Pelkraft::Web
