#include <QApplication>
#include <QCommandLineParser>

#include "HarnessWindow.h"

// kestrin-harness [LAYOUT.IIF] [--project PROJECT] [--lang CATALOG] [--screenshots FOLDER]
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("layout", "the layout file to open");
    parser.addOption({"project", "the host project file", "file"});
    parser.addOption({"lang", "the standard language catalog", "file"});
    parser.addOption({"screenshots", "save a picture of every dialog into this folder and quit", "folder"});
    parser.process(app);
    const QStringList args = parser.positionalArguments();
    kestrin::HarnessWindow window(args.value(0), parser.value("project"), parser.value("lang"));
    window.show();
    if (parser.isSet("screenshots")) {
        window.saveScreenshots(parser.value("screenshots"));
        return 0;
    }
    return app.exec();
}
