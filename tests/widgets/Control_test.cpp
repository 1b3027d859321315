// The control as a host meets it: its automation members by name, its events, the message
// boxes answered through the prompter, the dialogs it runs, the grids, and the Designer plugin.
#include "DialogFixture.h"
#include "base/ProductInfo.h"
#include "base/Twips.h"
#include "control/IClass.h"
#include "control/LanguageLibraries.h"
#include "persist/ProfileDocument.h"
#include "preview/PrintServices.h"

#ifdef KESTRIN_DESIGNER_PLUGIN
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#endif

namespace kestrin::test {
namespace {

// A host that reaches the control only through the meta-object by member name, answers message
// boxes through a recording prompter and the save dialog through a recording file chooser, and
// drives every modal dialog through the control's dialog runner. Texts read "T<id>".
struct Host : FileChooser {
    QString saveFileName(QWidget*, const QString& title, const QString& folder, const QString& filter) override {
        chosen << title << folder << filter;
        return answer;
    }
    QString answer;      // the save dialog's answer; empty: the operator cancels
    QStringList chosen;  // title, folder and filter of each save dialog
    TempDir dir;
    CatalogRegistry registry;
    RecordingPrompter prompter{Answer::Yes};
    IClass control;
    std::vector<QString> dialogs;           // object names of the dialogs run, in order
    std::function<int(QDialog&)> onDialog;  // what the operator does; none: cancel
    std::vector<QString> events;            // Changed / GenericEvent in the order raised

