#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScreen>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <cstdio>

#include "HostWindow.h"
#include "ScriptRunner.h"
#include "control/IClass.h"
#include "items/RecordArray.h"
#include "persist/LayoutReader.h"

namespace {

void printLine(const QString& line) {
    std::printf("%s\n", line.toLocal8Bit().constData());
    std::fflush(stdout);
}

// Opens the sample layout, adds a field through the automation interface (answering the
// item editor by its control names) and saves it into a temporary folder.
QStringList smokeScript(const QString& folder) {
    return {"OpenLayout \"" + folder + "/layouts/Staff.IIF\"",
            "FetchDBFields",
            "AddField",
            "pick grdFields 0",
            "pick cboRow 7",
            "set txtNrBytes 4",
            "click cmdOK",
            "choose \"" + folder + "/Smoke.IIF\"",
            "SaveiClassAs",
            "Saved"};
}

}  // namespace

// kestrin-host [--smoke] [--script FILE] [--work FOLDER] [--open LAYOUT] [--screenshot PNG]
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"smoke", "open the sample layout, add an item, save it to a temporary folder and exit"});
    parser.addOption({"script", "run the automation calls of FILE, one a line, and exit", "file"});
    parser.addOption({"work", "folder for the sample layouts (default: a folder in the temporary folder)", "folder"});
    parser.addOption({"open", "open this layout when the window shows", "layout"});
    parser.addOption({"screenshot", "save a picture of the window after it shows and exit", "png"});
    parser.process(app);

    QTemporaryDir scratch;
    const QString work = parser.isSet("work") ? parser.value("work")
                         : parser.isSet("smoke") ? scratch.path()
                                                 : QDir::temp().filePath("kestrin-demo");
    kestrin::HostWindow window(work);
    if (parser.isSet("smoke") || parser.isSet("script")) {
        QStringList lines;
        if (parser.isSet("smoke")) {
            lines = smokeScript(work);
        } else {
            QFile file(parser.value("script"));
            if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
                std::fprintf(stderr, "kestrin-host: cannot read %s\n", parser.value("script").toLocal8Bit().constData());
                return 2;
            }
            lines = QTextStream(&file).readAll().split('\n');
        }
        kestrin::ScriptRunner runner(window.control(), printLine);
        if (!runner.run(lines)) return 1;
        if (parser.isSet("smoke")) {
            // The saved copy must hold the sample's records and the one added.
            kestrin::CIClass card;
            kestrin::RecordArray sample, saved;
            kestrin::ScriptPrompter quiet([](const QString&) {});
            kestrin::readLayout((work + "/layouts/Staff.IIF").toStdString(), card, sample, quiet);
            kestrin::readLayout((work + "/Smoke.IIF").toStdString(), card, saved, quiet);
            if (!window.control().property("Saved").toBool() || saved.size() != sample.size() + 1) {
                std::fprintf(stderr, "kestrin-host: the smoke test did not save the added item\n");
                return 1;
            }
            printLine("smoke test passed");
        }
        return 0;
    }
    window.show();
    if (parser.isSet("open")) {
        QMetaObject::invokeMethod(&window.control(), "OpenLayout", Q_ARG(QString, parser.value("open")));
        QMetaObject::invokeMethod(&window.control(), "FetchDBFields");
    }
    if (parser.isSet("screenshot")) {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 500) QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        const QRect frame = window.frameGeometry();
        const bool saved = QGuiApplication::primaryScreen()
                               ->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height())
                               .save(parser.value("screenshot"));
        return saved ? 0 : 1;
    }
    return app.exec();
}
