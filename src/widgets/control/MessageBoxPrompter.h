#pragma once
#include "base/Prompter.h"

class QWidget;

namespace kestrin {

// Shows the rules' messages and questions in modal message boxes over the given window.
class MessageBoxPrompter : public Prompter {
public:
    explicit MessageBoxPrompter(QWidget* parent = nullptr) : parent_(parent) {}
    void tell(Icon icon, const std::string& text, const std::string& title) override;
    Answer ask(Icon icon, const std::string& text, Buttons buttons, const std::string& title) override;

private:
    QWidget* parent_;
};

}  // namespace kestrin