    Host() {
        control.setPrompter(&prompter);
        control.setFileChooser(this);
        control.setCatalogRegistry(&registry);
        control.setDialogRunner([this](QDialog& d) {
            return dialogs.push_back(d.objectName()), onDialog ? onDialog(d) : (d.reject(), int(QDialog::Rejected));
        });
        QObject::connect(&control, &IClass::Changed, [this] { events.push_back("Changed"); });
        QObject::connect(&control, &IClass::GenericEvent, [this](const QString& name, const QString& params) {
            events.push_back("GenericEvent " + name + " " + params);
        });
        set("LanguageDLL", numberedLibrary(registry, dir / "texts.txt", {3104, 3105, 3112, 3113, 3115, 3116, 3117, 3118, 3119,
                                                                         3120, 3121, 3122, 3123, 3124, 3195, 3196, 4607, 4642}));
        writeBytes(dir / "Project.ini", crlf({"[DATABASE]", "NUMCOLUMNS=2", "[COLUMN1]", "DbFIELD=NAME", "NAME=Surname",
                                              "FIELDTYPE=Character", "FIELDSIZE=20", "[COLUMN2]", "DbFIELD=NUMBER",
                                              "NAME=Number", "FIELDTYPE=Number", "FIELDSIZE=6"}));
    }
    QString path(const std::string& name) const { return QString::fromStdString((dir / name).string()); }
    void set(const char* name, const QVariant& value) { EXPECT_TRUE(control.setProperty(name, value)) << name; }
    QVariant get(const char* name) const { return control.property(name); }
    template <class... A>
    void call(const char* member, A... args) {
        EXPECT_TRUE(QMetaObject::invokeMethod(&control, member, QArgument<A>(QMetaType::fromType<A>().name(), args)...))
            << member;
    }
    template <class R, class... A>
    R callFor(const char* member, A... args) {
        R result{};
        EXPECT_TRUE(QMetaObject::invokeMethod(&control, member, QReturnArgument<R>(QMetaType::fromType<R>().name(), result),
                                              QArgument<A>(QMetaType::fromType<A>().name(), args)...)) << member;
        return result;
    }
    // The start a host makes: its settings, a new layout, the project's fields.
    void startLayout() {
        set("ProjectFile", path("Project.ini"));
        set("EncodePath", path(""));
        call("NewLayout", false);
        EXPECT_TRUE(callFor<bool>("FetchDBFields"));
    }
    QTableView* grid(const char* name) const { return control.findChild<QTableView*>(name); }
    QString cell(const char* gridName, int row, int column) const {
        return grid(gridName)->model()->index(row, column).data().toString();
    }
};

// Adds the first database field through the item editor as the operator would: at the given
// block, begin byte 0, four bytes, Apply and OK.
int addFieldInEditor(QDialog& dialog, int block) {
    const Controls ed{&dialog};
    dialog.show();
    ed.clickField(0);
    ed.place(block, 0, "4");
    ed.click("cmdApply");
    ed.click("cmdOK");
    return dialog.result();
}

const std::vector<QString> kRefresh = {"Changed", "GenericEvent Hallo xyz"};
// Qt's model checker stops the run at the first inconsistency of a grid's model.
constexpr auto kFatal = QAbstractItemModelTester::FailureReportingMode::Fatal;

// Before any layout both grids show their headings (by text number; "Page" stays English), the
// column widths in twips and one empty row, and they share the control's size as it changes.
TEST(IClassGrids, AControlJustMadeShowsItsGridsAndTheyFollowItsSize) {
    Host host;
    host.control.resize(700, 400);
    host.control.show();
    const auto shown = [&](const char* name) {
        QStringList out;
        const QAbstractItemModel& m = *host.grid(name)->model();
        for (int c = 0; c < m.columnCount(); ++c)
            out << m.headerData(c, Qt::Horizontal).toString() + "/" + QString::number(host.grid(name)->columnWidth(c));
        return out << QString::number(m.rowCount());
    };
    const auto px = [dpi = host.control.logicalDpiX()](int twips) { return "/" + QString::number(twipsToPixels(twips, dpi)); };
    EXPECT_EQ(shown("grdItems"), QStringList({px(400), "T3113" + px(3500), "T3118" + px(1000), "Page" + px(1000),
                                              "T3115" + px(1000), "T3116" + px(1000), "T3117" + px(1000), "T4607" + px(1000),
                                              "T4642" + px(1000), "1"}));
    EXPECT_EQ(shown("grdDBUpdateFields"), QStringList({px(400), "T3119" + px(3000), "T3112" + px(3000), "T3120" + px(5000), "1"}));
    for (const QSize size : {QSize(700, 400), QSize(500, 300), QSize(900, 620)}) {
        host.control.resize(size);
        const QRect items = host.grid("grdItems")->geometry(), updates = host.grid("grdDBUpdateFields")->geometry();
        EXPECT_EQ(std::make_tuple(items.width(), updates.width(), items.top(), updates.top(), updates.bottom() + 1),
                  std::make_tuple(size.width(), size.width(), 0, items.bottom() + 1, size.height()));
    }
    const IClass bare;  // no library handed over: the default texts
    EXPECT_EQ(std::make_tuple(bare.itemGrid()->model()->headerData(1, Qt::Horizontal).toString(),
                              bare.itemGrid()->columnWidth(1), bare.itemGrid()->model()->rowCount(),
                              bare.itemGrid()->model()->headerData(1, Qt::Horizontal, Qt::ToolTipRole)),  // text only
              std::make_tuple(QString("<Field(s) or Function>"), twipsToPixels(3500, bare.logicalDpiX()), 1, QVariant()));
}

// Database updates of a layout opened before the host fetched its fields are named once the
// fields arrive, without the layout counting as changed. A key or a mouse press in a grid makes it
// the grid worked in; there Delete asks and removes the current row and Enter opens its dialog.
// The strip between the grids drags their boundary.
TEST(IClassGrids, FetchedFieldsNameTheUpdatesKeysActOnTheGridWorkedInAndTheStripDragsTheBoundary) {
    Host host;
    QAbstractItemModelTester checker(host.grid("grdDBUpdateFields")->model(), kFatal);
    host.set("ProjectFile", QString(KESTRIN_WIDGET_EXAMPLES "/project/Sample.ini"));
    ASSERT_TRUE(host.callFor<bool>("OpenLayout", QString(KESTRIN_WIDGET_EXAMPLES "/layouts/Visitors16K.IIF")));
    const auto updates = [&] {  // field, function and settings of the two updates
        QStringList cells;
        for (int row = 0; row < 2; ++row)
            for (int column = 1; column < 4; ++column) cells << host.cell("grdDBUpdateFields", row, column);
        return cells.join('|');
    };
    EXPECT_EQ(updates(), "|Constant|<Value>: 1.||CardSnNr|<Decimal>");
    ASSERT_TRUE(host.callFor<bool>("FetchDBFields"));
    EXPECT_EQ(std::make_pair(updates(), host.get("Saved").toBool()),
              std::make_pair(QString("ACCESSLEVEL|Constant|<Value>: 1.|ENCODECOUNT|CardSnNr|<Decimal>"), true));
    host.control.resize(600, 400);
    host.control.show();
    const int items = host.control.document().records().size();
    for (const auto& [gridName, selected, dialog] : {std::tuple{"grdDBUpdateFields", "DBUpdates", "frmDBUpdate"},
                                                     std::tuple{"grdItems", "FieldsFunctions", "frmEditiClass"}}) {
        host.dialogs.clear();
        QTest::keyClick(host.grid(gridName), Qt::Key_Return);
        EXPECT_EQ(std::make_pair(host.get("SelectedGrid").toString(), host.dialogs),
                  std::make_pair(QString(selected), std::vector<QString>{dialog}));
        QTest::keyClick(host.grid(gridName), Qt::Key_Delete);
    }
    EXPECT_EQ(std::make_pair(host.control.document().records().size(), texts(host.prompter)),
              std::make_pair(items - 2, std::vector<std::string>{"T3104\r\nT3105", "T3104\r\nT3105"}));
    for (const auto& [gridName, selected] : {std::pair{"grdDBUpdateFields", "DBUpdates"}, std::pair{"grdItems", "FieldsFunctions"}}) {
        QTableView* grid = host.grid(gridName);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(grid->model()->index(0, 1)).center());
        EXPECT_EQ(host.get("SelectedGrid").toString(), selected);
    }

