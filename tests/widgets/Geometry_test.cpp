// Every window the operator meets, in each of its states: the named controls that show lie
// inside the window and none covers another, so each can be read and clicked.
#include "DialogFixture.h"
#include "control/AboutBox.h"
#include "control/IClass.h"
#include "dialogs/frmProperties.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "preview/frmPreview.h"
#include "preview/PrintServices.h"

namespace kestrin::test {
namespace {

// No named control of a shown window collides: lies outside it, or over another (a control
// inside a named frame or page is not over it; a bare strip, such as the grab zone between the
// control's grids, is no control).
void check(QWidget& window, const std::string& state) {
    QApplication::processEvents();
    std::vector<QWidget*> shown;
    for (QWidget* w : window.findChildren<QWidget*>())
        if (!w->objectName().isEmpty() && !w->objectName().startsWith("qt_") && w->isVisible() &&
            w->metaObject() != &QWidget::staticMetaObject)
            shown.push_back(w);
    const auto place = [](const QWidget* w) { return QRect(w->mapToGlobal(QPoint(0, 0)), w->size()); };
    std::vector<std::string> found;
    for (QWidget* w : shown) {
        if (!place(&window).contains(place(w))) found.push_back(w->objectName().toStdString() + " outside");
        for (QWidget* other : shown)
            if (w < other && !w->isAncestorOf(other) && !other->isAncestorOf(w) && place(w).intersects(place(other)))
                found.push_back(w->objectName().toStdString() + " over " + other->objectName().toStdString());
    }
    EXPECT_EQ(found, std::vector<std::string>{}) << window.objectName().toStdString() << " " << state;
}

TEST(Geometry, NoNamedControlLeavesItsWindowOrCoversAnother) {
    for (int32_t mode : {kModeField, kModeBitField, kModeFunction, kModeBitFunction}) {
        DialogFixture d;
        d.open<frmEditiClass>(mode);
        const auto option = [&](const char* name, int i) {
            QAbstractButton* button = d.root->findChild<QAbstractButton*>(QStringLiteral("%1(%2)").arg(name).arg(i));
            if (button && button->isVisible()) button->click();
            return button && button->isVisible();
        };
        if (mode == kModeField || mode == kModeBitField)
            for (int row = 0; row < 5; ++row) {  // each field type with each of its encodings
                d.clickField(row);
                for (int encoding = 0; encoding < 4; ++encoding)
                    if (option("optEncode", encoding))
                        check(*d.root, "field " + std::to_string(row) + " encoding " + std::to_string(encoding));
            }
        if (mode == kModeField) {
            d.clickField(1), option("optEncode", 3);  // a number in BCD, with its format list
            const auto at = [&](const char* name) { return d.child(name)->geometry(); };
            // The format list stands in its caption's row, right of it, and ends where the options end.
            EXPECT_EQ(std::make_tuple(at("cboFormat").top(), at("cboFormat").left() > at("lblFormat").right(), at("cboFormat").right()),
                      std::make_tuple(at("lblFormat").top(), true, at("optEncode(0)").right()));
        }
        for (int function = 0; function < 4; ++function) {
            option("optFunction", function);
            for (int property = 0; property < 4; ++property)  // each representation the function offers
                if (option("optProperty", property) || property == 0)
                    check(*d.root, "mode " + std::to_string(mode) + " function " + std::to_string(function) + " option " +
                                       std::to_string(property));
        }
    }
    DialogFixture d;
    d.open<frmDBUpdate>(-1);
    for (int function = 0; function < 3; ++function) {
        d.click(QStringLiteral("optFunction(%1)").arg(function));
        check(*d.root, "function " + std::to_string(function));
    }
    d.open<frmMultiTrack>(-1);
    check(*d.root, "");
    d.open<frmProperties>();
    for (int tab = 0; tab < 2; ++tab) {
        d.child<QTabWidget>("tabIClass")->setCurrentIndex(tab);
        check(*d.root, "tab " + std::to_string(tab));
    }
    AboutBox about;
    about.show();
    check(about, "");
    frmPreview preview(*d.doc.card(), d.records(), d.doc.translator(), "card.iif", PrintServices{});
    preview.show();
    check(preview, "");
    IClass control;
    control.resize(800, 600);
    control.show();
    check(control, "design");
    control.NewLayout(false);
    check(control, "layout");
}

}  // namespace
}  // namespace kestrin::test
