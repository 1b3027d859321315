// Embeds the control, opens a layout and saves it again by member name, and prints
// what it sees of the automation surface: the host a host developer writes first.
#include <QApplication>
#include <QMetaMethod>
#include <QMetaProperty>
#include <cstdio>
#include <kestrin/IClass.h>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc < 2) return 2;
    kestrin::IClass control;
    QObject::connect(&control, &kestrin::IClass::exception,
                     [](int, const QString& source, const QString& description, const QString&) {
                         std::printf("error %s: %s\n", qPrintable(source), qPrintable(description));
                     });
    const QMetaObject* meta = control.metaObject();
    int methods = 0, events = 0;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod m = meta->method(i);
        if (m.methodType() == QMetaMethod::Signal) ++events;
        if (m.methodType() == QMetaMethod::Method && !(m.attributes() & QMetaMethod::Cloned)) ++methods;
    }
    std::printf("properties %d methods %d events %d\n", meta->propertyCount() - meta->propertyOffset(), methods,
                events);

    bool opened = false;
    QMetaObject::invokeMethod(&control, "OpenLayout", Q_RETURN_ARG(bool, opened), Q_ARG(QString, QString()));
    QMetaObject::invokeMethod(&control, "OpenLayout", Q_RETURN_ARG(bool, opened), Q_ARG(QString, argv[1]));
    std::printf("opened %d\n", opened);
    QVariant saved;
    QMetaObject::invokeMethod(&control, "SaveLayout", Q_RETURN_ARG(QVariant, saved));
    std::printf("saved %d %s\n", control.property("Saved").toBool(), qPrintable(control.property("LayoutFile").toString()));
    return opened && control.property("Saved").toBool() ? 0 : 1;
}
