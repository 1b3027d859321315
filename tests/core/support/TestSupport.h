#pragma once
#include <deque>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "base/Prompter.h"

namespace kestrin::test {

// Records every message and answers questions from a script (default: the given answer).
class RecordingPrompter : public Prompter {
public:
    struct Message { Icon icon; std::string text, title; bool question; Buttons buttons; };

    explicit RecordingPrompter(Answer defaultAnswer = Answer::Yes) : defaultAnswer_(defaultAnswer) {}
    void answerNext(Answer a) { script_.push_back(a); }

    void tell(Icon icon, const std::string& text, const std::string& title) override {
        messages.push_back({icon, text, title, false, Buttons::Ok});
    }
    Answer ask(Icon icon, const std::string& text, Buttons buttons, const std::string& title) override {
        messages.push_back({icon, text, title, true, buttons});
        if (script_.empty()) return defaultAnswer_;
        Answer a = script_.front();
        script_.pop_front();
        return a;
    }

    std::vector<Message> messages;

private:
    Answer defaultAnswer_;
    std::deque<Answer> script_;
};

// A fresh folder under the system's temporary folder, removed with everything in it.
class TempDir {
public:
    TempDir() {
        std::random_device rd;
        path_ = std::filesystem::temp_directory_path() / ("kestrin-test-" + std::to_string(rd()) + std::to_string(rd()));
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        namespace fs = std::filesystem;
        std::error_code ec, ignored;
        fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ec);
        // Windows deletes no read-only file.
        for (fs::recursive_directory_iterator it(path_, ec), end; !ec && it != end; it.increment(ec))
            fs::permissions(it->path(), fs::perms::owner_write, fs::perm_options::add, ignored);
        fs::remove_all(path_, ec);
    }
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

inline std::string readBytes(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void writeBytes(const std::filesystem::path& p, const std::string& bytes) {
    std::ofstream(p, std::ios::binary) << bytes;
}

// Lines joined with CR LF and ended by one, as the profile writer leaves them.
inline std::string crlf(const std::vector<std::string>& lines) {
    std::string out;
    for (const auto& l : lines) out += l + "\r\n";
    return out;
}

inline std::string repeated(std::string_view piece, std::size_t count) {
    std::string out;
    while (count--) out += piece;
    return out;
}

}  // namespace kestrin::test
