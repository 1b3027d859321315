#include <ostream>

#include "Commands.h"
#include "JsonText.h"
#include "LayoutSession.h"
#include "card/CardGeometry.h"
#include "items/GridRows.h"

namespace kestrin::cli {

namespace {

std::vector<int32_t> boundariesOf(const CIClass& card) {
    std::vector<int32_t> out;
    if (card.ChipSize() == iBigEightPages)
        for (int32_t p = 0; p < 8; ++p) out.push_back(card.GetBoundary(p));
    return out;
}

void printJson(const LayoutSession& s, std::ostream& out) {
    out << "{\n  \"chip\": " << jsonString(chipTypeName(s.doc.card()->ChipSize())) << ",\n";
    out << "  \"useHID\": " << (s.doc.card()->UseHIDSection() ? "true" : "false") << ",\n";
    out << "  \"useBit\": " << (s.doc.card()->EnableBitwise() ? "true" : "false") << ",\n";
    out << "  \"boundaries\": [";
    const auto bounds = boundariesOf(*s.doc.card());
    for (size_t i = 0; i < bounds.size(); ++i) out << (i ? ", " : "") << bounds[i];
    out << "],\n  \"items\": [";
    const auto rows = itemRows(s.doc.records());
    for (size_t i = 0; i < rows.size(); ++i) {
        const ItemRow& r = rows[i];
        out << (i ? ",\n" : "\n") << "    {\"name\": " << jsonString(r.name) << ", \"kind\": " << jsonString(r.kind)
            << ", \"page\": " << r.page << ", \"block\": " << r.block << ", \"beginByte\": " << r.beginByte
            << ", \"bytes\": " << jsonNumber(r.bytes) << ", \"beginBit\": " << jsonNumber(r.beginBit)
            << ", \"bits\": " << jsonNumber(r.bits) << "}";
    }
    out << (rows.empty() ? "" : "\n  ") << "],\n  \"dbUpdates\": [";
    const auto updates = dbUpdateRows(s.doc.records(), s.doc.translator());
    for (size_t i = 0; i < updates.size(); ++i)
        out << (i ? ",\n" : "\n") << "    {\"field\": " << jsonString(updates[i].field)
            << ", \"function\": " << jsonString(updates[i].function)
            << ", \"summary\": " << jsonString(updates[i].summary) << "}";
    out << (updates.empty() ? "" : "\n  ") << "],\n  \"warnings\": [";
    for (size_t i = 0; i < s.read.warnings.size(); ++i) out << (i ? ", " : "") << jsonString(s.read.warnings[i]);
    out << "]\n}\n";
}

template <class T>
std::string cell(const std::optional<T>& v) {
    return v ? std::to_string(*v) : "";
}

void printText(const LayoutSession& s, std::ostream& out) {
    const CIClass& card = *s.doc.card();
    out << "Chip: " << chipTypeName(card.ChipSize()) << " (" << sizeTextOf(card.ChipSize()) << ", "
        << card.PagesCount() << (card.PagesCount() == 1 ? " page" : " pages") << ")\n";
    out << "HID section: " << (card.UseHIDSection() ? "on" : "off") << "\n";
    out << "Bit-wise items: " << (card.EnableBitwise() ? "on" : "off") << "\n";
    if (card.ChipSize() == iBigEightPages) {
        out << "Boundaries:";
        for (int32_t b : boundariesOf(card)) out << ' ' << b;
        out << '\n';
    }
    const auto rows = itemRows(s.doc.records());
    out << "\nItems: " << rows.size() << '\n';
    const auto& headers = itemGridHeaders();
    for (size_t c = 1; c < headers.size(); ++c) out << (c > 1 ? " | " : "") << headerText(headers[c], s.doc.translator());
    out << '\n';
    for (const ItemRow& r : rows)
        out << r.name << " | " << r.kind << " | " << r.page << " | " << r.block << " | " << r.beginByte << " | "
            << cell(r.bytes) << " | " << cell(r.beginBit) << " | " << cell(r.bits) << '\n';
    const auto updates = dbUpdateRows(s.doc.records(), s.doc.translator());
    out << "\nDatabase updates: " << updates.size() << '\n';
    const auto& dbHeaders = dbUpdateGridHeaders();
    for (size_t c = 1; c < dbHeaders.size(); ++c) out << (c > 1 ? " | " : "") << headerText(dbHeaders[c], s.doc.translator());
    out << '\n';
    for (const DbUpdateRow& u : updates) out << u.field << " | " << u.function << " | " << u.summary << '\n';
}

}  // namespace

int runInfo(const CliOptions& o, std::ostream& out, std::ostream& err) {
    LayoutSession session(o, err);
    if (!session.setUp(o, err)) return kExitRefused;
    if (!session.open(o.arguments.front(), err)) return kExitRefused;
    if (o.json)
        printJson(session, out);
    else
        printText(session, out);
    return kExitDone;
}

}  // namespace kestrin::cli
