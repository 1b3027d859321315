// The file commands: opening, saving and closing a layout, and the host project's fields.
#include <QStringList>
#include <filesystem>

#include "IClassGuard.h"

namespace kestrin {

namespace {

std::filesystem::path toPath(const QString& name) { return std::filesystem::path(name.toStdU16String()); }

}  // namespace

QString qtFileFilter(const QString& pipeFilter) {
    const QStringList parts = pipeFilter.split(QLatin1Char('|'));
    QStringList entries;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        const QString& description = parts[i];
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        if (description.isEmpty() && patterns.isEmpty()) continue;
        // Qt reads the patterns from the parentheses; a description that names them already stays.
        entries << (description.contains(QLatin1Char('(')) ? description
                                                           : description + QStringLiteral(" (") + patterns + ')');
    }
    return entries.join(QStringLiteral(";;"));
}

bool IClass::OpenLayout(QString sFileName) {
    return guarded([&] { return doc_.open(toPath(sFileName)).opened; });
}

QVariant IClass::SaveLayout() {
    return guarded([&] {
        if (doc_.layoutFile().empty())
            SaveiClassAs();
        else
            doc_.save();
        return QVariant(doc_.saved());
    });
}

bool IClass::SaveiClassAs() {
    return guarded([&] { return saveAs(); });
}

bool IClass::saveAs() {
    QString chosen;
    try {
        chosen = chooser_->saveFileName(this, QString::fromStdString(doc_.saveDialogTitle()), encodePath_,
                                        qtFileFilter(QString::fromStdString(doc_.saveDialogFilter())));
    } catch (const std::exception&) {
        // A failing dialog counts as cancelled.
        return false;
    }
    if (chosen.isEmpty()) return false;
    return doc_.saveAs(toPath(chosen));
}

bool IClass::CloseLayout() {
    return guarded([&] {
        if (!doc_.close([this] { return saveAs(); })) return false;
        // The grids go back to their single empty row; closing is no change of a layout.
        rebuildGrids();
        return true;
    });
}

bool IClass::FetchDBFields() {
    return guarded([&] {
        const bool found = doc_.fetchFields(toPath(projectFile_));
        rebuildGrids();
        return found;
    });
}

}  // namespace kestrin
