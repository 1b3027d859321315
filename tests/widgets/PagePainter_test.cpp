#include "preview/PagePainter.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTableWidget>
#include <gtest/gtest.h>
#include <memory>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "support/Records.h"

namespace kestrin {
namespace {

const QColor kGreen(0, 192, 0), kBlue(0, 0, 255), kYellow(255, 255, 0), kWhite(255, 255, 255);
const QColor kInside(235, 235, 235), kBeyond(215, 215, 215), kItem(0xCC, 0x66, 0x33);

QColor background(const QTableWidget& g, int row, int column) { return g.item(row, column)->background().color(); }
ItemRecord item(const char* name, int page, int block, int byte, int bytes) {
    return test::field(name, page, block, byte, bytes, 0, 0x3366CC);
}
ItemRecord bits(int block, int byte, int bit, int count) { return test::bitField("B", 0, block, byte, bit, count, 0x3366CC); }
ItemRecord dbUpdate() {
    ItemRecord r = item("F", 0, 20, 0, 2);
    r.isDbUpdate = true;
    return r;
}

// A page of a card; virtualPage > 0 stands for a later 32-block part of the 16 kbit one-page card.
struct Page {
    CIClass card;
    CPage page;
    Page(IClassType chip, bool hid, int number, int virtualPage = 0, int boundary = -1) {
        card.setChipSize(chip);
        card.setUseHIDSection(hid);
        if (boundary >= 0) card.SetBoundary(number, boundary);
        page = *card.page(number);
        page.VirtualPage = virtualPage;
        if (virtualPage > 0) page.HasHeader = page.HasHIDSpace = false;
    }
};

struct AreaCase {
    const char* name;
    IClassType chip;
    bool hid;
    int page, virtualPage, boundary;
    bool wholePage, header, hidRows;
    int rows, firstBlock, yellowRow, greyRow, beyondRow;  // greyRow 0: no grey
};

class PageAreas : public ::testing::TestWithParam<AreaCase> {};

TEST_P(PageAreas, FixedAreasBlockNumbersAndFreeBytes) {
    const AreaCase& c = GetParam();
    const QStringList names = QString("Card Serial Number|Configuration Data|Not Used|Key 1|Key 2|Application Issuer Data").split('|');
    Page p(c.chip, c.hid, c.page, c.virtualPage, c.boundary);
    std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
    paintPage(*g, p.page, RecordArray(), c.wholePage);
    ASSERT_EQ(g->rowCount(), c.rows);
    for (int row = 1; row < c.rows; ++row) {
        SCOPED_TRACE(row);
        EXPECT_EQ(g->item(row, 0)->text(), QString::number(c.firstBlock + row - 1));
        EXPECT_EQ(background(*g, row, 0) == kYellow, row >= c.yellowRow);
        QString text;
        QColor color = c.greyRow == 0 || row < c.greyRow ? kWhite : row < c.beyondRow ? kInside : kBeyond;
        if (c.header && row <= 6) text = names[row - 1], color = kGreen;
        if (c.hidRows && row >= 7 && row <= 19) text = "HID Access Control Application", color = kBlue;
        for (int column = 1; column <= 8; ++column) {
            EXPECT_EQ(g->item(row, column)->text(), text);
            EXPECT_EQ(background(*g, row, column), color);
        }
        EXPECT_EQ(g->columnSpan(row, 1), text.isEmpty() ? 1 : 8);
    }
}

INSTANTIATE_TEST_SUITE_P(Chips, PageAreas, ::testing::Values(
    AreaCase{"SmallHid", iSmallOnePage, true, 0, 0, -1, false, true, true, 33, 0, 20, 0, 0},
    AreaCase{"SmallNoHid", iSmallOnePage, false, 0, 0, -1, false, true, false, 33, 0, 7, 0, 0},
    AreaCase{"BigWholeHid", iBigOnePage, true, 0, 0, -1, true, true, true, 257, 0, 20, 0, 0},
    AreaCase{"BigPart0Hid", iBigOnePage, true, 0, 0, -1, false, true, true, 33, 0, 20, 0, 0},
    AreaCase{"BigPart3", iBigOnePage, true, 0, 3, -1, false, false, false, 33, 96, 1, 0, 0},
    AreaCase{"Eight0Hid", iBigEightPages, true, 0, 0, -1, false, true, true, 33, 0, 20, 20, 20},
    AreaCase{"Eight0NoHid", iBigEightPages, false, 0, 0, -1, false, true, false, 33, 0, 7, 7, 20},
    AreaCase{"Eight5Boundary10", iBigEightPages, true, 5, 0, 10, false, true, false, 33, 0, 7, 7, 12},
    AreaCase{"Eight3Boundary32", iBigEightPages, true, 3, 0, 32, false, true, false, 33, 0, 7, 7, 34},
    AreaCase{"Eight1Boundary6", iBigEightPages, true, 1, 0, 6, false, true, false, 33, 0, 7, 7, 8}),
    [](const auto& p) { return std::string(p.param.name); });

struct ItemCase {
    const char* name;
    IClassType chip;
    int page, virtualPage;
    bool wholePage;
    ItemRecord record;
    std::vector<std::pair<int, int>> cells;  // (row, column) expected to show the item, in reading order
};

class ItemCells : public ::testing::TestWithParam<ItemCase> {};

TEST_P(ItemCells, PaintsExactlyTheBytesTouched) {
    const ItemCase& c = GetParam();
    Page p(c.chip, true, c.page, c.virtualPage);
    RecordArray records;
    records.add(c.record);
    std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
    paintPage(*g, p.page, records, c.wholePage);
    std::vector<std::pair<int, int>> shown;
    for (int row = 1; row < g->rowCount(); ++row)
        for (int column = 1; column <= 8; ++column)
            if (g->item(row, column)->text() == QString::fromStdString(c.record.name)) {
                shown.emplace_back(row, column);
                EXPECT_EQ(background(*g, row, column), kItem);
            }
    EXPECT_EQ(shown, c.cells);
}

INSTANTIATE_TEST_SUITE_P(Items, ItemCells, ::testing::Values(
    ItemCase{"BitsOverTwoBytes", iSmallOnePage, 0, 0, false, bits(20, 3, 5, 6), {{21, 4}, {21, 5}}},
    ItemCase{"LastBitOfBlock", iSmallOnePage, 0, 0, false, bits(25, 7, 7, 1), {{26, 8}}},
    ItemCase{"BitFunction", iSmallOnePage, 0, 0, false, test::bitFunction("Count", "1", 0, 22, 0, 0, 16, 0x3366CC),
             {{23, 1}, {23, 2}}},
    ItemCase{"ClippedAtByte255", iSmallOnePage, 0, 0, false, item("F", 0, 31, 4, 10), {{32, 5}, {32, 6}, {32, 7}, {32, 8}}},
    ItemCase{"OwnPage", iBigEightPages, 2, 0, false, item("F", 2, 10, 0, 2), {{11, 1}, {11, 2}}},
    ItemCase{"OtherPage", iBigEightPages, 3, 0, false, item("F", 2, 10, 0, 2), {}},
    ItemCase{"PartOffset", iBigOnePage, 0, 2, false, item("F", 0, 70, 6, 4), {{7, 7}, {7, 8}, {8, 1}, {8, 2}}},
    ItemCase{"AcrossPartsHead", iBigOnePage, 0, 0, false, item("F", 0, 31, 6, 4), {{32, 7}, {32, 8}}},
    ItemCase{"AcrossPartsTail", iBigOnePage, 0, 1, false, item("F", 0, 31, 6, 4), {{1, 1}, {1, 2}}},
    ItemCase{"WholePageEnd", iBigOnePage, 0, 0, true, item("F", 0, 255, 7, 3), {{256, 8}}},
    ItemCase{"DatabaseUpdate", iSmallOnePage, 0, 0, false, dbUpdate(), {}},
    ItemCase{"NoLength", iSmallOnePage, 0, 0, false, item("F", 0, 20, 0, 0), {}}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(PagePainter, MergesRunsOfEqualTextAndClearsThemOnRepaint) {
    Page withItems(iBigEightPages, true, 1), empty(iBigEightPages, true, 2);
    RecordArray records;
    for (const ItemRecord& r : {item("A", 1, 10, 0, 3), item("B", 1, 10, 3, 2), item("A", 1, 10, 5, 3),
                                item("C", 1, 11, 0, 8), item("D", 1, 12, 0, 1), item("E", 1, 12, 1, 1)})
        records.add(r);
    std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
    paintPage(*g, withItems.page, records);
    for (auto [row, column, span] : {std::tuple{11, 1, 3}, {11, 4, 2}, {11, 6, 3}, {12, 1, 8}, {13, 1, 1}, {13, 2, 1}})
        EXPECT_EQ(g->columnSpan(row, column), span) << row << "," << column;
    EXPECT_EQ(g->item(12, 8)->text(), "C");
    EXPECT_EQ(background(*g, 12, 8), kItem);

    QTableWidgetItem* cell = g->item(12, 4);
    paintPage(*g, empty.page, records);
    EXPECT_EQ(g->item(12, 4), cell) << "cells are reused while the row count stays";
    EXPECT_EQ(g->columnSpan(12, 1), 1);
    EXPECT_EQ(g->item(12, 4)->text(), QString());
    EXPECT_EQ(background(*g, 12, 4), kInside);
}

TEST(PagePainter, GridHasHeaderRowCentredCellsAndFitsWithoutScrolling) {
    Page p(iBigOnePage, true, 0);
    for (bool whole : {false, true}) {
        std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
        EXPECT_TRUE(g->horizontalHeader()->isHidden() && g->verticalHeader()->isHidden());
        paintPage(*g, p.page, RecordArray(), whole);
        fitPageGrid(*g);
        g->show();
        ASSERT_EQ(g->columnCount(), 9);
        for (int column = 0; column < 9; ++column) {
            EXPECT_EQ(g->columnWidth(column), qRound(400.0 * g->logicalDpiX() / 1440.0));
            EXPECT_EQ(g->item(0, column)->text(), column == 0 ? QString() : QString::number(column - 1));
        }
        EXPECT_EQ(g->item(g->rowCount() - 1, 8)->textAlignment(), int(Qt::AlignCenter));
        EXPECT_EQ(g->verticalScrollBar()->maximum(), 0);
        EXPECT_EQ(g->horizontalScrollBar()->maximum(), 0);
        EXPECT_GE(g->viewport()->height(), g->verticalHeader()->length());
        EXPECT_GE(g->viewport()->width(), g->horizontalHeader()->length());
    }
}

}  // namespace
}  // namespace kestrin
