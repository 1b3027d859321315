#include <ostream>

#include "Commands.h"
#include "LayoutSession.h"
#include "base/PathText.h"
#include "persist/LayoutSaver.h"

namespace kestrin::cli {

int runRewrite(const CliOptions& o, std::ostream& out, std::ostream& err) {
    LayoutSession session(o, err);
    if (!session.setUp(o, err)) return kExitRefused;
    const std::string& source = o.arguments.front();
    if (!session.open(source, err)) return kExitRefused;
    const std::filesystem::path target = pathFromText(o.to.empty() ? source : o.to);
    session.doc.saveTo(target);
    const SaveOutcome& saved = session.doc.lastSave();
    for (const auto& w : saved.warnings) err << "warning: " << w << '\n';
    if (!saved.saved) return kExitRefused;
    out << "wrote " << pathText(target) << " and " << pathText(saved.chipEncodeFile) << '\n';
    return kExitDone;
}

}  // namespace kestrin::cli
