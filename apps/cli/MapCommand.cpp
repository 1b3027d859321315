#include <QApplication>
#include <QDir>
#include <QImage>
#include <filesystem>
#include <ostream>

#include "Commands.h"
#include "LayoutSession.h"
#include "base/PathText.h"
#include "preview/PreviewPrinting.h"
#include "preview/frmPreview.h"

namespace kestrin::cli {

namespace {

// The file name given on the command line stands in for the operator's choice.
class GivenFile : public FileChooser {
public:
    explicit GivenFile(QString file) : file_(std::move(file)) {}
    QString saveFileName(QWidget*, const QString&, const QString&, const QString&) override { return file_; }

private:
    QString file_;
};

// Renders without a display unless the caller chose a platform.
void preferOffscreen() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY") &&
        !qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

}  // namespace

int runMap(const CliOptions& o, std::ostream& out, std::ostream& err) {
    preferOffscreen();
    int argc = 1;
    char name[] = "kestrin";
    char* argv[] = {name, nullptr};
    QApplication app(argc, argv);

    LayoutSession session(o, err);
    if (!session.setUp(o, err)) return kExitRefused;
    const std::string& layout = o.arguments.front();
    if (!session.open(layout, err)) return kExitRefused;

    GivenFile pdf(QString::fromStdString(o.pdf));
    const QString layoutName = QString::fromStdString(pathText(std::filesystem::absolute(pathFromText(layout))));
    frmPreview preview(*session.doc.card(), session.doc.records(), session.doc.translator(), layoutName,
                       PrintServices{nullptr, &pdf});
    preview.resize(preview.sizeHint());  // the pictures show the whole grids, whatever the screen
    if (!o.pdf.empty()) {
        if (!printPreview(preview, true, true)) {
            err << "kestrin: cannot write " << o.pdf << '\n';
            return kExitRefused;
        }
        out << "wrote " << o.pdf << '\n';
    }
    if (!o.png.empty()) {
        const QDir dir(QString::fromStdString(o.png));
        if (!QDir().mkpath(dir.absolutePath())) {
            err << "kestrin: cannot create " << o.png << '\n';
            return kExitRefused;
        }
        for (int view = 0; view < preview.viewCount(); ++view) {
            preview.showView(view);
            const QString file = dir.filePath(QString("view-%1.png").arg(view + 1));
            if (!sheetImage(preview, o.dpi).save(file)) {
                err << "kestrin: cannot write " << file.toStdString() << '\n';
                return kExitRefused;
            }
            out << "wrote " << file.toStdString() << '\n';
        }
    }
    return kExitDone;
}

}  // namespace kestrin::cli
