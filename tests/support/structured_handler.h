#pragma once

namespace zvk::Pelkraft::TestSupport {

// A structured exception that has left a call, as the handler of a host gets it.
struct StructuredException
{
    // 0: there was none.
    unsigned long code = 0;
    // The one that could not be read or written, after an access violation.
    const void* touched = nullptr;
};

// Runs the action under a handler of structured exceptions, as a host would, and says what the
// handler got. Thrown failures pass it, and so does everything where no compiler has __try.
StructuredException RunUnderHandler(void (*action)(const void*), const void* context);

template <typename Action>
StructuredException RunUnderHandler(const Action& action)
{
    return RunUnderHandler([](const void* context) { (*static_cast<const Action*>(context))(); },
                           &action);
}

} // namespace zvk::Pelkraft::TestSupport
