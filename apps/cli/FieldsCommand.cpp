#include <filesystem>
#include <ostream>

#include "Commands.h"
#include "JsonText.h"
#include "base/PathText.h"
#include "persist/HostFields.h"

namespace kestrin::cli {

int runFields(const CliOptions& o, std::ostream& out, std::ostream& err) {
    const std::filesystem::path project = pathFromText(o.arguments.front());
    std::error_code ec;
    if (!std::filesystem::is_regular_file(project, ec)) {
        err << "kestrin: no project file " << o.arguments.front() << '\n';
        return kExitRefused;
    }
    HostFieldList list;
    std::vector<std::string> warnings;
    list.fetch(project, &warnings);
    for (const auto& w : warnings) err << "warning: " << w << '\n';
    const auto images = list.imageTypes();
    if (o.json) {
        out << "{\n  \"fields\": [";
        for (size_t i = 0; i < list.fields().size(); ++i) {
            const HostField& f = list.fields()[i];
            out << (i ? ",\n" : "\n") << "    {\"name\": " << jsonString(f.name) << ", \"dbField\": " << jsonString(f.dbField)
                << ", \"type\": " << jsonString(f.fieldType) << ", \"size\": " << f.fieldSize
                << ", \"column\": " << f.column << "}";
        }
        out << (list.fields().empty() ? "" : "\n  ") << "],\n  \"imageTypes\": [";
        for (size_t i = 0; i < images.size(); ++i) out << (i ? ", " : "") << jsonString(images[i]);
        out << "]\n}\n";
        return kExitDone;
    }
    out << "Fields: " << list.fields().size() << "\nName | Database field | Type | Size | Column\n";
    for (const HostField& f : list.fields())
        out << f.name << " | " << f.dbField << " | " << f.fieldType << " | " << f.fieldSize << " | " << f.column << '\n';
    out << "\nImage types: " << images.size() << '\n';
    for (const auto& name : images) out << name << '\n';
    return kExitDone;
}

}  // namespace kestrin::cli
