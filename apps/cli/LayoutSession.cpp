#include "LayoutSession.h"

#include <ostream>

#include "base/KestrinError.h"
#include "base/PathText.h"

namespace kestrin::cli {

bool LayoutSession::setUp(const CliOptions& o, std::ostream& err) {
    auto load = [&](const std::string& file, void (Translator::*set)(LanguageHandle)) {
        if (file.empty()) return true;
        std::string error;
        const LanguageHandle handle = registry.open(pathFromText(file), &error);
        if (handle == 0) {
            err << "kestrin: language library " << file << ": " << error << '\n';
            return false;
        }
        (doc.translator().*set)(handle);
        return true;
    };
    if (!load(o.lang, &Translator::setLanguageDLL) || !load(o.customLang, &Translator::setCustomLanguageDLL))
        return false;
    if (!o.project.empty()) {
        std::vector<std::string> warnings;
        doc.fields().fetch(pathFromText(o.project), &warnings);
        for (const auto& w : warnings) err << "warning: " << w << '\n';
    }
    return true;
}

bool LayoutSession::open(const std::string& file, std::ostream& err) {
    try {
        read = doc.open(pathFromText(file));
    } catch (const KestrinError& e) {
        err << "kestrin: " << e.source() << ": " << e.description() << '\n';
        return false;
    }
    for (const auto& w : read.warnings) err << "warning: " << w << '\n';
    if (!read.opened) err << "kestrin: " << read.message << '\n';
    return read.opened;
}

}  // namespace kestrin::cli
