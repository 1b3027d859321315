#include "LayoutSession.h"

#include <ostream>

#include "base/KestrinError.h"

namespace kestrin::cli {

bool LayoutSession::setUp(const CliOptions& o, std::ostream& err) {
    auto load = [&](const std::string& file, void (Translator::*set)(int32_t)) {
        if (file.empty()) return true;
        std::string error;
        const int32_t handle = registry.open(file, &error);
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
        doc.fields().fetch(o.project, &warnings);
        for (const auto& w : warnings) err << "warning: " << w << '\n';
    }
    return true;
}

bool LayoutSession::open(const std::string& file, std::ostream& err) {
    try {
        read = doc.open(file);
    } catch (const KestrinError& e) {
        err << "kestrin: " << e.source() << ": " << e.description() << '\n';
        return false;
    }
    for (const auto& w : read.warnings) err << "warning: " << w << '\n';
    if (!read.opened) err << "kestrin: " << read.message << '\n';
    return read.opened;
}

}  // namespace kestrin::cli
