#pragma once
#include <algorithm>
#include <memory>
#include <optional>

#include "Records.h"
#include "TestSupport.h"
#include "card/CIClass.h"
#include "persist/HostFields.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutSaver.h"
#include "text/Translator.h"

namespace kestrin::test {

using namespace std::string_literals;

using MaybeBytes = std::optional<std::string>;

inline MaybeBytes readIfPresent(const std::filesystem::path& p) {
    return std::filesystem::exists(p) ? MaybeBytes(readBytes(p)) : std::nullopt;
}

// A layout opened from bytes on a card of the chip given, answering questions as given.
struct Opened { LayoutReadResult result; CIClass card; RecordArray records; RecordingPrompter prompter; };
inline std::unique_ptr<Opened> openLayout(const std::string& bytes, Answer answer = Answer::Yes,
                                          const HostFieldList* fields = nullptr, IClassType before = iSmallOnePage) {
    auto o = std::make_unique<Opened>();
    o->prompter = RecordingPrompter(answer);
    o->card.setChipSize(before);
    o->result = readLayoutBytes(bytes, o->card, o->records, o->prompter, fields);
    return o;
}

// The three files of a layout NAME.IIF in one folder, as read back from the disk.
struct SavedFiles {
    MaybeBytes layout, encode, backup;  // NAME.IIF, NAME.CHP, NAME.IIF.BAK

    static SavedFiles read(const std::filesystem::path& folder, const std::string& stem) {
        return {readIfPresent(folder / (stem + ".IIF")), readIfPresent(folder / (stem + ".CHP")),
                readIfPresent(folder / (stem + ".IIF.BAK"))};
    }
    void write(const std::filesystem::path& folder, const std::string& stem) const {
        for (const auto& [bytes, ending] : {std::pair{&layout, ".IIF"}, {&encode, ".CHP"}, {&backup, ".IIF.BAK"}})
            if (*bytes) writeBytes(folder / (stem + ending), **bytes);
    }
};

// The names in folder, sorted.
inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(pathText(entry.path().filename()));
    std::sort(names.begin(), names.end());
    return names;
}
// Hidden temporary files (".NAME.<n>.tmp") in folder.
inline std::vector<std::string> hiddenTempFiles(const std::filesystem::path& folder) {
    std::vector<std::string> names = namesIn(folder);
    std::erase_if(names, [](const std::string& n) { return !n.starts_with(".") || !n.ends_with(".tmp"); });
    return names;
}

// Names the contents a file is expected to hold, so that checks compare short names and a
// failure says which content a file holds instead of printing whole layouts.
struct KnownContents {
    std::vector<std::pair<std::string, std::string>> known_;
    void add(std::string name, const MaybeBytes& bytes) { if (bytes) known_.emplace_back(std::move(name), *bytes); }
    std::string nameOf(const MaybeBytes& bytes) const {
        if (!bytes) return "absent";
        for (const auto& [name, content] : known_)
            if (content == *bytes) return name;
        return "unknown content of " + std::to_string(bytes->size()) + " bytes";
    }
};

// Two large layouts of one-byte fields ("A0000".., "B0000"..) with different counts, so that
// every file of one differs from the other's.
struct TwoLayouts {
    CIClass card;
    RecordArray records[2];
    HostFieldList fields;
    Translator translator;

    explicit TwoLayouts(int countA, int countB) {
        card.setChipSize(iBigOnePage);
        std::vector<HostField> hostFields;
        for (int which = 0; which < 2; ++which)
            for (int i = 0; i < (which == 0 ? countA : countB); ++i) {
                const std::string name = (which == 0 ? "A" : "B") + std::to_string(10000 + i).substr(1);
                const int byte = i + which * 200;
                records[which].add(field(name, 0, 19 + byte / 8, byte % 8, 1, 0, 0x10000 + i));
                hostFields.push_back({name, name, "Character", 1, static_cast<int16_t>(hostFields.size()), true});
            }
        fields.setFields(std::move(hostFields));
    }
    SaveOutcome save(const std::filesystem::path& folder, int which) const {
        RecordingPrompter quiet;
        return saveLayout(folder / "Card.IIF", &card, records[which], fields, quiet, translator);
    }
};

}  // namespace kestrin::test
