#pragma once
#include <iosfwd>
#include <memory>

#include "CliOptions.h"
#include "CliPrompter.h"
#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutReader.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin::cli {

// What a command works on: the language libraries, the host fields and one open layout,
// set up from the command line as a host would set up the control.
struct LayoutSession {
    CatalogRegistry registry;
    Translator translator{&registry};
    HostFieldList fields;
    CIClass card;
    RecordArray records;
    LayoutReadResult read;

    // Loads --lang, --custom-lang and --project; false (with messages on err) when a library fails.
    bool setUp(const CliOptions& o, std::ostream& err);
    // Opens the layout; false when it was refused. Warnings go to err.
    bool open(const std::string& file, Prompter& prompter, std::ostream& err);
};

}  // namespace kestrin::cli
