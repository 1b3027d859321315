#pragma once
#include <iosfwd>

#include "base/Prompter.h"

namespace kestrin::cli {

// Messages go to stderr. A question is answered Yes only when the operator said --yes;
// otherwise the command is refused with the question's text.
class CliPrompter : public Prompter {
public:
    CliPrompter(std::ostream& err, bool answerYes) : err_(err), yes_(answerYes) {}
    void tell(Icon icon, const std::string& text, const std::string& title) override;
    Answer ask(Icon icon, const std::string& text, Buttons buttons, const std::string& title) override;

private:
    std::ostream& err_;
    bool yes_;
};

}  // namespace kestrin::cli
