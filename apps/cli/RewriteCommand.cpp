#include <ostream>

#include "Commands.h"
#include "LayoutSession.h"
#include "persist/LayoutSaver.h"

namespace kestrin::cli {

int runRewrite(const CliOptions& o, std::ostream& out, std::ostream& err) {
    LayoutSession session;
    if (!session.setUp(o, err)) return kExitRefused;
    CliPrompter prompter(err, o.yes);
    const std::string& source = o.arguments.front();
    if (!session.open(source, prompter, err)) return kExitRefused;
    const std::string target = o.to.empty() ? source : o.to;
    const SaveOutcome saved = saveLayout(target, &session.card, session.records, session.fields, prompter,
                                         session.translator);
    for (const auto& w : saved.warnings) err << "warning: " << w << '\n';
    if (!saved.saved) return kExitRefused;
    out << "wrote " << target << " and " << saved.chipEncodeFile.string() << '\n';
    return kExitDone;
}

}  // namespace kestrin::cli
