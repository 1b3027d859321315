#pragma once
// Helpers shared by the text catalog tests: fixture paths, whole-file reads, a scratch folder.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <unistd.h>

namespace kestrin::test {

inline std::filesystem::path langFixture(std::string_view name)
{
    return std::filesystem::path(KESTRIN_FIXTURES) / "lang" / name;
}

inline std::string readWholeFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << "cannot read " << path;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void writeWholeFile(const std::filesystem::path& path, std::string_view content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    ASSERT_TRUE(out.good()) << "cannot write " << path;
}

// A folder of its own for one test, removed with everything in it at the end.
class ScratchDir {
public:
    ScratchDir()
    {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        std::string name = "kestrin-text-" + std::to_string(::getpid()) + "-" +
                           (info ? std::string(info->test_suite_name()) + "-" + info->name() : "scratch");
        for (char& c : name)
            if (c == '/')
                c = '_';
        m_path = std::filesystem::temp_directory_path() / name;
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~ScratchDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;

    std::filesystem::path file(std::string_view name, std::string_view content) const
    {
        const auto path = m_path / name;
        writeWholeFile(path, content);
        return path;
    }
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}  // namespace kestrin::test
