# Fails unless the library exports these names and no other.
set(expected
    "typeinfo for zvk::Diagnostics::ILogSink"
    "typeinfo name for zvk::Diagnostics::ILogSink"
    "zvk::Diagnostics::Seh::GetDefaultLog()"
    "zvk::Diagnostics::Seh::SetDefaultLog(zvk::Diagnostics::ILogSink*)"
    "zvk::Diagnostics::StandardExceptionLogger::Log(char const*, wchar_t const*, zvk::Diagnostics::ILogSink&)"
    "zvk::Diagnostics::StandardExceptionLogger::Log(std::exception const&, wchar_t const*, zvk::Diagnostics::ILogSink&)"
    "zvk::Diagnostics::StandardExceptionLogger::Log(std::exception const*, wchar_t const*, zvk::Diagnostics::ILogSink&)"
    "zvk::Diagnostics::StandardExceptionLogger::Log(unsigned long, wchar_t const*, zvk::Diagnostics::ILogSink&)"
    "zvk::Diagnostics::StandardExceptionLogger::Log(wchar_t const*, wchar_t const*, zvk::Diagnostics::ILogSink&)"
    "zvk::SystemTools::GetSseVersion()"
    "zvk::SystemTools::LimitSseVersion(int)"
    "zvk::split")

execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY}
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
# The names of its arguments, and a tag, are the standard library's.
string(REGEX REPLACE "zvk::split[[(][^\n]*" "zvk::split" listing "${listing}")
# The interface's table of operations is there or not, as the compiler needs it.
string(REGEX REPLACE "[^\n]* vtable for zvk::Diagnostics::ILogSink\n" "" listing "${listing}")
string(REGEX REPLACE "\n$" "" listing "${listing}")
string(REPLACE "\n" ";" lines "${listing}")
set(exported "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]* [A-Za-z] " "" name "${line}")
    list(APPEND exported "${name}")
endforeach()
list(SORT exported)
list(SORT expected)
if(NOT exported STREQUAL expected)
    list(JOIN exported "\n  " found)
    list(JOIN expected "\n  " wanted)
    message(FATAL_ERROR "Exported:\n  ${found}\nExpected:\n  ${wanted}")
endif()
