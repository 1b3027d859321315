#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/Prompter.h"

namespace kestrin::fuzz {

inline std::string_view bytesOf(const uint8_t* data, size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Answers every question with a fixed answer and shows nothing.
class SilentPrompter : public Prompter {
public:
    explicit SilentPrompter(Answer answer) : answer_(answer) {}
    void tell(Icon, const std::string&, const std::string&) override {}
    Answer ask(Icon, const std::string&, Buttons, const std::string&) override { return answer_; }

private:
    Answer answer_;
};

// Stops the run with a finding the fuzzer records, when a property of the code fails.
[[noreturn]] void fail(const char* what, std::string_view first, std::string_view second);

}  // namespace kestrin::fuzz
