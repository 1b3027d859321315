// Runs a fuzz target once over every file of the given files and folders, so that the seed
// corpus and every input that once failed are checked by the ordinary test run.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

int runFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", file.string().c_str());
        return 1;
    }
    const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    size_t inputs = 0;
    int failures = 0;
    for (int i = 1; i < argc; ++i) {
        const fs::path root(argv[i]);
        std::error_code ec;
        if (fs::is_directory(root, ec)) {
            std::vector<fs::path> files;
            for (const auto& entry : fs::recursive_directory_iterator(root))
                if (entry.is_regular_file() && entry.path().filename().string()[0] != '.') files.push_back(entry.path());
            std::sort(files.begin(), files.end());
            for (const auto& f : files) failures += runFile(f), ++inputs;
        } else if (fs::exists(root, ec)) {
            failures += runFile(root), ++inputs;
        }
    }
    std::printf("%zu inputs replayed\n", inputs);
    return failures == 0 && inputs > 0 ? 0 : 1;
}
