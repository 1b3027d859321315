#pragma once
#include <iosfwd>

#include "CliOptions.h"

namespace kestrin::cli {

// Exit codes: 0 done, 1 refused (bad or newer file, read-only target ...), 2 wrong usage.
inline constexpr int kExitDone = 0;
inline constexpr int kExitRefused = 1;
inline constexpr int kExitUsage = 2;

int runInfo(const CliOptions& o, std::ostream& out, std::ostream& err);
int runRewrite(const CliOptions& o, std::ostream& out, std::ostream& err);
int runCheck(const CliOptions& o, std::ostream& out, std::ostream& err);
int runMap(const CliOptions& o, std::ostream& out, std::ostream& err);
int runFields(const CliOptions& o, std::ostream& out, std::ostream& err);

}  // namespace kestrin::cli
