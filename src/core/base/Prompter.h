#pragma once
#include <string>

namespace kestrin {

enum class Icon { None, Information, Question, Exclamation, Critical };
enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };

// How rules talk to the operator. Texts arrive already translated; the widget layer
// shows message boxes, tests record the messages and answer with a script.
class Prompter {
public:
    virtual ~Prompter() = default;
    virtual void tell(Icon icon, const std::string& text, const std::string& title) = 0;
    virtual Answer ask(Icon icon, const std::string& text, Buttons buttons, const std::string& title) = 0;
};

}  // namespace kestrin
