#pragma once
#include <string>

namespace kestrin {

class Prompter;

// The generic bridge through which a newer host reaches members by name. This version serves
// no name: the probe "1" is accepted silently, any other name tells the operator (in a box
// titled with the host's name) that the control is older than the host. True for the probe.
bool acceptsBridgeName(const std::string& name, const std::string& appName, Prompter& prompter);

}  // namespace kestrin
