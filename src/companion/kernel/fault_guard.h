#pragma once

#include <functional>

namespace sg::companion {

// Runs work of the modelling library. False when it answers false, throws, or does what the system
// stops a program for (a bad address, a bad division); what it held then is lost.
bool withoutFaults(const std::function<bool()>& work);

}  // namespace sg::companion
