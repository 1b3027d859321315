#include <QApplication>
#include <QCommandLineParser>

#include "HarnessWindow.h"

// kestrin-harness [LAYOUT.IIF] [--project PROJECT] [--lang CATALOG]
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("layout", "the layout file to open");
    parser.addOption({"project", "the host project file", "file"});
    parser.addOption({"lang", "the standard language catalog", "file"});
    parser.process(app);
    const QStringList args = parser.positionalArguments();
    kestrin::HarnessWindow window(args.value(0), parser.value("project"), parser.value("lang"));
    window.show();
    return app.exec();
}
