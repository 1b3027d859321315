#include <iostream>

#include "CliOptions.h"
#include "Commands.h"

int main(int argc, char** argv) {
    using namespace kestrin::cli;
    std::string error;
    auto options = parseCommandLine(argc, argv, error);
    if (!options) {
        std::cerr << "kestrin: " << error << '\n' << usageText();
        return kExitUsage;
    }
    try {
        if (options->command == "info") return runInfo(*options, std::cout, std::cerr);
        if (options->command == "map") {
#ifdef KESTRIN_CLI_MAP
            return runMap(*options, std::cout, std::cerr);
#else
            std::cerr << "kestrin: this build has no memory-map rendering (built without Qt)\n";
            return kExitRefused;
#endif
        }
        if (options->command == "check") return runCheck(*options, std::cout, std::cerr);
        if (options->command == "rewrite") return runRewrite(*options, std::cout, std::cerr);
        return runFields(*options, std::cout, std::cerr);
    } catch (const std::exception& e) {
        std::cerr << "kestrin: " << e.what() << '\n';
        return kExitRefused;
    }
}
