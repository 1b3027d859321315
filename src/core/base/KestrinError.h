#pragma once
#include <stdexcept>
#include <string>

namespace kestrin {

// The one error type raised to a caller that must be stopped: the reader's refusals
// ("No filename given.", "File doesn't exist") and the page collection's lookup errors.
// It carries the run-time error number, the source and the description a host shows.
class KestrinError : public std::runtime_error {
public:
    KestrinError(int number, std::string source, std::string description)
        : std::runtime_error(description), number_(number), source_(std::move(source)),
          description_(std::move(description)) {}

    int number() const { return number_; }
    const std::string& source() const { return source_; }
    const std::string& description() const { return description_; }

private:
    int number_;
    std::string source_;
    std::string description_;
};

// Error numbers a host already knows from the control.
inline constexpr int kErrInvalidCall = 5;
inline constexpr int kErrSubscriptOutOfRange = 9;
inline constexpr int kErrFileNotFound = 53;
inline constexpr int kErrBadFileName = 52;

}  // namespace kestrin
