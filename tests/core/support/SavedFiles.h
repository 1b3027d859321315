#pragma once
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "TestSupport.h"

namespace kestrin::test {

using MaybeBytes = std::optional<std::string>;

inline MaybeBytes readIfPresent(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream bytes;
    bytes << in.rdbuf();  // whole buffers at a time: the kill test reads large files often
    return std::move(bytes).str();
}

// The three files of a layout NAME.IIF in one folder, as read back from the disk.
struct SavedFiles {
    MaybeBytes layout;  // NAME.IIF
    MaybeBytes encode;  // NAME.CHP
    MaybeBytes backup;  // NAME.IIF.BAK

    static SavedFiles read(const std::filesystem::path& folder, const std::string& stem) {
        return {readIfPresent(folder / (stem + ".IIF")), readIfPresent(folder / (stem + ".CHP")),
                readIfPresent(folder / (stem + ".IIF.BAK"))};
    }
    void write(const std::filesystem::path& folder, const std::string& stem) const {
        if (layout) writeBytes(folder / (stem + ".IIF"), *layout);
        if (encode) writeBytes(folder / (stem + ".CHP"), *encode);
        if (backup) writeBytes(folder / (stem + ".IIF.BAK"), *backup);
    }
};

// Hidden temporary files (".NAME.<n>.tmp") in folder.
inline std::vector<std::string> hiddenTempFiles(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(".") && name.ends_with(".tmp")) names.push_back(name);
    }
    return names;
}

// Names the contents a file is expected to hold, so that checks compare short names and a
// failure says which content a file holds instead of printing whole layouts.
class KnownContents {
public:
    void add(std::string name, const MaybeBytes& bytes) {
        if (bytes) known_.emplace_back(std::move(name), *bytes);
    }
    std::string nameOf(const MaybeBytes& bytes) const {
        if (!bytes) return "absent";
        for (const auto& [name, content] : known_)
            if (content == *bytes) return name;
        return "unknown content of " + std::to_string(bytes->size()) + " bytes";
    }

private:
    std::vector<std::pair<std::string, std::string>> known_;
};

}  // namespace kestrin::test
