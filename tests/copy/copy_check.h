#pragma once

#include "tests/support/guarded_buffer.h"

#include <functional>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;
using CopyCall = std::function<void(unsigned char* source, unsigned char* destination)>;

// Fails the test unless the call makes a plain copy of exactly so many bytes: it is run between
// buffers that hold no byte more, at both of their ends a forbidden page, and between larger ones
// whose other bytes must stay. The buffers are 16-aligned if bytes is a multiple of 16.
void ExpectCopies(long long bytes, const CopyCall& call);

// Fails the test unless the processor refuses a division of the call, or an address. Some systems
// tell a quotient out of range, as of the lowest number by -1, from a division by 0.
void ExpectDivideError(const std::function<void()>& call);
void ExpectQuotientOutOfRange(const std::function<void()>& call);
void ExpectRefusedAddress(const std::function<void()>& call);

// Fails the test unless the call raises the signal, and so ends this program.
void ExpectRaised(int signal, const std::function<void()>& call);

// Whether the call raises the signal, for which there is a handler that leaves it by a jump.
[[nodiscard]] bool IsLeftByHandler(int signal, const std::function<void()>& call);

} // namespace zvk::Pelkraft::TestSupport
