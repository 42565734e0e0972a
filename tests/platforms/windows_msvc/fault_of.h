#pragma once

#include <windows.h>

using Action = void (*)();

// The number of the structured exception that the action ends in, or 0.
unsigned long FaultOf(Action action);
