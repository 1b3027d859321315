#include "Examples.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace kestrin {

QString examplesFolder() {
    const QString program = QCoreApplication::applicationDirPath();
    for (const QString& folder : {program + "/examples", program + "/../share/kestrin/examples"})
        if (QFileInfo::exists(folder + "/project/Sample.ini")) return QDir::cleanPath(folder);
    return QStringLiteral(KESTRIN_EXAMPLES);
}

}  // namespace kestrin
