#pragma once
#include <optional>
#include <string>
#include <vector>

namespace kestrin::cli {

// The command line: a command word, its positional arguments and the options, all UTF-8
// (pathFromText turns a file name into the path it names).
struct CliOptions {
    std::string command;
    std::vector<std::string> arguments;
    bool json = false;
    bool yes = false;
    std::string to;       // rewrite --to
    std::string project;  // --project
    std::string lang;     // --lang: the standard language library
    std::string customLang;  // --custom-lang: the customer's language library
    std::string pdf;         // map --pdf
    std::string png;         // map --png
    int dpi = kDefaultDpi;   // map --png --dpi: the pictures' resolution
    static constexpr int kDefaultDpi = 96, kMinDpi = 24, kMaxDpi = 600;
};

// Parses the arguments after the program's name; nothing (with a message in error) on wrong usage.
std::optional<CliOptions> parseCommandLine(const std::vector<std::string>& arguments, std::string& error);
const char* usageText();

}  // namespace kestrin::cli
