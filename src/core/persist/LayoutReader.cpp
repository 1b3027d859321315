#include "LayoutReader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_set>

#include "Cp1252.h"
#include "HostFields.h"
#include "InputLimits.h"
#include "LayoutSyntax.h"
#include "ProfileDocument.h"
#include "ProfileStrings.h"
#include "base/KestrinError.h"
#include "base/PathText.h"
#include "base/ProductInfo.h"
#include "card/CIClass.h"
#include "card/PageAddress.h"
#include "items/RecordArray.h"
#include "rules/PlacementValidation.h"
#include "base/Prompter.h"

namespace kestrin {

namespace fs = std::filesystem;
namespace S = layout_sections;

namespace {

constexpr const char* kErrorSource = "iClass UserControl";

struct Version {
    int major = 0, minor = 0, revision = 0;
};

Version parseVersion(const std::string& text) {
    int parts[3] = {0, 0, 0};
    size_t start = 0;
    for (int& part : parts) {
        const size_t dot = text.find('.', start);
        const std::string piece = text.substr(start, dot == std::string::npos ? std::string::npos : dot - start);
        part = static_cast<int>(parseProfileInt(piece).value_or(0));
        if (dot == std::string::npos) break;
        start = dot + 1;
    }
    return {parts[0], parts[1], parts[2]};
}

bool isLater(const Version& v) {
    if (v.major != kVersionMajor) return v.major > kVersionMajor;
    if (v.minor != kVersionMinor) return v.minor > kVersionMinor;
    return v.revision > kVersionRevision;
}

// Keys of a numbered section ("1Value", "2Value" ...) in ascending number order.
std::vector<int32_t> numbersOf(const ProfileDocument& doc, std::string_view section, std::string_view suffix) {
    std::vector<int32_t> out;
    for (const auto& key : doc.keys(section))
        if (auto n = numberedKey(key, suffix)) out.push_back(*n);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

class Reader {
public:
    Reader(const ProfileDocument& doc, const CIClass& card, LayoutReadResult& result)
        : doc_(doc), card_(card), result_(result), encode_(doc.section(S::Encode)), bitEncode_(doc.section(S::BitEncode)),
          combined_(doc.section(S::CombinedFields)), multiTrack_(doc.section(S::FieldsMultiTrack)),
          itemColor_(doc.cursor(S::ItemColor)), fieldType_(doc.cursor(S::FieldType)), bigItem_(doc.cursor(S::BigItem)),
          bitItemColor_(doc.cursor(S::BitItemColor)) {}

    RecordArray run() {
        records_.reserve(entriesOf(encode_) + entriesOf(bitEncode_) + entriesOf(multiTrack_));
        noteLongValues();
        readCombinedParts();
        readFields();
        readBitFields();
        readCombinedFields();
        readFunctions(S::InitCard, false);
        readFunctions(S::BitInitCard, true);
        readDatabaseUpdates();
        readMultiTrack();
        doc_.forEachDistinctKey(doc_.section(S::Settings), [&](std::string_view key, std::optional<std::string_view> raw) {
            result_.settings.emplace_back(std::string(key), layoutStringOf(raw));
        });
        if (unlisted_ > 0) {
            const std::string more = "... and " + std::to_string(unlisted_) + " more entries dropped";
            result_.warnings.push_back(more);
            DroppedEntry rest;
            rest.reason = more;
            result_.dropped.push_back(std::move(rest));
        }
        if (tooMany_ > 0)
            result_.limitsExceeded.push_back("The layout holds more than " + std::to_string(kMaxItems) + " items; " +
                                             std::to_string(tooMany_) + " were left out.");
        return std::move(records_);
    }

private:
    // An entry as its drop would describe it; nothing is copied unless it is dropped.
    struct Entry {
        std::string_view section, key, name, kind;
        const ItemRecord* item = nullptr;  // the item as read so far: its name, kind and place
    };
    static size_t entriesOf(const ProfileDocument::Section* s) { return s ? s->entryCount : 0; }
    static Entry about(std::string_view section, std::string_view key, const ItemRecord& r) {
        return {section, key, {}, {}, &r};
    }

    // Drops the entry with a warning; placeText gives the place of an entry whose numbers did not read whole.
    void drop(const Entry& e, std::string why, int32_t textId = 0, std::string_view placeText = {}) {
        if (result_.warnings.size() >= kMaxReadWarnings) {
            ++unlisted_;
            return;
        }
        DroppedEntry d = e.item ? droppedItem(e.section, std::string(e.key), *e.item)
                                : DroppedEntry{std::string(e.section), std::string(e.key), std::string(e.name),
                                               std::string(e.kind), {}, {}, {}, 0, {}};
        if (!placeText.empty()) placeAsFarAsRead(d, placeText);
        result_.warnings.push_back("[" + d.section + "] " + d.key + ": " + why + "; entry dropped");
        d.reason = std::move(why);
        d.textId = textId;
        result_.dropped.push_back(std::move(d));
    }

    void add(std::string_view section, const std::string& key, const ItemRecord& r) {
        if (records_.add(r)) return;
        ++tooMany_;
        drop(about(section, key, r), "the layout holds too many items");
    }

    // Values are read through a buffer of kMaxValueChars characters, as the profile functions
    // read them; longer ones arrive cut, which the operator is told once.
    void noteLongValues() {
        if (doc_.longestValueBytes() <= kMaxValueChars) return;  // no value can be that long
        size_t count = 0;
        std::string first;
        std::unordered_set<std::string, AsciiCaselessHash, AsciiCaselessEqual> seen;
        for (const auto& section : doc_.sections()) {
            if (!seen.insert(section).second) continue;  // a repeated section reads as its first
            for (const auto& key : doc_.keys(section)) {
                const auto raw = doc_.rawValue(section, key);
                if (!raw || utf8Length(stripProfileQuotes(*raw)) <= kMaxValueChars) continue;
                if (count++ == 0) first = "[" + section + "] " + key;
            }
        }
        if (count > 0)
            result_.limitsExceeded.push_back(std::to_string(count) + " values are longer than " +
                                             std::to_string(kMaxValueChars) + " characters and were cut (the first: " +
                                             first + ").");
    }

    // At least n comma-separated 16-bit numbers, else the entry is dropped; for a place, with the
    // page, block and begin byte it gives before the numbers run short or out of range.
    bool numbers(const Entry& entry, const std::string& text, size_t n, std::vector<int16_t>& out,
                 bool isPlace = false) {
        auto v = parseShortList(text, n);
        if (!v) {
            drop(entry, "\"" + text + "\" is not a list of " + std::to_string(n) + " numbers in range", 0,
                 isPlace ? std::string_view(text) : std::string_view());
            return false;
        }
        out = std::move(*v);
        return true;
    }

    // Keeps a record only when its place lies inside an existing page of the card.
    void keep(std::string_view section, const std::string& key, const ItemRecord& r, bool bitPlace) {
        if (auto unfit = unfitPlace(card_, r, bitPlace))
            return drop(about(section, key, r), std::move(unfit->reason), unfit->textId);
        add(section, key, r);
    }

    void readCombinedParts() {
        doc_.forEachDistinctKey(combined_, [&](std::string_view keyView, std::optional<std::string_view> raw) {
            const std::string key(keyView);
            if (numberedKey(key, "Place")) return;
            std::vector<int16_t> pair;
            const std::string value = layoutStringOf(raw);
            if (!numbers(Entry{S::CombinedFields, key, splitFieldKey(key).first, kKindField}, value, 2, pair))
                return;
            combinedParts_.insert(key);
            groups_[pair[0]].push_back({pair[1], key});
        });
    }

    void readFields() {
        doc_.forEachDistinctKey(encode_, [&](std::string_view keyView, std::optional<std::string_view> raw) {
            const std::string key(keyView);
            if (!combinedParts_.empty() && combinedParts_.count(key)) return;
            std::vector<int16_t> v;
            ItemRecord r;
            r.name = splitFieldKey(key).first;
            if (!numbers(Entry{S::Encode, key, r.name, kKindField}, layoutStringOf(raw), 5, v, true))
                return;
            r.page = v[0], r.block = v[1], r.beginByte = v[2], r.numBytes = v[3], r.encodingCode = v[4];
            r.color = doc_.getInt(itemColor_, key, 0);
            r.fieldType = doc_.getInt(fieldType_, key, 0);
            readBigItem(key, r);
            keep(S::Encode, key, r, false);
        });
    }

    void readBigItem(const std::string& key, ItemRecord& r) {
        const std::string big = layoutStringOf(doc_.rawValue(bigItem_, key));
        if (big.empty()) return;
        std::vector<int16_t> v;
        if (!numbers(about(S::BigItem, key, r), big, 2, v)) return;
        // "0,n" marks no big item; its number means nothing then and is not kept.
        r.isBinary = v[0] != 0;
        r.bigItemNumber = r.isBinary ? v[1] : int16_t{0};
        if (r.isBinary) readBeginBit(key, r);
    }

    // A big item placed from a begin bit other than 0 keeps the bit in a FieldsMultiTrack
    // entry under its own key, with the same place; that entry is not a further item.
    void readBeginBit(const std::string& key, ItemRecord& r) {
        const std::string text = layoutStringOf(doc_.rawValue(multiTrack_, key));
        if (text.empty()) return;
        const auto v = parseShortList(text, 5);
        if (!v || (*v)[0] != r.page || (*v)[1] != r.block || (*v)[2] != r.beginByte || (*v)[4] != r.numBytes ||
            (*v)[3] < 0 || (*v)[3] > 7)
            return;
        r.beginBit = (*v)[3];
        beginBitEntries_.insert(key);
    }

    void readBitFields() {
        doc_.forEachDistinctKey(bitEncode_, [&](std::string_view keyView, std::optional<std::string_view> raw) {
            const std::string key(keyView);
            std::vector<int16_t> v;
            ItemRecord r;
            r.isBit = true;
            r.name = splitFieldKey(key).first;
            if (!numbers(Entry{S::BitEncode, key, r.name, kKindBitField}, layoutStringOf(raw), 6,
                         v, true))
                return;
            r.page = v[0], r.block = v[1], r.beginByte = v[2], r.beginBit = v[3], r.numBits = v[4];
            r.encodingCode = v[5];
            r.color = doc_.getInt(bitItemColor_, key, 0);
            r.fieldType = doc_.getInt(fieldType_, key, 0);
            keep(S::BitEncode, key, r, true);
        });
    }

    void readCombinedFields() {
        for (auto& [c, parts] : groups_) {
            std::stable_sort(parts.begin(), parts.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
            ItemRecord r;
            for (const auto& part : parts) {
                if (!r.name.empty()) r.name += kCombinedFieldSeparator;
                r.name += splitFieldKey(part.second).first;
            }
            const std::string& first = parts.front().second;
            const std::string placeKey = std::to_string(c) + "Place";
            std::vector<int16_t> encode, place;
            const std::string encodeText = readLayoutString(doc_, S::Encode, first);
            if (!encodeText.empty() &&
                !numbers(Entry{S::Encode, first, r.name, kKindField}, encodeText, 5, encode, true))
                continue;
            const std::string placeText = readLayoutString(doc_, S::CombinedFields, placeKey);
            if (!placeText.empty()) {
                if (!numbers(Entry{S::CombinedFields, placeKey, r.name, kKindField}, placeText, 4, place, true))
                    continue;
            } else if (!encode.empty()) {
                place = encode;
            } else {
                drop(Entry{S::CombinedFields, first, r.name, kKindField}, "the combined field has no place",
                     kTextIncomplete);
                continue;
            }
            r.page = place[0], r.block = place[1], r.beginByte = place[2], r.numBytes = place[3];
            if (encode.size() >= 5) r.encodingCode = encode[4];
            r.color = doc_.getInt(itemColor_, first, 0);
            r.fieldType = doc_.getInt(fieldType_, first, 0);
            readBigItem(first, r);
            keep(S::CombinedFields, first, r, false);
        }
    }

    void readFunctions(std::string_view section, bool bitSection) {
        for (int32_t k : numbersOf(doc_, section, "Value")) {
            const std::string n = std::to_string(k);
            const std::string valueKey = n + "Value";
            const std::string_view kind = bitSection ? kKindBitFunction : kKindFunction;
            auto f = parseFunctionValue(readLayoutString(doc_, section, valueKey));
            if (!f || f->word.empty()) {
                drop(Entry{section, valueKey, {}, kind}, "not a function value");
                continue;
            }
            std::vector<int16_t> p;
            if (!numbers(Entry{section, n + "Place", f->word, kind}, readLayoutString(doc_, section, n + "Place"),
                         bitSection ? 5 : 4, p, true))
                continue;
            ItemRecord r;
            r.name = f->word;
            r.param1 = f->param1, r.param2 = f->param2, r.param3 = f->param3;
            r.page = p[0], r.block = p[1], r.beginByte = p[2];
            if (bitSection)
                r.beginBit = p[3], r.numBits = p[4];
            else
                r.numBytes = p[3];
            r.color = doc_.getInt(section, n + "Color", 0);
            const int32_t mode = doc_.getInt(section, n + "Mode", bitSection ? 1 : 0);
            if (bitSection) {
                // A bit checksum of mode 0 is a simple bit function; everything else here is a bit function.
                if (r.name == kFunctionChecksum && mode == 0)
                    r.isSimpleBitFunction = true;
                else
                    r.isBitFunction = true;
            } else {
                r.isFunction = true;
                r.isBitFunction = mode == 1;
            }
            if (r.name == kFunctionChecksum && !readChecksum(*f, r)) continue;
            keep(section, valueKey, r, bitSection);
        }
    }

    bool readChecksum(const ParsedFunction& f, ItemRecord& r) {
        const std::string j = f.param2;
        r.param2.clear();
        // A missing range reads as four zeros, so a bit checksum's fifth number is then 0.
        std::vector<int16_t> range;
        const std::string rangeText = readLayoutString(doc_, S::Checksum, j + "Range", "0,0,0,0");
        if (!numbers(about(S::Checksum, j + "Range", r), rangeText, 4, range)) return false;
        // A byte checksum's range has four numbers, a bit checksum's five; a surplus is not kept.
        const size_t kept = r.isFunction ? 4 : r.range.size();
        std::copy_n(range.begin(), std::min(range.size(), kept), r.range.begin());
        const int method = parseProfileInt(f.param1).value_or(0);
        if (method == kChecksumCrc) {
            std::vector<int16_t> poly;
            const std::string polyText = readLayoutString(doc_, S::Checksum, j + "Poly_", "0,0");
            if (!numbers(about(S::Checksum, j + "Poly_", r), polyText, 2, poly)) return false;
            r.polynomial = {poly[0], poly[1]};
        } else if (method == kChecksumParity) {
            // Init_ is read for a parity only, as layout files have always been read, although a save also
            // writes it for a byte ADD checksum: that start value does not survive reopening.
            r.initValue = static_cast<int16_t>(doc_.getInt(S::Checksum, j + "Init_", 0));
        }
        return true;
    }

    void readDatabaseUpdates() {
        for (int32_t n : numbersOf(doc_, S::DatabaseUpdate, "Field")) {
            const std::string key = std::to_string(n) + "Field";
            const std::string value = readLayoutString(doc_, S::DatabaseUpdate, key);
            const size_t comma = value.find(',');
            auto column = parseNumberList(value.substr(0, comma));
            auto f = comma == std::string::npos ? std::nullopt : parseFunctionValue(value.substr(comma + 1));
            const Entry entry{S::DatabaseUpdate, key, f ? std::string_view(f->word) : "", kKindDatabaseUpdate};
            if (!column || column->front() < 0 || !fitsInt16(column->front()) || !f) {
                drop(entry, "\"" + value + "\" is not a column and a function");
                continue;
            }
            // A checksum is computed over card bytes; as a database update it cannot be saved.
            if (f->word == kFunctionChecksum) {
                drop(entry, "a checksum is not a database update");
                continue;
            }
            ItemRecord r;
            r.isDbUpdate = true;
            r.name = f->word;
            r.param1 = f->param1, r.param2 = f->param2, r.param3 = f->param3;
            r.dbColumn = static_cast<int16_t>(column->front());
            add(S::DatabaseUpdate, key, r);
        }
    }

    // Fields spread over several tracks, as "Name(n)=page,block,begin byte,begin bit,number of bytes".
    void readMultiTrack() {
        doc_.forEachDistinctKey(multiTrack_, [&](std::string_view keyView, std::optional<std::string_view> raw) {
            const std::string key(keyView);
            if (beginBitEntries_.count(key)) return;
            std::vector<int16_t> v;
            ItemRecord r;
            r.isBinary = true;
            r.name = splitFieldKey(key).first;
            if (!numbers(Entry{S::FieldsMultiTrack, key, r.name, kKindBinaryField},
                         layoutStringOf(raw), 5, v, true))
                return;
            // The fourth number is the begin bit, which a save keeps beside the item's ENCODE
            // entry; one outside a byte is not kept, so the item saves and opens again unchanged.
            r.page = v[0], r.block = v[1], r.beginByte = v[2], r.numBytes = v[4];
            if (v[3] >= 0 && v[3] <= 7) r.beginBit = v[3];
            keep(S::FieldsMultiTrack, key, r, false);
        });
    }

    const ProfileDocument& doc_;
    const CIClass& card_;
    LayoutReadResult& result_;
    // The sections read entry by entry, found once.
    using Section = ProfileDocument::Section;
    const Section *encode_, *bitEncode_, *combined_, *multiTrack_;
    ProfileDocument::Cursor itemColor_, fieldType_, bigItem_, bitItemColor_;  // asked in the encode sections' order
    RecordArray records_;
    size_t unlisted_ = 0;  // dropped entries beyond the warning limit
    size_t tooMany_ = 0;   // entries beyond the item limit
    std::unordered_set<std::string, AsciiCaselessHash, AsciiCaselessEqual> combinedParts_;
    std::unordered_set<std::string, AsciiCaselessHash, AsciiCaselessEqual> beginBitEntries_;
    std::map<int16_t, std::vector<std::pair<int16_t, std::string>>> groups_;
};

void applyCardDesign(const ProfileDocument& doc, CIClass& card, LayoutReadResult& result) {
    result.useBit = doc.getInt(S::CardDesign, "UseBit", 0) != 0;
    result.useHID = doc.getInt(S::CardDesign, "UseHID", 0) != 0;
    const std::string size = readLayoutString(doc, S::CardDesign, "Size");
    const int32_t pages = doc.getInt(S::CardDesign, "Pages", 1);
    if (size == "2K")
        card.setChipSize(iSmallOnePage);
    else if (size == "16K")
        card.setChipSize(pages > 1 ? iBigEightPages : iBigOnePage);
    else
        result.warnings.push_back("[CARDDESIGN] Size \"" + size + "\" is unknown; chip type kept");
    if (card.ChipSize() == iBigEightPages && size == "16K") {
        for (int32_t p = 1; p <= 7; ++p) {
            const int32_t border = doc.getInt(S::CardDesign, std::to_string(p) + "PageBorder", 0);
            const double block = std::nearbyint(static_cast<double>(border) / PageAddress::BytesPerBlock);  // halves to even
            if (block >= INT32_MIN && block <= INT32_MAX) card.SetBoundary(p, static_cast<int32_t>(block));
        }
    }
    card.setEnableBitwise(result.useBit);
    card.setUseHIDSection(result.useHID);
}

}  // namespace

std::string laterVersionWarning(int major, int minor, int revision) {
    const std::string crlf = "\r\n";
    auto v = [](int a, int b, int c) { return std::to_string(a) + "." + std::to_string(b) + "." + std::to_string(c); };
    return "The file you are trying to open was made in a later version of LK than the one you are currently using. " +
           crlf + crlf + "The file was created with version " + v(major, minor, revision) + crlf +
           "You are using version " + v(kVersionMajor, kVersionMinor, kVersionRevision) + " of LK. " + crlf +
           "It is recommended you upgrade LK." + crlf + crlf + "If you open the file, some data might be lost on saving. " +
           crlf + "Continue anyway?";
}

LayoutReadResult readLayout(const fs::path& file, CIClass& card, RecordArray& records, Prompter& prompter,
                            const HostFieldList* fields) {
    if (file.empty()) throw KestrinError(kErrBadFileName, kErrorSource, "No filename given.");
    std::error_code ec;
    if (!fs::exists(file, ec)) throw KestrinError(kErrFileNotFound, kErrorSource, "File doesn't exist");

    LayoutReadResult result;
    std::string error;
    auto doc = ProfileDocument::load(file, &error, kMaxLayoutFileBytes);
    if (!doc) {
        result.message = "The layout " + pathText(file) + " could not be opened: " + error;
        prompter.tell(Icon::Exclamation, result.message, kProductTitle);
        return result;
    }
    return readLayoutDocument(*doc, card, records, prompter, fields);
}

LayoutReadResult readLayoutBytes(std::string_view bytes, CIClass& card, RecordArray& records, Prompter& prompter,
                                 const HostFieldList* fields) {
    LayoutReadResult result;
    if (bytes.size() > kMaxLayoutFileBytes) {
        result.message = "The layout is larger than " + std::to_string(kMaxLayoutFileBytes >> 20) +
                         " MiB and was not opened.";
        prompter.tell(Icon::Exclamation, result.message, kProductTitle);
        return result;
    }
    return readLayoutDocument(ProfileDocument::parse(bytes), card, records, prompter, fields);
}

LayoutReadResult readLayoutDocument(const ProfileDocument& doc, CIClass& card, RecordArray& records,
                                    Prompter& prompter, const HostFieldList* fields) {
    LayoutReadResult result;
    const Version version = parseVersion(readLayoutString(doc, S::General, "Version", "5.9.0"));
    if (isLater(version) &&
        prompter.ask(Icon::Exclamation, laterVersionWarning(version.major, version.minor, version.revision),
                     Buttons::YesNo, kProductTitle) != Answer::Yes) {
        result.message = "The layout was made by a later version and was not opened.";
        return result;
    }

    applyCardDesign(doc, card, result);
    records = Reader(doc, card, result).run();
    if (fields) nameDatabaseUpdateFields(records, *fields);
    result.opened = true;
    if (!result.limitsExceeded.empty()) {
        std::string text = "The layout goes beyond what the control reads:";
        for (const auto& line : result.limitsExceeded) text += "\r\n" + line;
        prompter.tell(Icon::Exclamation, text, kProductTitle);
    }
    return result;
}

void nameDatabaseUpdateFields(RecordArray& records, const HostFieldList& fields) {
    for (int32_t i = 0; i < records.size(); ++i) {
        ItemRecord& r = records[i];
        if (!r.isDbUpdate || !r.dbFieldName.empty() || r.dbColumn < 0) continue;
        if (const HostField* f = fields.byColumn(r.dbColumn)) r.dbFieldName = f->dbField;
    }
}

}  // namespace kestrin