    QWidget* strip = host.control.childAt(300, host.grid("grdItems")->geometry().bottom());
    ASSERT_TRUE(strip && strip != host.grid("grdItems") && strip != host.grid("grdDBUpdateFields"));
    const auto at = [&](int y) { return strip->mapFrom(&host.control, QPoint(300, y)); };
    QTest::mousePress(strip, Qt::LeftButton, {}, at(200));
    QTest::mouseMove(strip, at(120));
    QTest::mouseRelease(strip, Qt::LeftButton, {}, at(120));
    QMouseEvent released(QEvent::MouseMove, at(300), strip->mapToGlobal(at(300)), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(strip, &released);  // released: the boundary stays
    EXPECT_EQ(std::make_tuple(host.grid("grdItems")->height(), host.grid("grdDBUpdateFields")->geometry().top(),
                              host.grid("grdDBUpdateFields")->height(), host.grid("grdDBUpdateFields")->isVisible()),
              std::make_tuple(120, 120, 280, true));
}

// The probe name "1" does nothing; any other name tells, under the host's name, that the
// control is out of date (the host script, session.script, checks the whole text and makes the
// call with a parameter list).
TEST(IClassBridge, TheProbeNameDoesNothingAndAnyOtherNameTellsTheControlIsOutOfDate) {
    const std::function<void(Host&, const QString&)> calls[] = {
        [](Host& h, const QString& n) { h.call("CallGenericFunction", n); },
        [](Host& h, const QString& n) { h.call("SetPropertyValue", n, QString("v")); },
        [](Host& h, const QString& n) { EXPECT_EQ(h.callFor<QString>("GetPropertyValue", n), ""); },
        [](Host& h, const QString& n) { h.call("SetObjectProperty", n, static_cast<QObject*>(&h.control)); },
        [](Host& h, const QString& n) { EXPECT_EQ(h.callFor<QObject*>("GetObjectProperty", n), nullptr); },
    };
    for (const auto& call : calls) {
        Host host;
        host.set("AppName", "Badge host");
        call(host, "1");
        call(host, "Export");
        ASSERT_EQ(host.prompter.messages.size(), 1u);  // the one for Export
        const auto& m = host.prompter.messages[0];
        EXPECT_EQ(std::make_tuple(m.icon, m.question, m.title, host.events.size(),
                                  m.text.ends_with(std::string(kProgramName) + ";\r\nCalled function is: Export.")),
                  std::make_tuple(Icon::Exclamation, false, std::string("Badge host"), 0u, true)) << m.text;
    }
}

// EditItem opens the editor on the current row; RemoveItem asks and removes it.
TEST(IClassSession, AHostMakesEditsSavesClosesAndReopensALayoutByMemberName) {
    Host host;
    QAbstractItemModelTester checker(host.grid("grdItems")->model(), kFatal);
    host.startLayout();
    for (int block : {20, 25}) {
        host.onDialog = [block](QDialog& d) { return addFieldInEditor(d, block); };
        host.events.clear();
        host.call("AddField");
        EXPECT_EQ(host.events, kRefresh);
    }
    EXPECT_EQ(std::make_tuple(host.dialogs, host.cell("grdItems", 0, 1), host.cell("grdItems", 1, 4), host.get("Saved").toBool(),
                              host.get("UseHID").toBool()),  // a new layout uses the HID area
              std::make_tuple(std::vector<QString>{"frmEditiClass", "frmEditiClass"}, QString("NAME"), QString("25"), false, true));
    host.grid("grdItems")->setCurrentIndex(host.grid("grdItems")->model()->index(1, 1));
    QString block;
    bool readOnly = false;  // the operator edits through the dialogs only: no grid takes typing
    const auto gridsReadOnly = [](const QWidget& w) {
        const auto grids = w.findChildren<QTableView*>();
        return !grids.empty() && std::all_of(grids.begin(), grids.end(),
                                             [](auto* g) { return g->editTriggers() == QAbstractItemView::NoEditTriggers; });
    };
    host.onDialog = [&](QDialog& d) {
        readOnly = gridsReadOnly(d) && d.findChild<QLineEdit*>("txtSelectedField")->isReadOnly();
        return block = d.findChild<QComboBox*>("cboRow")->currentText(), int(QDialog::Rejected);
    };
    host.call("EditItem");
    EXPECT_EQ(std::tuple(block, readOnly, gridsReadOnly(host.control), host.control.objectName()),
              std::tuple("25", true, true, "iClass"));
    host.call("RemoveItem");
    EXPECT_EQ(std::make_pair(texts(host.prompter), host.control.document().records().size()),
              std::make_pair(std::vector<std::string>{"T3104\r\nT3105"}, 1));

    // SaveLayout asks for a name in the encode folder the first time; the chip encode file goes there.
    std::filesystem::create_directories(host.dir / "encode");
    host.set("EncodePath", host.path("encode"));
    EXPECT_FALSE(host.callFor<QVariant>("SaveLayout").toBool());  // no name chosen: cancelled
    host.answer = host.path("Staff");
    EXPECT_TRUE(host.callFor<QVariant>("SaveLayout").toBool());
    const QStringList asked{"T3122", host.path("encode"), "Lumisk (*.IIF);;T3121 (*.*)"};
    EXPECT_EQ(std::make_tuple(host.chosen, texts(host.prompter), host.get("LayoutFile").toString(), host.get("Saved").toBool(),
                              std::filesystem::exists(host.dir / "encode" / "Staff.CHP"),
                              ProfileDocument::parse(readBytes(host.dir / "Staff.IIF")).getInt("CARDDESIGN", "UseHID", 0)),
              std::make_tuple(asked + asked, std::vector<std::string>{"T3104\r\nT3105", "T3123"}, host.path("Staff.IIF"), true,
                              true, 1));

    EXPECT_TRUE(host.callFor<bool>("CloseLayout"));
    EXPECT_EQ(std::make_tuple(texts(host.prompter).back(), host.cell("grdItems", 0, 1), host.grid("grdItems")->model()->rowCount(),
                              host.get("CLessLayoutEntered").toBool(), host.get("Saved").toBool(), host.get("LayoutFile").toString()),
              std::make_tuple(std::string("T3124"), QString(), 1, false, false, QString()));

    host.events.clear();
    EXPECT_TRUE(host.callFor<bool>("OpenLayout", host.path("Staff.IIF")));
    EXPECT_EQ(std::make_tuple(host.cell("grdItems", 0, 1), host.cell("grdItems", 0, 4), host.get("Saved").toBool(), host.events),
              std::make_tuple(QString("NAME"), QString("20"), true, kRefresh));
}

// Each member, whether it does nothing until a layout is entered, the dialog it opens and the
// message it shows. A dialog the operator cancels leaves the grids, the card and the saved mark as they were.
TEST(IClassCommands, ItemDialogsOpenWhileALayoutIsEnteredAndACancelledOneChangesNothing) {
    const std::tuple<const char*, bool, std::vector<QString>, std::vector<std::string>> cases[] = {
        {"AddField", true, {"frmEditiClass"}, {}},
        {"AddFunction", true, {"frmEditiClass"}, {}},
        {"AddDBUpdateItem", true, {"frmDBUpdate"}, {}},
        {"EditItem", true, {"frmEditiClass"}, {}},
        {"AddItemOverMultipleTracks", false, {"frmMultiTrack"}, {}},
        {"ShowAbout", false, {"frmAbout"}, {}},
        {"AddBitField", false, {}, {"This function has not been implemented yet!"}},
        {"AddBitFunction", false, {}, {"This function has not been implemented yet!"}},
    };
    for (const auto& [member, gated, opened, told] : cases) {
        SCOPED_TRACE(member);
        Host host;
        host.call(member);
        EXPECT_EQ(host.dialogs, gated ? std::vector<QString>{} : opened);
        Host saved;
        saved.startLayout();
        saved.answer = saved.path("Saved.IIF");
        ASSERT_TRUE(saved.callFor<bool>("SaveiClassAs"));
        saved.events.clear();
        saved.prompter.messages.clear();
        saved.call(member);
        EXPECT_EQ(std::make_tuple(saved.dialogs, texts(saved.prompter), saved.events.size(), saved.get("Saved").toBool()),
                  std::make_tuple(opened, told, 0u, true));
    }
}

// The operator switches bitwise encoding in the properties dialog and leaves it by OK or Cancel.
TEST(IClassCommands, PropertiesConfirmedAreOneChangeAndCancelledNone) {
    Host host;
    const auto switchBitwiseThen = [](const char* button) {
        return [button](QDialog& d) {
            d.show();
            Controls{&d}.click("chkICBitwise");
            Controls{&d}.click(button);
            return d.result();
        };
    };
    host.onDialog = switchBitwiseThen("cmdOK");
    host.call("NewLayout", true);
    EXPECT_EQ(std::make_tuple(host.dialogs, host.events, host.get("UseBit").toBool()),
              std::make_tuple(std::vector<QString>{"frmProperties"}, kRefresh, true));
    host.events.clear();
    host.onDialog = switchBitwiseThen("cmdCancel");
    host.call("SetProperties");
    EXPECT_EQ(std::make_pair(host.events, host.get("UseBit").toBool()), std::make_pair(std::vector<QString>{}, true));
    host.onDialog = switchBitwiseThen("cmdOK");
    host.call("SetProperties");
    EXPECT_EQ(std::make_tuple(host.events, host.get("Saved").toBool(), host.get("UseBit").toBool()),
              std::make_tuple(std::vector<QString>{"Changed"}, false, false));
    host.set("UseBit", true);  // the property goes into the card
    EXPECT_TRUE(host.control.document().card()->EnableBitwise());
}

// No C++ exception leaves a member: a raised error reaches the host through the exception
// signal before the member returns. Without a layout the card commands leave no card for the preview.
TEST(IClassCommands, RaisedErrorsArriveThroughTheExceptionSignalAndTheCardCommandsNeedALayout) {
    Host host;
    QStringList errors;
    QObject::connect(&host.control, &IClass::exception, [&](int code, const QString& source, const QString& text) {
        errors << QStringLiteral("%1 %2: %3").arg(code).arg(source, text);
    });
    EXPECT_FALSE(host.callFor<bool>("OpenLayout", QString()));
    EXPECT_FALSE(host.callFor<bool>("OpenLayout", host.path("Missing.IIF")));
    for (bool layout : {false, true}) {
        if (layout) {
            host.call("NewLayout", false);
            host.call("SetAppBoundaries", QString("10|11|12|13|14|15|16|17"));  // a one-page card takes none
        }
        const IClass::IClassType chip = IClass::iBigEightPages;
        EXPECT_TRUE(QMetaObject::invokeMethod(&host.control, "SetChipType", QGenericArgument("IClassType", &chip)));
        host.call("SetAppBoundaries", QString("10|12|13|14|15|16|17|18"));
        host.call("ShowPreview");
    }
    ASSERT_EQ(errors.size(), 3);
    EXPECT_EQ(errors.mid(0, 2) << errors[2].left(2),
              QStringList({"52 iClass UserControl: No filename given.", "53 iClass UserControl: File doesn't exist", "9 "}));
    EXPECT_EQ(std::make_tuple(texts(host.prompter), host.control.document().card()->GetBoundary(1), host.dialogs),
              std::make_tuple(std::vector<std::string>{"Error: no iClass object found!"}, 12, std::vector<QString>{"frmPreview"}));
}

// The language libraries a host hands over. One that cannot be loaded gives no handle and a reason
// naming the file, and the control keeps its texts; a custom library equal to the standard one
// re-applies nothing (the row the operator is on stays current), another one shows its texts. The
// tool tips are those of the libraries when the grids show again after design mode.
TEST(IClassTexts, TheCustomLibraryOverridesTheStandardOneAndToolTipsFollowAfterDesignMode) {
    Host host;
    const auto shown = [&] {
        return QStringList({host.grid("grdItems")->model()->headerData(1, Qt::Horizontal).toString(),
                            host.grid("grdItems")->toolTip(), host.grid("grdDBUpdateFields")->toolTip()});
    };
    EXPECT_EQ(shown(), QStringList({"T3113", "T3195", "T3196"}));  // those of the library the host handed over
    writeBytes(host.dir / "broken.dll", "MZ this is no Windows image");
    QString why;
    const LanguageHandle broken = loadLanguageLibrary(host.path("broken.dll"), &why);
    EXPECT_TRUE(broken == 0 && why.startsWith("Cannot open the language library \"" + host.path("broken.dll") + "\": "))
        << why.toStdString();
    host.set("CustomLanguageDLL", qlonglong{broken});
    EXPECT_EQ(shown(), QStringList({"T3113", "T3195", "T3196"}));
    QTableView& items = *host.grid("grdItems");
    items.setCurrentIndex(items.model()->index(0, 2));
    host.set("CustomLanguageDLL", host.get("LanguageDLL"));
    EXPECT_EQ(items.currentIndex(), items.model()->index(0, 2));
    writeBytes(host.dir / "custom.txt", "3113=Item\n3195=Items tip\n3196=Updates tip\n");
    host.set("CustomLanguageDLL", host.registry.open(host.dir / "custom.txt"));
    EXPECT_EQ(shown(), QStringList({"Item", "Items tip", "Updates tip"}));
    host.control.setDesignMode(true);
    host.set("CustomLanguageDLL", 0);
    host.control.setDesignMode(false);
    EXPECT_EQ(shown(), QStringList({"T3113", "T3195", "T3196"}));
}

#ifdef KESTRIN_DESIGNER_PLUGIN
// Designer loads the plugin and places the control, which shows its design-mode picture.
TEST(DesignerPlugin, CreatesTheControlInDesignMode) {
    QPluginLoader loader(KESTRIN_DESIGNER_PLUGIN);
    auto* plugin = qobject_cast<QDesignerCustomWidgetInterface*>(loader.instance());
    ASSERT_NE(plugin, nullptr) << loader.errorString().toStdString();
    EXPECT_TRUE(plugin->name() == "kestrin::IClass" && plugin->domXml().contains("kestrin::IClass"));
    std::unique_ptr<QWidget> control(plugin->createWidget(nullptr));
    ASSERT_NE(control, nullptr);
    control->show();
    EXPECT_TRUE(control->findChild<QWidget*>("imgIClass")->isVisible() && !control->findChild<QWidget*>("grdItems")->isVisible());
}
#endif

}  // namespace
}  // namespace kestrin::test
