// The control's host interface: its members in order, its stored properties, the surface
// with the two grids, the events of a refresh, the bridge and the fixed messages.
#include "IClass_test.h"
#include "items/GridRows.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPushButton>
#include <QRegularExpression>
#include <QMetaEnum>
#include <QTest>

#include "base/ProductInfo.h"
#include "control/AboutBox.h"
#include "control/LanguageLibraries.h"
#include "control/ItemGridModel.h"

namespace kestrin::test {
namespace {

struct Member {
    const char* name;
    bool property;
};

// The host interface in its order.
const std::vector<Member> kInterface = {
    {"ProjectFile", true},          {"IifDirectory", true},        {"PellmarkINI", true},
    {"SetChipType", false},         {"SetAppBoundaries", false},   {"AddField", false},
    {"AddFunction", false},         {"AddBitField", false},        {"AddBitFunction", false},
    {"AddDBUpdateItem", false},     {"RemoveItem", false},         {"ShowPreview", false},
    {"NewLayout", false},           {"SetProperties", false},      {"SaveLayout", false},
    {"SaveiClassAs", false},        {"CLessLayoutEntered", true},  {"UseBit", true},
    {"UseHID", true},               {"OpenLayout", false},         {"CloseLayout", false},
    {"LayoutFile", true},           {"EncodePath", true},          {"FetchDBFields", false},
    {"AddItemOverMultipleTracks", false}, {"Saved", true},         {"LanguageDLL", true},
    {"CustomLanguageDLL", true},    {"AppName", true},             {"RemoveDBUpdateItem", false},
    {"SelectedGrid", true},         {"ShowAbout", false},          {"ShowSettings", false},
    {"EditItem", false},            {"CallGenericFunction", false}, {"SetPropertyValue", false},
    {"GetPropertyValue", false},    {"SetObjectProperty", false},  {"GetObjectProperty", false},
};

std::vector<std::string> declaredProperties(const QMetaObject& mo) {
    std::vector<std::string> names;
    for (int i = mo.propertyOffset(); i < mo.propertyCount(); ++i) names.push_back(mo.property(i).name());
    return names;
}

// Invokable methods in declaration order; the clone moc makes for a default argument is skipped.
std::vector<std::string> declaredMethods(const QMetaObject& mo) {
    std::vector<std::string> names;
    for (int i = mo.methodOffset(); i < mo.methodCount(); ++i) {
        const QMetaMethod m = mo.method(i);
        if (m.methodType() != QMetaMethod::Method) continue;
        const std::string name = m.name().toStdString();
        if (names.empty() || names.back() != name) names.push_back(name);
    }
    return names;
}

// What an ActiveX server makes of the meta-object: from the class named by ToSuperClass on,
// exactly the interface's 13 properties and 26 methods in their order, and three events.
TEST(IClassInterface, TheAutomationSurfaceHoldsTheInterfaceInOrderAndNothingElse) {
    ASSERT_EQ(kInterface.size(), 39u);
    const QMetaObject& mo = IClass::staticMetaObject;
    auto info = [&](const char* name) { return QString::fromLatin1(mo.classInfo(mo.indexOfClassInfo(name)).value()); };
    EXPECT_EQ(info("ToSuperClass"), QString::fromLatin1(mo.className()));
    const QRegularExpression guid("^\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}$");
    for (const char* id : {"ClassID", "InterfaceID", "EventsID"}) EXPECT_TRUE(guid.match(info(id)).hasMatch()) << id;

    std::vector<std::string> properties, methods, signalNames;
    for (const Member& m : kInterface) (m.property ? properties : methods).push_back(m.name);
    EXPECT_EQ(declaredProperties(mo), properties);
    EXPECT_EQ(declaredMethods(mo), methods);
    for (int i = mo.methodOffset(); i < mo.methodCount(); ++i)
        if (mo.method(i).methodType() == QMetaMethod::Signal) signalNames.push_back(mo.method(i).name().toStdString());
    EXPECT_EQ(signalNames, (std::vector<std::string>{"Changed", "GenericEvent", "exception"}));
    EXPECT_EQ(mo.method(mo.indexOfSignal("exception(int,QString,QString,QString)")).parameterNames(),
              (QList<QByteArray>{"code", "source", "description", "help"}));

    const QMetaEnum chip = mo.enumerator(mo.indexOfEnumerator("IClassType"));
    ASSERT_TRUE(chip.isValid());
    EXPECT_EQ(std::vector<int>({chip.keyToValue("iSmallOnePage"), chip.keyToValue("iBigOnePage"),
                                chip.keyToValue("iBigEightPages")}),
              std::vector<int>({0, 1, 2}));
    EXPECT_EQ(mo.method(mo.indexOfMethod("SetChipType(IClassType)")).parameterNames(), QList<QByteArray>{"sChipType"});
}

struct PropertyCase {
    const char* name;
    bool writable;
    int type;
};

TEST(IClassInterface, PropertyTypesAndReadOnlyMembers) {
    const QMetaObject& mo = IClass::staticMetaObject;
    const std::vector<PropertyCase> cases = {
        {"ProjectFile", true, QMetaType::QString},      {"IifDirectory", true, QMetaType::QString},
        {"PellmarkINI", true, QMetaType::QString},      {"CLessLayoutEntered", true, QMetaType::Bool},
        {"UseBit", true, QMetaType::Bool},              {"UseHID", true, QMetaType::Bool},
        {"LayoutFile", false, QMetaType::QString},      {"EncodePath", true, QMetaType::QString},
        {"Saved", false, QMetaType::Bool},              {"LanguageDLL", true, QMetaType::Int},
        {"CustomLanguageDLL", true, QMetaType::Int},    {"AppName", true, QMetaType::QString},
        {"SelectedGrid", false, QMetaType::QString},
    };
    for (const PropertyCase& c : cases) {
        const int index = mo.indexOfProperty(c.name);
        ASSERT_GE(index, 0) << c.name;
        EXPECT_EQ(mo.property(index).isWritable(), c.writable) << c.name;
        EXPECT_EQ(mo.property(index).typeId(), c.type) << c.name;
    }
    for (const char* signature :
         {"SetAppBoundaries(QString)", "NewLayout(bool)", "SaveLayout()", "OpenLayout(QString)",
          "CallGenericFunction(QString,QString)", "CallGenericFunction(QString)", "SetPropertyValue(QString,QString)",
          "GetPropertyValue(QString)", "SetObjectProperty(QString,QObject*)", "GetObjectProperty(QString)"})
        EXPECT_GE(mo.indexOfMethod(signature), 0) << signature;
    EXPECT_EQ(mo.method(mo.indexOfMethod("SaveLayout()")).returnType(), QMetaType::QVariant);
    EXPECT_EQ(mo.method(mo.indexOfMethod("OpenLayout(QString)")).parameterNames(), QList<QByteArray>{"sFileName"});
}

// No C++ exception leaves a member: a raised error reaches the host through the exception
// signal before the member returns.
TEST(IClassInterface, RaisedErrorsArriveThroughTheExceptionSignal) {
    Host host;
    std::vector<QString> errors;
    QObject::connect(&host.control, &IClass::exception,
                     [&](int code, const QString& source, const QString& description, const QString&) {
                         errors.push_back(QStringLiteral("%1 %2: %3").arg(code).arg(source, description));
                     });
    EXPECT_FALSE(host.openLayout(""));
    EXPECT_FALSE(host.openLayout(host.path("Missing.IIF")));
    host.call("NewLayout", false);
    host.call("SetAppBoundaries", QString("10|11|12|13|14|15|16|17"));  // a one-page card takes none
    ASSERT_EQ(errors.size(), 3u);
    EXPECT_EQ(errors[0], "52 iClass UserControl: No filename given.");
    EXPECT_EQ(errors[1], "53 iClass UserControl: File doesn't exist");
    EXPECT_TRUE(errors[2].startsWith("9 ")) << errors[2].toStdString();
}

TEST(IClassState, StoredPropertiesReturnWhatWasWrittenAndRaiseNothing) {
    Host host;
    const std::vector<std::pair<const char*, QVariant>> values = {
        {"ProjectFile", "C:/p/Project.ini"}, {"IifDirectory", "C:/p/iif"}, {"PellmarkINI", "C:/p/Pellmark.ini"},
        {"EncodePath", "C:/p/encode"},        {"AppName", "Badge host"},  {"CustomLanguageDLL", 77},
        {"CLessLayoutEntered", true},         {"UseBit", true},           {"UseHID", true},
    };
    for (const auto& [name, value] : values) {
        host.set(name, value);
        EXPECT_EQ(host.get(name), value) << name;
    }
    EXPECT_TRUE(host.events.empty());
    for (const char* readOnly : {"LayoutFile", "Saved", "SelectedGrid"})
        EXPECT_FALSE(host.control.setProperty(readOnly, "x")) << readOnly;
}

TEST(IClassState, UseBitAndUseHIDGoIntoTheCard) {
    Host host;
    host.call("NewLayout", false);
    host.set("UseBit", true);
    host.set("UseHID", true);
    ASSERT_NE(host.control.document().card(), nullptr);
    EXPECT_TRUE(host.control.document().card()->EnableBitwise());
    EXPECT_TRUE(host.control.document().card()->UseHIDSection());
}

// A library loaded once for the process gives its texts to every control handed its handle;
// a handle that names nothing gives the built-in English texts.
TEST(IClassSurface, ALanguageLibraryLoadedOnceServesEveryControl) {
    TempDir dir;
    writeBytes(dir / "more.txt", "3118=Type of field\n");
    const int32_t handle = loadLanguageLibrary(QString::fromStdString((dir / "more.txt").string()));
    ASSERT_NE(handle, 0);
    IClass first, second;
    for (IClass* control : {&first, &second}) {
        control->setProperty("LanguageDLL", handle);
        EXPECT_EQ(control->itemGrid()->model()->headerData(2, Qt::Horizontal).toString(), "Type of field");
    }
    second.setProperty("LanguageDLL", handle + 1000);
    EXPECT_EQ(second.itemGrid()->model()->headerData(2, Qt::Horizontal).toString(), "<Field Type>");
    QString why;
    EXPECT_EQ(loadLanguageLibrary(QString::fromStdString((dir / "none.dll").string()), &why), 0);
    EXPECT_FALSE(why.isEmpty());
    EXPECT_TRUE(freeLanguageLibrary(handle));
}

TEST(IClassSurface, AClickOrKeyInAGridSelectsItAndDeleteRemovesFromIt) {
    Host host;
    host.control.resize(300, 200);
    host.control.show();
    QTableView* updates = host.grid("grdDBUpdateFields");
    QTest::mouseClick(updates->viewport(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(host.get("SelectedGrid").toString(), "DBUpdates");

    QTableView* items = host.grid("grdItems");
    QTest::keyClick(items, Qt::Key_Delete);
    EXPECT_EQ(host.get("SelectedGrid").toString(), "FieldsFunctions");
    ASSERT_EQ(host.prompter.messages.size(), 1u);
    EXPECT_EQ(host.prompter.messages[0].text, "T3104");
    EXPECT_EQ(host.prompter.messages[0].icon, Icon::Exclamation);

    QTest::keyClick(updates, Qt::Key_Delete);
    EXPECT_EQ(host.get("SelectedGrid").toString(), "DBUpdates");
    EXPECT_EQ(host.prompter.messages.size(), 2u);
}

TEST(IClassEvents, EveryRefreshRaisesChangedThenGenericEventAndClearsSaved) {
    Host host;
    QSignalSpy changed(&host.control, &IClass::Changed);
    QSignalSpy generic(&host.control, &IClass::GenericEvent);
    host.call("NewLayout", false);
    EXPECT_EQ(host.events, (std::vector<QString>{"Changed", "GenericEvent Hallo xyz"}));
    EXPECT_EQ(changed.count(), 1);
    ASSERT_EQ(generic.count(), 1);
    EXPECT_EQ(generic[0][0].toString(), "Hallo");
    EXPECT_EQ(generic[0][1].toString(), "xyz");
    EXPECT_FALSE(host.get("Saved").toBool());
    EXPECT_TRUE(host.control.document().changed());
}

struct BridgeCase {
    const char* member;
    std::function<void(Host&, const QString&)> call;
};

TEST(IClassBridge, TheProbeNameDoesNothingAndAnyOtherNameTellsTheControlIsOutOfDate) {
    const std::vector<BridgeCase> cases = {
        {"CallGenericFunction", [](Host& h, const QString& n) {
             EXPECT_TRUE(QMetaObject::invokeMethod(&h.control, "CallGenericFunction", Q_ARG(QString, n),
                                                   Q_ARG(QString, "a;b")));
         }},
        {"CallGenericFunction", [](Host& h, const QString& n) { h.call("CallGenericFunction", n); }},
        {"SetPropertyValue", [](Host& h, const QString& n) {
             EXPECT_TRUE(QMetaObject::invokeMethod(&h.control, "SetPropertyValue", Q_ARG(QString, n), Q_ARG(QString, "v")));
         }},
        {"GetPropertyValue", [](Host& h, const QString& n) {
             QString out = "unset";
             EXPECT_TRUE(QMetaObject::invokeMethod(&h.control, "GetPropertyValue", Q_RETURN_ARG(QString, out),
                                                   Q_ARG(QString, n)));
             EXPECT_EQ(out, "");
         }},
        {"SetObjectProperty", [](Host& h, const QString& n) {
             EXPECT_TRUE(QMetaObject::invokeMethod(&h.control, "SetObjectProperty", Q_ARG(QString, n),
                                                   Q_ARG(QObject*, &h.control)));
         }},
        {"GetObjectProperty", [](Host& h, const QString& n) {
             QObject* out = &h.control;
             EXPECT_TRUE(QMetaObject::invokeMethod(&h.control, "GetObjectProperty", Q_RETURN_ARG(QObject*, out),
                                                   Q_ARG(QString, n)));
             EXPECT_EQ(out, nullptr);
         }},
    };
    const std::string version = "App version: " + std::to_string(kVersionMajor) + "." +
                                std::to_string(kVersionMinor) + ";" + std::to_string(kVersionRevision);
    for (const BridgeCase& c : cases) {
        Host host;
        host.set("AppName", "Badge host");
        c.call(host, "1");
        EXPECT_TRUE(host.prompter.messages.empty()) << c.member;
        c.call(host, "Export");
        ASSERT_EQ(host.prompter.messages.size(), 1u) << c.member;
        const auto& m = host.prompter.messages[0];
        EXPECT_EQ(m.icon, Icon::Exclamation);
        EXPECT_FALSE(m.question);
        EXPECT_EQ(m.title, "Badge host");
        EXPECT_EQ(m.text, "This program is using a server program that is out-of-date. Please contact your vendor "
                          "and supply the following information: \r\n" +
                              version + "\r\nServer program name: " + kProgramName +
                              ";\r\nCalled function is: Export.");
        EXPECT_TRUE(host.events.empty());
    }
}

TEST(IClassBridge, WithoutAppNameTheTitleIsEmpty) {
    Host host;
    host.call("CallGenericFunction", QString("Export"));
    ASSERT_EQ(host.prompter.messages.size(), 1u);
    EXPECT_EQ(host.prompter.messages[0].title, "");
}

TEST(IClassMessages, BitItemsAreNotImplementedAndChangeNothing) {
    for (const char* member : {"AddBitField", "AddBitFunction"}) {
        Host host;
        host.call("NewLayout", false);
        host.events.clear();
        host.call(member);
        ASSERT_EQ(host.prompter.messages.size(), 1u) << member;
        EXPECT_EQ(host.prompter.messages[0].text, "This function has not been implemented yet!");
        EXPECT_EQ(host.prompter.messages[0].title, "QUORVANE");
        EXPECT_FALSE(host.prompter.messages[0].question);
        EXPECT_TRUE(host.events.empty()) << member;
        EXPECT_TRUE(host.dialogs.empty()) << member;
    }
}

}  // namespace
}  // namespace kestrin::test
