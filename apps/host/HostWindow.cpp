#include "HostWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPlainTextEdit>

#include "Examples.h"
#include "control/IClass.h"
#include "control/LanguageLibraries.h"

namespace kestrin {

namespace {

// The English texts: on Windows the language DLL beside the program, loaded as a Windows host
// loads its language library; the bundled text catalog where there is none.
QString standardLanguageLibrary(const QDir& examples) {
#ifdef _WIN32
    const QString dll = QCoreApplication::applicationDirPath() + QStringLiteral("/kestrin-en.dll");
    if (QFile::exists(dll)) return dll;
#endif
    return examples.filePath("lang/kestrin-en.txt");
}

}  // namespace

void setUpSampleProject(IClass& control, const QString& folder) {
    const QDir examples(examplesFolder());
    QDir().mkpath(folder + "/layouts");
    for (const char* name : {"Staff.IIF", "Staff.CHP", "Visitors16K.IIF", "Visitors16K.CHP"})
        if (!QFile::exists(folder + "/layouts/" + QString(name)))
            QFile::copy(examples.filePath(QString("layouts/") + name), folder + "/layouts/" + QString(name));
    control.setProperty("LanguageDLL", qlonglong{loadLanguageLibrary(standardLanguageLibrary(examples))});
    control.setProperty("AppName", "Kestrin demo host");
    control.setProperty("ProjectFile", examples.filePath("project/Sample.ini"));
    control.setProperty("IifDirectory", folder + "/layouts");
    control.setProperty("EncodePath", folder + "/layouts");
}

HostWindow::HostWindow(const QString& workFolder) {
    setWindowTitle("Kestrin demo host");
    control_ = new IClass(this);
    setCentralWidget(control_);
    setUpSampleProject(*control_, workFolder);

    log_ = new QPlainTextEdit(this);
    log_->setObjectName("txtEventLog");
    log_->setReadOnly(true);
    auto* dock = new QDockWidget("Events", this);
    dock->setWidget(log_);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    connect(control_, &IClass::Changed, this, [this] {
        log("event Changed");
        refreshState();
    });
    connect(control_, &IClass::GenericEvent, this,
            [this](const QString& name, const QString& params) { log("event GenericEvent " + name + " " + params); });
    // An error the control raises is shown as a host shows an automation error.
    connect(control_, &IClass::exception, this,
            [this](int code, const QString& source, const QString& description, const QString&) {
                log(QStringLiteral("error %1 %2: %3").arg(code).arg(source, description));
                if (errorBoxes_) QMessageBox::critical(this, source, description);
            });
    buildOperatorCommands();
    buildMemberMenus();
    refreshState();
    resize(1000, 700);
}

void HostWindow::log(const QString& line) {
    log_->appendPlainText(line);
}

void HostWindow::buildMemberMenus() {
    const QMetaObject* meta = control_->metaObject();
    QMenu* members = menuBar()->addMenu("&Members");
    QMenu* properties = menuBar()->addMenu("&Properties");
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() != QMetaMethod::Method) continue;
        members->addAction(QString::fromLatin1(method.name()), this, [this, i] { callMember(i); });
    }
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
        properties->addAction(QString::fromLatin1(meta->property(i).name()), this, [this, i] { editProperty(i); });
}

void HostWindow::callMember(int methodIndex) {
    const QMetaMethod method = control_->metaObject()->method(methodIndex);
    QStringList call{QString::fromLatin1(method.name())};
    for (int p = 0; p < method.parameterCount(); ++p) {
        bool ok = false;
        const QString value = QInputDialog::getText(this, call.front(), QString::fromLatin1(method.parameterNames()[p]),
                                                    QLineEdit::Normal, {}, &ok);
        if (!ok) return;
        call << value;
    }
    std::vector<QVariant> values;
    for (int p = 0; p < method.parameterCount(); ++p) {
        const QMetaType type = method.parameterMetaType(p);
        bool isNumber = false;
        const int number = call[p + 1].toInt(&isNumber);
        // An enumeration takes its value's number or name.
        QVariant v = isNumber && (type.flags() & QMetaType::IsEnumeration) ? QVariant(number) : QVariant(call[p + 1]);
        v.convert(type);
        values.push_back(v);
    }
    std::vector<QGenericArgument> args;
    for (auto& v : values) args.emplace_back(v.typeName(), v.data());
    while (args.size() < 4) args.emplace_back();
    QVariant result(method.returnMetaType(), nullptr);
    if (method.returnMetaType().id() == QMetaType::Void)
        method.invoke(control_, Qt::DirectConnection, args[0], args[1], args[2], args[3]);
    else
        method.invoke(control_, Qt::DirectConnection,
                      QGenericReturnArgument(method.returnMetaType().name(), result.data()), args[0], args[1], args[2],
                      args[3]);
    log("call " + call.join(' ') + (result.isValid() ? " -> " + result.toString() : QString()));
}

void HostWindow::editProperty(int propertyIndex) {
    const QMetaProperty property = control_->metaObject()->property(propertyIndex);
    const QString name = QString::fromLatin1(property.name());
    if (!property.isWritable()) {
        QMessageBox::information(this, name, property.read(control_).toString());
        return;
    }
    bool ok = false;
    const QString value =
        QInputDialog::getText(this, name, name, QLineEdit::Normal, property.read(control_).toString(), &ok);
    if (!ok) return;
    QVariant v(value);
    v.convert(property.metaType());
    property.write(control_, v);
    log("set " + name + " " + value);
}

}  // namespace kestrin
