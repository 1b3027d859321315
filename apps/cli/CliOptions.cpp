#include "CliOptions.h"

#include <string_view>

namespace kestrin::cli {

const char* usageText() {
    return "usage: kestrin info LAYOUT.IIF [--json] [--project PROJECT] [--yes] [--lang FILE] [--custom-lang FILE]\n"
           "       kestrin check LAYOUT.IIF [--json] [--project PROJECT] [--yes] [--lang FILE]\n"
           "       kestrin map LAYOUT.IIF [--pdf OUT.pdf] [--png DIR [--dpi N]] [--project PROJECT] [--lang FILE]\n"
           "       kestrin rewrite LAYOUT.IIF [--to OUT.IIF] [--project PROJECT] [--yes] [--lang FILE]\n"
           "       kestrin fields PROJECT [--json]\n";
}

namespace {

// A resolution for the pictures: digits only, within what a sheet's picture can take in memory.
bool parseDpi(const std::string& text, int& dpi) {
    if (text.empty() || text.size() > 4 || text.find_first_not_of("0123456789") != std::string::npos) return false;
    dpi = std::stoi(text);
    return dpi >= CliOptions::kMinDpi && dpi <= CliOptions::kMaxDpi;
}

}  // namespace

std::optional<CliOptions> parseCommandLine(const std::vector<std::string>& arguments, std::string& error) {
    CliOptions o;
    bool dpiGiven = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view a = arguments[i];
        auto value = [&](std::string& target) {
            if (i + 1 >= arguments.size()) {
                error = std::string(a) + " needs a value";
                return false;
            }
            target = arguments[++i];
            return true;
        };
        if (a == "--json") {
            o.json = true;
        } else if (a == "--yes") {
            o.yes = true;
        } else if (a == "--to") {
            if (!value(o.to)) return std::nullopt;
        } else if (a == "--project") {
            if (!value(o.project)) return std::nullopt;
        } else if (a == "--lang") {
            if (!value(o.lang)) return std::nullopt;
        } else if (a == "--pdf") {
            if (!value(o.pdf)) return std::nullopt;
        } else if (a == "--png") {
            if (!value(o.png)) return std::nullopt;
        } else if (a == "--dpi") {
            std::string dpi;
            if (!value(dpi)) return std::nullopt;
            if (!parseDpi(dpi, o.dpi)) {
                error = "--dpi takes a whole number from " + std::to_string(CliOptions::kMinDpi) + " to " +
                        std::to_string(CliOptions::kMaxDpi) + ", not " + dpi;
                return std::nullopt;
            }
            dpiGiven = true;
        } else if (a == "--custom-lang") {
            if (!value(o.customLang)) return std::nullopt;
        } else if (a.size() > 1 && a.front() == '-') {
            error = "unknown option " + std::string(a);
            return std::nullopt;
        } else if (o.command.empty()) {
            o.command = std::string(a);
        } else {
            o.arguments.emplace_back(a);
        }
    }
    const bool known = o.command == "info" || o.command == "check" || o.command == "map" || o.command == "rewrite" || o.command == "fields";
    if (!known) {
        error = o.command.empty() ? "no command given" : "unknown command " + o.command;
        return std::nullopt;
    }
    if (o.arguments.size() != 1) {
        error = o.command + " takes exactly one file";
        return std::nullopt;
    }
    if (o.command == "map" && o.pdf.empty() && o.png.empty()) {
        error = "map needs --pdf or --png";
        return std::nullopt;
    }
    if ((!o.pdf.empty() || !o.png.empty()) && o.command != "map") {
        error = "--pdf and --png go with map";
        return std::nullopt;
    }
    if (dpiGiven && o.png.empty()) {
        error = "--dpi goes with map --png";
        return std::nullopt;
    }
    if (!o.to.empty() && o.command != "rewrite") {
        error = "--to goes with rewrite";
        return std::nullopt;
    }
    return o;
}

}  // namespace kestrin::cli
