#pragma once

namespace zvk::Pelkraft::TestSupport {

// While it lives, every allocation of this thread through operator new fails.
class DeniedMemory
{
public:
    DeniedMemory();
    ~DeniedMemory();
    DeniedMemory(const DeniedMemory&) = delete;
    DeniedMemory& operator=(const DeniedMemory&) = delete;
};

} // namespace zvk::Pelkraft::TestSupport
