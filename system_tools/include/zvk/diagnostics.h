// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zvk/system_tools_export.h"

#include <exception>

#if defined(_WIN32)
struct _EXCEPTION_POINTERS;
#endif

namespace zvk {
namespace Diagnostics {

// Takes the lines of the failure log. The owner keeps the object alive while it is set.
class ZVK_SYSTEM_TOOLS_EXPORT ILogSink
{
public:
    // Takes one line, without a line end. May be called from several threads at once.
    virtual void Write(const wchar_t* line) = 0;

protected:
    // Nobody frees a sink by way of this interface.
    ~ILogSink() = default;
};

namespace Seh {

// The sink of the process. At first the built-in one, which writes each line to the standard
// error stream.
ZVK_SYSTEM_TOOLS_EXPORT ILogSink& GetDefaultLog();

// Replaces it; null restores the built-in one. Safe to call while others log.
ZVK_SYSTEM_TOOLS_EXPORT void SetDefaultLog(ILogSink* sink);

#if defined(_WIN32)
// Logs a structured exception and answers the filter with "go on searching".
ZVK_SYSTEM_TOOLS_EXPORT long LogAllCatchNothing(_EXCEPTION_POINTERS* pointers, unsigned long code,
                                                ILogSink& sink);
#endif

} // namespace Seh

// Each form writes one line: the context, then the text or number. A control character becomes a
// blank, so that a text can't break the line; narrow text is UTF-8, and any other byte is taken as
// Latin-1. Null pointers are allowed. None of them throws: a sink that does must not replace the
// failure that is being logged.
class ZVK_SYSTEM_TOOLS_EXPORT StandardExceptionLogger
{
public:
    // Logs a number, a text, or the text of an exception.
    static void Log(unsigned long code, const wchar_t* context, ILogSink& sink);
    static void Log(const std::exception& e, const wchar_t* context, ILogSink& sink);
    static void Log(const std::exception* e, const wchar_t* context, ILogSink& sink);
    static void Log(const char* text, const wchar_t* context, ILogSink& sink);
    static void Log(const wchar_t* text, const wchar_t* context, ILogSink& sink);
};

} // namespace Diagnostics
} // namespace zvk
