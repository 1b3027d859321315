#pragma once
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace kestrin::test {

// A generator's seed: KESTRIN_SEED when set, else a fresh one; printed so a run can be repeated.
inline uint32_t differentialSeed(const char* what) {
    const char* given = std::getenv("KESTRIN_SEED");
    const uint32_t seed = given ? static_cast<uint32_t>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
    std::printf("%s: seed %u (KESTRIN_SEED=%u repeats it)\n", what, seed, seed);
    return seed;
}

inline void printCounts(const char* what, std::size_t cases, std::size_t differences) {
    std::printf("%s: %zu cases, %zu differences\n", what, cases, differences);
}

// A random pick from a list.
template <class T>
const T& pick(std::mt19937& rng, const std::vector<T>& items) {
    return items[std::uniform_int_distribution<std::size_t>(0, items.size() - 1)(rng)];
}

inline bool chance(std::mt19937& rng, int percent) {
    return std::uniform_int_distribution<int>(0, 99)(rng) < percent;
}

// A fresh folder for the generated files, removed with them.
class ScratchFolder {
public:
    explicit ScratchFolder(const char* name)
        : path_(std::filesystem::absolute(std::filesystem::temp_directory_path() / name)) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string file(std::size_t n) const { return (path_ / ("case" + std::to_string(n) + ".ini")).string(); }

private:
    std::filesystem::path path_;
};

}  // namespace kestrin::test
