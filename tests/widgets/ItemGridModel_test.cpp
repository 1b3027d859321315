// The item grid and database-update grid models, read through the model interface as a
// view reads them, with Qt's model checker attached before the first rebuild.
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QFile>
#include <QSignalSpy>
#include <QStringList>
#include <QTemporaryDir>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "control/DbUpdateGridModel.h"
#include "control/ItemGridModel.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

using test::bitField;
using test::dbUpdate;
using test::field;

// Collects what the model checker complains about; it reports through Qt's warning channel.
QStringList g_checkerMessages;

void collectCheckerMessages(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtDebugMsg && context.category && QByteArray(context.category).startsWith("qt.modeltest"))
        g_checkerMessages << message;
}

// Both models, each watched by a model checker from the start, and a translator without libraries.
class GridModels : public ::testing::Test {
protected:
    void SetUp() override {
        g_checkerMessages.clear();
        m_previousHandler = qInstallMessageHandler(collectCheckerMessages);
        m_itemChecker = std::make_unique<QAbstractItemModelTester>(
            &items, QAbstractItemModelTester::FailureReportingMode::Warning);
        m_dbChecker = std::make_unique<QAbstractItemModelTester>(
            &updates, QAbstractItemModelTester::FailureReportingMode::Warning);
    }
    void TearDown() override {
        m_itemChecker.reset();
        m_dbChecker.reset();
        qInstallMessageHandler(m_previousHandler);
        EXPECT_TRUE(g_checkerMessages.isEmpty()) << g_checkerMessages.join('\n').toStdString();
    }

    void rebuild(const RecordArray& records) {
        items.rebuild(records, translator);
        updates.rebuild(records, translator);
    }

    static QString cell(const QAbstractItemModel& model, int row, int column) {
        return model.data(model.index(row, column)).toString();
    }
    static QStringList rowTexts(const QAbstractItemModel& model, int row) {
        QStringList texts;
        for (int c = 0; c < model.columnCount(); ++c) texts << cell(model, row, c);
        return texts;
    }
    static QString header(const QAbstractItemModel& model, int column) {
        return model.headerData(column, Qt::Horizontal).toString();
    }

    Translator translator;
    ItemGridModel items;
    DbUpdateGridModel updates;

private:
    QtMessageHandler m_previousHandler = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_itemChecker;
    std::unique_ptr<QAbstractItemModelTester> m_dbChecker;
};

TEST_F(GridModels, AnEmptyLayoutShowsOneEmptyRowThatIsNoItem) {
    RecordArray records;
    records.add(field("F1", 0, 19, 0, 4));
    rebuild(records);  // first something, so the empty rebuild has to clear it
    ASSERT_EQ(items.rowCount(), 1);
    ASSERT_EQ(cell(items, 0, 1), "F1");

    rebuild(RecordArray());
    for (const QAbstractItemModel* model : {static_cast<QAbstractItemModel*>(&items),
                                            static_cast<QAbstractItemModel*>(&updates)}) {
        ASSERT_EQ(model->rowCount(), 1);
        for (const QString& text : rowTexts(*model, 0)) EXPECT_TRUE(text.isEmpty()) << text.toStdString();
    }
    EXPECT_EQ(items.itemCount(), 0);
    EXPECT_EQ(updates.itemCount(), 0);
}

TEST_F(GridModels, DatabaseUpdatesAreSkippedInTheItemGridAndNumberedWithoutGaps) {
    RecordArray records;
    records.add(dbUpdate("Printed", "Constant", "yes"));
    records.add(field("A", 0, 20, 0, 2));
    records.add(dbUpdate("Serial", "CardSnNr", "0"));
    records.add(field("B", 0, 21, 0, 2));
    records.add(dbUpdate("SerialHex", "CardSnNr", "1"));
    records.add(dbUpdate("Counter", "Count", "5", "100"));
    records.add(dbUpdate("SerialEmpty", "CardSnNr", ""));
    rebuild(records);

    ASSERT_EQ(items.rowCount(), 2);
    EXPECT_EQ(cell(items, 0, 1), "A");
    EXPECT_EQ(cell(items, 1, 1), "B");

    const std::vector<QStringList> expected = {
        {"", "Printed", "Constant", "<Value>: yes."},
        {"", "Serial", "CardSnNr", "<Decimal>"},
        {"", "SerialHex", "CardSnNr", "<Hexadecimal>"},
        {"", "Counter", "Count", "<Step>: 5. <Start value>: 100."},
        {"", "SerialEmpty", "CardSnNr", "<Decimal>"},
    };
    ASSERT_EQ(updates.rowCount(), static_cast<int>(expected.size()));
    EXPECT_EQ(updates.itemCount(), static_cast<int>(expected.size()));
    for (int row = 0; row < updates.rowCount(); ++row)
        EXPECT_EQ(rowTexts(updates, row), expected[static_cast<size_t>(row)]) << "row " << row;
}

TEST_F(GridModels, OnlyItemsMakeTheUpdateGridShowItsEmptyRow) {
    RecordArray records;
    records.add(field("A", 0, 20, 0, 2));
    rebuild(records);
    ASSERT_EQ(updates.rowCount(), 1);
    EXPECT_EQ(updates.itemCount(), 0);
    EXPECT_EQ(rowTexts(updates, 0), QStringList({"", "", "", ""}));
}

}  // namespace
}  // namespace kestrin
