// The file commands: opening, saving and closing a layout, and the host project's fields.
#include <QFileInfo>
#include <QStringList>
#include <filesystem>

#include "IClass.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutSaver.h"

namespace kestrin {

namespace {

constexpr int kTextAllFiles = 3121;
constexpr int kTextSaveTitle = 3122;
constexpr int kTextExtensionAdded = 3123;
constexpr int kTextCloseLayout = 3124;
constexpr int kTextSaveChanges = 3125;

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
    auto card = std::make_unique<CIClass>();
    RecordArray records;
    // KestrinError from the reader goes on to the host unchanged.
    const LayoutReadResult result = readLayout(toPath(sFileName), *card, records, *prompter_, &fields_);
    if (!result.opened) return false;

    card_ = std::move(card);
    records_ = std::move(records);
    setUseBit(result.useBit);
    setUseHID(result.useHID);
    layoutFile_ = sFileName;
    layoutEntered_ = true;
    refresh();
    saved_ = true;
    return true;
}

// Writes the layout to LayoutFile and its chip encode file into EncodePath (or beside the
// layout); the saver tells the operator why when it refuses.
bool IClass::writeLayout() {
    const SaveOutcome outcome = saveLayout(toPath(layoutFile_), card_.get(), records_, fields_, *prompter_, translator_,
                                           toPath(encodePath_));
    if (outcome.saved) saved_ = true;
    return outcome.saved;
}

QVariant IClass::SaveLayout() {
    if (layoutFile_.isEmpty()) SaveiClassAs();
    else writeLayout();
    return QVariant(saved_);
}

bool IClass::SaveiClassAs() {
    const QString filter =
        QStringLiteral("Lumisk (*.IIF)|*.IIF|") + text(kTextAllFiles) + QStringLiteral(" (*.*)|*.*");
    QString chosen;
    try {
        chosen = chooser_->saveFileName(this, text(kTextSaveTitle), encodePath_, qtFileFilter(filter));
    } catch (const std::exception&) {
        // A failing dialog counts as cancelled.
        return false;
    }
    if (chosen.isEmpty()) return false;

    layoutFile_ = chosen;
    if (QFileInfo(chosen).suffix().toUpper() != QStringLiteral("IIF")) {
        tell(Icon::Information, text(kTextExtensionAdded));
        layoutFile_ = chosen + QStringLiteral(".IIF");
    }
    if (layoutEntered_) writeLayout();
    return saved_;
}

bool IClass::CloseLayout() {
    if (ask(Icon::Question, text(kTextCloseLayout), Buttons::YesNo) != Answer::Yes) return false;
    if (changedFlag_ && !saved_) {
        switch (ask(Icon::Question, text(kTextSaveChanges), Buttons::YesNoCancel)) {
        case Answer::Yes:
            // Without a file yet the save dialog asks for one; closing waits for a written file.
            if (!SaveLayout().toBool()) return false;
            break;
        case Answer::No:
            break;
        default:
            return false;
        }
    }
    closeNow();
    return true;
}

// Back to the state of a new control: no card, no file, the grids with their single empty row.
void IClass::closeNow() {
    records_.clear();
    card_.reset();
    layoutFile_.clear();
    rebuildGrids();
    changedFlag_ = false;
    layoutEntered_ = false;
}

bool IClass::FetchDBFields() {
    fields_.fetch(toPath(projectFile_));
    // Database updates opened before the fields were known get their field names now; the
    // layout itself does not change, so no change is signalled.
    nameDatabaseUpdateFields(records_, fields_);
    rebuildGrids();
    return fields_.count() > 0;
}

}  // namespace kestrin
