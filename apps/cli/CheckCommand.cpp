#include <ostream>

#include "Commands.h"
#include "JsonText.h"
#include "LayoutSession.h"
#include "rules/LayoutAudit.h"

namespace kestrin::cli {

namespace {
// Message texts join their lines with CR LF; one report line wants them on one line.
std::string oneLine(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '\r') continue;
        out += c == '\n' ? ' ' : c;
    }
    return out;
}
}  // namespace

int runCheck(const CliOptions& o, std::ostream& out, std::ostream& err) {
    LayoutSession session(o, err);
    if (!session.setUp(o, err)) return kExitRefused;
    if (!session.open(o.arguments.front(), err)) return kExitRefused;
    const auto violations = auditLayout(*session.doc.card(), session.doc.records(), session.doc.translator());
    if (o.json) {
        out << "{\"violations\": [";
        for (size_t i = 0; i < violations.size(); ++i) {
            const AuditViolation& v = violations[i];
            out << (i ? ",\n  " : "\n  ") << "{\"name\": " << jsonString(v.name) << ", \"kind\": " << jsonString(v.kind)
                << ", \"page\": " << v.page << ", \"block\": " << v.block << ", \"beginByte\": " << v.beginByte
                << ", \"textId\": " << v.textId << ", \"text\": " << jsonString(v.text) << "}";
        }
        out << (violations.empty() ? "" : "\n") << "]}\n";
    } else {
        for (const AuditViolation& v : violations)
            out << v.name << " (" << v.kind << ", page " << v.page << ", block " << v.block << ", byte " << v.beginByte
                << "): [" << v.textId << "] " << oneLine(v.text) << '\n';
        out << violations.size() << (violations.size() == 1 ? " violation" : " violations") << '\n';
    }
    return violations.empty() ? kExitDone : kExitRefused;
}

}  // namespace kestrin::cli
