#include "preview/frmPreview.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

// A preview of a card of the given type, HID section on, with an item on page 5.
struct Preview {
    CIClass card;
    RecordArray records;
    Translator translator;
    std::unique_ptr<frmPreview> form;
    explicit Preview(IClassType chip) {
        card.setChipSize(chip);
        records.add(test::field("Badge", 5, 8, 0, 1, 0, 0x0000FF));
        form = std::make_unique<frmPreview>(card, records, translator, "card.iif", PrintServices{});
    }
    template <class T = QWidget>
    T* child(const char* name) const { return form->findChild<T*>(name); }
    void click(const char* name) const { child<QPushButton>(name)->click(); }
};

struct StepCase {
    IClassType chip;
    int view;  // after Previous, Next four times and Previous
    const char *title0, *description;
    const char* grid;  // a cell of a grid and its text
    int row, column;
    const char* text;
};

class PreviewSteps : public ::testing::TestWithParam<StepCase> {};

TEST_P(PreviewSteps, ButtonsStepThroughTheViewsAndTheGridsShowTheirPages) {
    const StepCase& c = GetParam();
    Preview p(c.chip);
    EXPECT_EQ(p.child<QLabel>("lblChip")->text(), c.description);
    p.click("cmdPrevious");
    for (int i = 0; i < 4; ++i) p.click("cmdNext");
    EXPECT_FALSE(p.child<QPushButton>("cmdNext")->isEnabled());
    p.click("cmdPrevious");
    EXPECT_EQ(p.form->viewIndex(), c.view);
    EXPECT_EQ(p.child<QLabel>("lblPreview0")->text(), c.title0);
    EXPECT_EQ(p.child<QPushButton>("cmdPrevious")->isEnabled(), c.view > 0);
    const bool second = c.chip != iSmallOnePage;
    for (const char* name : {"grdPreview1", "lblPreview1", "lblPageOf"}) EXPECT_EQ(p.child(name)->isHidden(), !second);
    EXPECT_EQ(p.child<QTableWidget>(c.grid)->item(c.row, c.column)->text(), c.text);
}

INSTANTIATE_TEST_SUITE_P(Chips, PreviewSteps, ::testing::Values(
    StepCase{iSmallOnePage, 0, "<Card Layout>", "<2 kbit/256 bytes card>", "grdPreview0", 1, 1, "Card Serial Number"},
    StepCase{iBigOnePage, 2, "Blocks 128 - 159", "<16 kbit (2 kbyte) card, non-paged>", "grdPreview1", 32, 0, "191"},
    StepCase{iBigEightPages, 2, "Page 4", "<16 kbit (2 kbyte) card, paged>", "grdPreview1", 9, 1, "Badge"}));

}  // namespace
}  // namespace kestrin
