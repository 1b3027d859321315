// The core's folders form a ladder: a file may include its own folder and the folders below it,
// never one above. The order is the one the core's build file names.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

int rankOf(const std::vector<std::string>& order, const std::string& folder) {
    const auto at = std::find(order.begin(), order.end(), folder);
    return at == order.end() ? -1 : static_cast<int>(at - order.begin());
}

TEST(CoreLayers, NoFileIncludesAFolderAboveItsOwn) {
    std::vector<std::string> order;
    std::istringstream list(KESTRIN_CORE_LAYERS);
    for (std::string name; std::getline(list, name, ',');) order.push_back(name);
    ASSERT_GE(order.size(), 2u);
    const fs::path core = KESTRIN_CORE_SOURCE;
    const std::regex include(R"re(^\s*#\s*include\s*"([^"]+)")re");
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(core)) {
        const std::string ext = entry.path().extension().string();
        if (!entry.is_regular_file() || (ext != ".h" && ext != ".cpp")) continue;
        const fs::path relative = fs::relative(entry.path(), core);
        const std::string folder = relative.begin()->string();
        const int own = rankOf(order, folder);
        EXPECT_GE(own, 0) << relative << " lies in a folder that is not on the ladder";
        ++files;
        std::ifstream in(entry.path());
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            std::smatch m;
            if (!std::regex_search(line, m, include)) continue;
            const fs::path target = m[1].str();
            if (!target.has_parent_path()) continue;  // beside the including file
            const int rank = rankOf(order, target.begin()->string());
            if (rank < 0) continue;  // a generated header
            EXPECT_LE(rank, own) << relative.string() << ":" << number << " includes " << target.string() << ", above " << folder;
        }
    }
    EXPECT_GT(files, 50);
}

}  // namespace
