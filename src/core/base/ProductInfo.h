#pragma once
#include "BuildVersion.h"

namespace kestrin {

// The control's own version, written into every layout file and compared on opening.
inline constexpr int kVersionMajor = KESTRIN_VERSION_MAJOR;
inline constexpr int kVersionMinor = KESTRIN_VERSION_MINOR;
inline constexpr int kVersionRevision = KESTRIN_VERSION_PATCH;

// Title of the control's message boxes.
inline constexpr const char* kProductTitle = "Kestrin";
// Program name reported to hosts that call an unknown bridge member.
inline constexpr const char* kProgramName = "Kestrin";

}  // namespace kestrin
