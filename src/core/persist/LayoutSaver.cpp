#include "LayoutSaver.h"

#include <optional>
#include <system_error>
#include <utility>

#include "ChipEncodeFile.h"
#include "LayoutRenderer.h"
#include "SafeFile.h"
#include "StorableText.h"
#include "base/ProductInfo.h"
#include "base/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

namespace fs = std::filesystem;

namespace {

// The layout's name without its extension, then extension; the name is kept as a path so
// that no character is lost in a conversion.
fs::path stemWith(const fs::path& layoutFile, const char* extension) {
    fs::path name = layoutFile.stem();
    name += extension;
    return name;
}

}  // namespace

fs::path chipEncodePathFor(const fs::path& layoutFile, const fs::path& encodeFolder) {
    const fs::path folder = encodeFolder.empty() ? layoutFile.parent_path() : encodeFolder;
    return folder / stemWith(layoutFile, ".CHP");
}

fs::path backupPathFor(const fs::path& layoutFile) { return layoutFile.parent_path() / stemWith(layoutFile, ".IIF.BAK"); }

namespace {

constexpr const char* kNotSaved =
    "The layout could not be saved; the layout file and its chip encode file are unchanged.\r\n";
constexpr const char* kPairBroken =
    "The chip encode file was replaced, but the layout file could not be; they no longer belong together.\r\n";

}  // namespace

SaveOutcome saveLayout(const fs::path& layoutFile, const CIClass* card, const RecordArray& records,
                       const HostFieldList& fields, Prompter& prompter, const Translator& translator,
                       const fs::path& encodeFolder, FileSystem& files) {
    SaveOutcome out;
    auto refuse = [&](const std::string& text) {
        out.message = text;
        prompter.tell(Icon::Exclamation, text, kProductTitle);
        return out;
    };
    if (card == nullptr) {
        out.message = "no card to save";
        return out;
    }
    out.chipEncodeFile = chipEncodePathFor(layoutFile, encodeFolder);
    const fs::path backupFile = backupPathFor(layoutFile);

    // A file that cannot be looked at is not taken for a missing one: that would skip the backup.
    FileStatus layoutStatus;
    FileStatus encodeStatus;
    for (const auto& [file, status] : {std::pair{&layoutFile, &layoutStatus}, {&out.chipEncodeFile, &encodeStatus}})
        if (const std::error_code ec = files.status(*file, *status))
            return refuse(kNotSaved + ("cannot check " + pathText(*file) + ": " + ec.message()));
    if (layoutStatus.exists && !encodeStatus.exists)
        return refuse(translator.text(kTextEncodeFileMissing,
                                      "<The layout was not saved: its chip encode file is missing beside it.>"));
    for (const auto& [status, kind] :
         {std::pair{&layoutStatus, "iClass Encode File"}, {&encodeStatus, "Chip Encode File"}})
        if (status->readOnly)
            return refuse(translator.text(kTextReadOnlyBefore, "<The>") + " " + kind + " " +
                          translator.text(kTextReadOnlyAfter, "<is read-only and cannot be overwritten.>"));

    // A name or value that the file cannot hold would read back as something else.
    if (auto why = unstorableItem(records)) return refuse(*why);

    RenderedLayout layout = renderLayoutFile(*card, records, fields);
    out.warnings = std::move(layout.warnings);
    const std::string encode = renderChipEncodeFile(layout.usedFieldList, layout.bigItemNumbers, fields);

    removeLeftoverStagedFiles(files, {layoutFile, backupFile, out.chipEncodeFile});
    std::string error;
    auto stagedLayout = StagedFile::write(files, layoutFile, layout.bytes, &error);
    std::optional<StagedFile> stagedEncode;
    if (stagedLayout) stagedEncode = StagedFile::write(files, out.chipEncodeFile, encode, &error);
    if (!stagedEncode) return refuse(kNotSaved + error);
    if (layoutStatus.exists && !keepAs(files, layoutFile, backupFile, &error)) return refuse(kNotSaved + error);
    // The previous chip encode file, to put back should the layout file not be replaced.
    std::optional<StagedFile> previousEncode;
    if (encodeStatus.exists) {
        previousEncode = StagedFile::duplicate(files, out.chipEncodeFile, out.chipEncodeFile, &error);
        if (!previousEncode) return refuse(kNotSaved + error);
    }
    // The chip encode file goes first: one without its layout file hinders nothing, while a
    // layout file without its chip encode file is refused by the next save.
    if (!stagedEncode->commit(&error)) return refuse(kNotSaved + error);
    if (!stagedLayout->commit(&error)) {
        const bool undone = previousEncode ? previousEncode->commit(nullptr) : !files.remove(out.chipEncodeFile);
        return refuse((undone ? kNotSaved : kPairBroken) + error);
    }
    out.saved = true;
    return out;  // previousEncode's destructor removes the kept copy
}

}  // namespace kestrin
