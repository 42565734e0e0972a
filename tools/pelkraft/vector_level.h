#pragma once

namespace zvk::Pelkraft::Client {

// The processor's level from which on the library has vector instructions for a call.
constexpr int vectorLevel = 3;

} // namespace zvk::Pelkraft::Client
