#include <gtest/gtest.h>

#include <QTableView>
#include "control/IClass.h"

using namespace kestrin;

// Database updates of a layout opened before the host fetched its fields are named once the
// fields arrive, without the layout counting as changed.
TEST(IClassFields, FetchingFieldsNamesTheDatabaseUpdatesOfAnOpenLayout) {
    IClass control;
    control.setProperty("ProjectFile", QString(KESTRIN_WIDGET_EXAMPLES "/project/Sample.ini"));
    ASSERT_TRUE(control.OpenLayout(KESTRIN_WIDGET_EXAMPLES "/layouts/Visitors16K.IIF"));
    EXPECT_EQ(control.dbUpdateGrid()->model()->index(0, 1).data().toString(), "");
    EXPECT_TRUE(control.FetchDBFields());
    EXPECT_EQ(control.dbUpdateGrid()->model()->index(0, 1).data().toString(), "ACCESSLEVEL");
    EXPECT_EQ(control.dbUpdateGrid()->model()->index(1, 1).data().toString(), "ENCODECOUNT");
    EXPECT_TRUE(control.property("Saved").toBool());
}
