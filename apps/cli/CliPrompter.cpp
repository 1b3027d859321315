#include "CliPrompter.h"

#include <ostream>

namespace kestrin::cli {

namespace {
// Message texts join their lines with CR LF; a terminal wants plain line feeds.
std::string plainLines(const std::string& text) {
    std::string out;
    for (char c : text)
        if (c != '\r') out += c;
    return out;
}
}  // namespace

void CliPrompter::tell(Icon, const std::string& text, const std::string& title) {
    err_ << title << ": " << plainLines(text) << '\n';
}

Answer CliPrompter::ask(Icon, const std::string& text, Buttons buttons, const std::string& title) {
    err_ << title << ": " << plainLines(text) << '\n';
    const bool yesNo = buttons == Buttons::YesNo || buttons == Buttons::YesNoCancel;
    if (yes_) {
        err_ << "(answered " << (yesNo ? "Yes" : "OK") << " by --yes)\n";
        return yesNo ? Answer::Yes : Answer::Ok;
    }
    err_ << "(not confirmed; repeat with --yes to go on)\n";
    return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
}

}  // namespace kestrin::cli
