#include <ostream>

#include "Commands.h"
#include "JsonText.h"
#include "LayoutSession.h"

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

// "Name (Field, page 0, block 19, byte 0): ", leaving out what an unreadable entry lacks.
std::string itemOf(const AuditViolation& v) {
    std::string where = v.kind;
    auto add = [&where](const char* label, const std::optional<int16_t>& n) {
        if (n) where += (where.empty() ? "" : ", ") + std::string(label) + std::to_string(*n);
    };
    add("page ", v.page);
    add("block ", v.block);
    add("byte ", v.beginByte);
    std::string out = v.name;
    if (!where.empty()) out += (out.empty() ? "(" : " (") + where + ")";
    return out.empty() ? out : out + ": ";
}
}  // namespace

int runCheck(const CliOptions& o, std::ostream& out, std::ostream& err) {
    LayoutSession session(o, err);
    if (!session.setUp(o, err)) return kExitRefused;
    if (!session.open(o.arguments.front(), err)) return kExitRefused;
    const auto violations = session.doc.audit();
    if (o.json) {
        out << "{\"violations\": [";
        for (size_t i = 0; i < violations.size(); ++i) {
            const AuditViolation& v = violations[i];
            out << (i ? ",\n  " : "\n  ") << "{\"name\": " << jsonString(v.name) << ", \"kind\": " << jsonString(v.kind)
                << ", \"page\": " << jsonNumber(v.page) << ", \"block\": " << jsonNumber(v.block)
                << ", \"beginByte\": " << jsonNumber(v.beginByte) << ", \"textId\": " << v.textId
                << ", \"text\": " << jsonString(v.text) << "}";
        }
        out << (violations.empty() ? "" : "\n") << "]}\n";
    } else {
        for (const AuditViolation& v : violations)
            out << itemOf(v) << "[" << v.textId << "] " << oneLine(v.text) << '\n';
        out << violations.size() << (violations.size() == 1 ? " violation" : " violations") << '\n';
    }
    return violations.empty() ? kExitDone : kExitRefused;
}

}  // namespace kestrin::cli
