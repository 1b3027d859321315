#pragma once
#include <iosfwd>

#include "CliOptions.h"
#include "CliPrompter.h"
#include "document/LayoutDocument.h"
#include "text/CatalogRegistry.h"

namespace kestrin::cli {

// What a command works on: the language libraries, the host fields and one open layout,
// set up from the command line as a host would set up the control. Questions are answered
// as the options say (--yes), messages go to err.
struct LayoutSession {
    LayoutSession(const CliOptions& o, std::ostream& err) : prompter(err, o.yes) {}

    CatalogRegistry registry;
    CliPrompter prompter;
    LayoutDocument doc{prompter, &registry};
    LayoutReadResult read;

    // Loads --lang, --custom-lang and --project; false (with messages on err) when a library fails.
    bool setUp(const CliOptions& o, std::ostream& err);
    // Opens the layout named by UTF-8 text; false when it was refused. Warnings go to err.
    bool open(const std::string& file, std::ostream& err);
};

}  // namespace kestrin::cli
