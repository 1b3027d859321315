#pragma once
#include <QAbstractSpinBox>

namespace kestrin {

// The up-down control beside a number box: the platform's spin arrows without a text of their
// own, auto-repeating while held, and out of the Tab chain. The box beside it keeps the value;
// stepped() says which way the operator stepped.
class SpinArrows : public QAbstractSpinBox {
    Q_OBJECT
public:
    explicit SpinArrows(QWidget* parent = nullptr);
    void stepBy(int steps) override;

signals:
    void stepped(int steps);

protected:
    StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
};

}  // namespace kestrin
