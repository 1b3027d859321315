#include "LayoutSaver.h"

#include <system_error>

#include "ChipEncodeFile.h"
#include "LayoutRenderer.h"
#include "SafeFile.h"
#include "base/ProductInfo.h"
#include "text/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

namespace fs = std::filesystem;

fs::path chipEncodePathFor(const fs::path& layoutFile, const fs::path& encodeFolder) {
    const fs::path folder = encodeFolder.empty() ? layoutFile.parent_path() : encodeFolder;
    return folder / (layoutFile.stem().string() + ".CHP");
}

fs::path backupPathFor(const fs::path& layoutFile) {
    return layoutFile.parent_path() / (layoutFile.stem().string() + ".IIF.BAK");
}

SaveOutcome saveLayout(const fs::path& layoutFile, const CIClass* card, const RecordArray& records,
                       const HostFieldList& fields, Prompter& prompter, const Translator& translator,
                       const fs::path& encodeFolder) {
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

    std::error_code ec;
    const bool layoutExists = fs::exists(layoutFile, ec);
    if (layoutExists && !fs::exists(out.chipEncodeFile, ec))
        return refuse(translator.text(kTextEncodeFileMissing,
                                      "<The layout was not saved: its chip encode file is missing beside it.>"));
    const std::pair<fs::path, const char*> checks[] = {{layoutFile, "iClass Encode File"},
                                                       {out.chipEncodeFile, "Chip Encode File"}};
    for (const auto& [file, kind] : checks)
        if (isReadOnlyFile(file))
            return refuse(translator.text(kTextReadOnlyBefore, "<The>") + " " + kind + " " +
                          translator.text(kTextReadOnlyAfter, "<is read-only and cannot be overwritten.>"));

    RenderedLayout layout = renderLayoutFile(*card, records, fields);
    out.warnings = std::move(layout.warnings);
    const std::string encode = renderChipEncodeFile(layout.usedFieldList, layout.bigItemNumbers, fields);

    std::string error;
    auto stagedLayout = StagedFile::write(layoutFile, layout.bytes, &error);
    std::optional<StagedFile> stagedEncode;
    if (stagedLayout) stagedEncode = StagedFile::write(out.chipEncodeFile, encode, &error);
    if (stagedLayout && stagedEncode && layoutExists && !keepAs(layoutFile, backupPathFor(layoutFile), &error))
        stagedEncode.reset();
    if (!stagedLayout || !stagedEncode || !stagedLayout->commit(&error))
        return refuse("The layout could not be saved; the files on disk are unchanged.\r\n" + error);
    if (!stagedEncode->commit(&error))
        return refuse("The layout file was saved, but its chip encode file could not be replaced.\r\n" + error);
    out.saved = true;
    return out;
}

}  // namespace kestrin
