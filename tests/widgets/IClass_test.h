#pragma once
// A host for the control: it reaches the control only through the meta-object by member
// name, answers message boxes through a recording prompter and the save dialog through a
// recording file chooser, and drives every modal dialog through the control's dialog runner.
#include <QDialog>
#include <QFile>
#include <QMetaObject>
#include <QSignalSpy>
#include <QStringList>
#include <QTableView>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "control/IClass.h"
#include "preview/PrintServices.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"

namespace kestrin::test {

class RecordingChooser : public FileChooser {
public:
    QString saveFileName(QWidget*, const QString& title_, const QString& folder_, const QString& filter_) override {
        ++calls;
        title = title_;
        folder = folder_;
        filter = filter_;
        return answer;
    }
    QString answer;  // empty: the operator cancels
    int calls = 0;
    QString title, folder, filter;
};

// Texts "T<id>" for every id the control shows, so a test sees which text was used.
inline std::string controlCatalog() {
    std::string lines = "# texts of the control tests\n";
    for (int id : {3104, 3105, 3121, 3122, 3123, 3124, 3125, 3195, 3196})
        lines += std::to_string(id) + "=T" + std::to_string(id) + "\n";
    return lines;
}

// A project with two database fields.
inline std::string sampleProject() {
    return crlf({"[DATABASE]", "NUMCOLUMNS=2", "[COLUMN1]", "DbFIELD=NAME", "NAME=Surname", "FIELDTYPE=Character",
                 "FIELDSIZE=20", "[COLUMN2]", "DbFIELD=NUMBER", "NAME=Number", "FIELDTYPE=Number", "FIELDSIZE=6"});
}

struct Host {
    TempDir dir;
    CatalogRegistry registry;
    RecordingPrompter prompter{Answer::Yes};
    RecordingChooser chooser;
    IClass control;
    std::vector<QString> dialogs;               // object names of the dialogs run, in order
    std::function<int(QDialog&)> onDialog;      // what the operator does; default: cancel
    std::vector<QString> events;                // Changed / GenericEvent in the order raised

    Host() {
        control.setPrompter(&prompter);
        control.setFileChooser(&chooser);
        control.setCatalogRegistry(&registry);
        control.setDialogRunner([this](QDialog& d) {
            dialogs.push_back(d.objectName());
            if (onDialog) return onDialog(d);
            d.reject();
            return static_cast<int>(QDialog::Rejected);
        });
        QObject::connect(&control, &IClass::Changed, [this] { events.push_back("Changed"); });
        QObject::connect(&control, &IClass::GenericEvent, [this](const QString& name, const QString& params) {
            events.push_back("GenericEvent " + name + " " + params);
        });
        writeBytes(dir / "texts.txt", controlCatalog());
        const int32_t handle = registry.open(dir / "texts.txt");
        EXPECT_NE(handle, 0);
        set("LanguageDLL", handle);
        writeBytes(dir / "Project.ini", sampleProject());
    }

    QString path(const std::string& name) const { return QString::fromStdString((dir / name).string()); }

    void set(const char* name, const QVariant& value) { EXPECT_TRUE(control.setProperty(name, value)) << name; }
    QVariant get(const char* name) const { return control.property(name); }

    void call(const char* member) { EXPECT_TRUE(QMetaObject::invokeMethod(&control, member)) << member; }
    void call(const char* member, bool arg) {
        EXPECT_TRUE(QMetaObject::invokeMethod(&control, member, Q_ARG(bool, arg))) << member;
    }
    void call(const char* member, const QString& arg) {
        EXPECT_TRUE(QMetaObject::invokeMethod(&control, member, Q_ARG(QString, arg))) << member;
    }
    template <class R>
    R callFor(const char* member) {
        R result{};
        EXPECT_TRUE(QMetaObject::invokeMethod(&control, member, QReturnArgument<R>(QMetaType::fromType<R>().name(), result))) << member;
        return result;
    }
    bool openLayout(const QString& file) {
        bool result = false;
        EXPECT_TRUE(QMetaObject::invokeMethod(&control, "OpenLayout", Q_RETURN_ARG(bool, result), Q_ARG(QString, file)));
        return result;
    }

    // The start a host makes: its settings, a new layout, the project's fields.
    void startLayout() {
        set("ProjectFile", path("Project.ini"));
        set("EncodePath", path(""));
        set("AppName", "Test host");
        call("NewLayout", false);
        EXPECT_TRUE(callFor<bool>("FetchDBFields"));
    }

    QTableView* grid(const char* name) const { return control.findChild<QTableView*>(name); }
    QString cell(const char* gridName, int row, int column) const {
        return grid(gridName)->model()->index(row, column).data().toString();
    }
    QStringList rowsOf(const char* gridName) const {
        QStringList rows;
        const QAbstractItemModel* m = grid(gridName)->model();
        for (int r = 0; r < m->rowCount(); ++r) {
            QStringList cells;
            for (int c = 0; c < m->columnCount(); ++c) cells << m->index(r, c).data().toString();
            rows << cells.join('|');
        }
        return rows;
    }
    int changedCount() const { return static_cast<int>(std::count(events.begin(), events.end(), "Changed")); }
    std::vector<std::string> messageTexts() const {
        std::vector<std::string> texts;
        for (const auto& m : prompter.messages) texts.push_back(m.text);
        return texts;
    }
};

// Adds one field through the item editor as the operator would: the first database field at
// the given block, begin byte 0, the given size, Apply and OK.
int addFieldInEditor(QDialog& dialog, int block, int bytes);

}  // namespace kestrin::test
