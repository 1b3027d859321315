#pragma once
// The item editor on the shared dialog fixture.
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QToolButton>

#include "DialogFixture.h"
#include "editor/frmEditiClass.h"
#include "rules/Encodings.h"

namespace kestrin::test {

struct Editor : DialogFixture {
    using DialogFixture::DialogFixture;
    frmEditiClass& open(int32_t mode, int32_t editIndex = -1) { return DialogFixture::open<frmEditiClass>(mode, editIndex); }
    // Opens the editor on the record a grid row shows.
    frmEditiClass& open(int32_t mode, const EditorRecord& row) { return open(mode, doc.recordIndexOf(row)); }
    bool applyEnabled() const { return child<QPushButton>("cmdApply")->isEnabled(); }
    // Clicks the upper or lower arrow of a spin control.
    void spin(const QString& name, bool up) const {
        auto* arrows = child<QAbstractSpinBox>(name);
        EXPECT_EQ(arrows->focusPolicy(), Qt::NoFocus);
        QTest::mouseClick(arrows, Qt::LeftButton, {}, QPoint(arrows->width() / 2, arrows->height() * (up ? 1 : 3) / 4));
    }
};

inline bool lightColour(int32_t bgr) {
    for (int shift : {0, 8, 16}) {
        const int c = (bgr >> shift) & 0xFF;
        if (c < 127 || c > 227) return false;
    }
    return (bgr >> 24) == 0;
}

}  // namespace kestrin::test
