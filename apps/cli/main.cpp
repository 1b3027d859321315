#include <iostream>
#include <string>
#include <vector>

#include "CliOptions.h"
#include "Commands.h"

#ifdef _WIN32
#include <windows.h>

#include <cwchar>

#include "text/UtfConvert.h"
#endif

namespace {

int run(const std::vector<std::string>& arguments) {
    using namespace kestrin::cli;
    std::string error;
    auto options = parseCommandLine(arguments, error);
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

}  // namespace

#ifdef _WIN32
namespace {

bool isConsole(DWORD stream) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

// The tool writes UTF-8, as on Linux. A console shows it only while its output code page is
// UTF-8; the console's own code page is put back when the tool ends.
class Utf8Console {
public:
    Utf8Console() {
        if (isConsole(STD_OUTPUT_HANDLE) || isConsole(STD_ERROR_HANDLE)) {
            previous_ = GetConsoleOutputCP();
            if (previous_ != CP_UTF8 && !SetConsoleOutputCP(CP_UTF8)) previous_ = 0;
        }
    }
    ~Utf8Console() {
        std::cout.flush();
        std::cerr.flush();
        if (previous_ != 0 && previous_ != CP_UTF8) SetConsoleOutputCP(previous_);
    }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;

private:
    UINT previous_ = 0;
};

}  // namespace

// The wide command line: in the ANSI one, a name with characters outside the code page has
// lost them already. Arguments are UTF-8 from here on, as on Linux.
int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        const std::u16string units(argv[i], argv[i] + std::wcslen(argv[i]));
        arguments.push_back(kestrin::utf16ToUtf8(units));
    }
    const Utf8Console console;
    return run(arguments);
}
#else
int main(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) arguments.emplace_back(argv[i]);
    return run(arguments);
}
#endif
