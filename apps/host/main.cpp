#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScreen>
#include <QFile>
#include <QTextStream>
#include <cstdio>

#include "HostWindow.h"
#include "ScriptRunner.h"
#include "control/IClass.h"

namespace {

void printLine(const QString& line) {
    std::printf("%s\n", line.toLocal8Bit().constData());
    std::fflush(stdout);
}

}  // namespace

// kestrin-host [--script FILE] [--work FOLDER] [--open LAYOUT] [--screenshot PNG]
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"script", "run the automation calls of FILE, one a line, and exit", "file"});
    parser.addOption({"work", "folder for the sample layouts (default: a folder in the temporary folder)", "folder"});
    parser.addOption({"open", "open this layout when the window shows", "layout"});
    parser.addOption({"screenshot", "save a picture of the window after it shows and exit", "png"});
    parser.process(app);

    const QString work = parser.isSet("work") ? parser.value("work") : QDir::temp().filePath("kestrin-demo");
    kestrin::HostWindow window(work);
    if (parser.isSet("script")) {
        QFile file(parser.value("script"));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            std::fprintf(stderr, "kestrin-host: cannot read %s\n", parser.value("script").toLocal8Bit().constData());
            return 2;
        }
        window.setErrorBoxes(false);
        kestrin::ScriptRunner runner(window.control(), printLine);
        return runner.run(QTextStream(&file).readAll().split('\n')) ? 0 : 1;
    }
    window.show();
    if (parser.isSet("open")) {
        window.openLayout(parser.value("open"));
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
