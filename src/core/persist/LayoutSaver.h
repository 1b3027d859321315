#pragma once
#include <filesystem>
#include <string>
#include <vector>

#include "FileSystem.h"

namespace kestrin {

class CIClass;
class RecordArray;
class HostFieldList;
class Prompter;
class Translator;

struct SaveOutcome {
    bool saved = false;
    std::string message;  // why the save failed, as shown to the operator
    std::vector<std::string> warnings;
    std::filesystem::path chipEncodeFile;
};

// Text numbers of the save refusals.
inline constexpr int kTextEncodeFileMissing = 3250;
inline constexpr int kTextReadOnlyBefore = 3264;
inline constexpr int kTextReadOnlyAfter = 3265;

// Saves the layout file and its chip encode file. Refuses (with a message through the
// prompter) when the layout exists without its chip encode file, either file is read-only
// or cannot be looked at. Both files are written completely beside their targets first;
// then the old layout becomes the ".IIF.BAK" backup and the new files are renamed into
// place, so a full disk, a failing disk or a crash never leaves the operator without a
// complete layout file and backup. When the save fails, the operator is told and the layout
// and chip encode files are the previous ones. The chip encode file goes to encodeFolder, or
// beside the layout when it is empty. Every file system call goes through files.
SaveOutcome saveLayout(const std::filesystem::path& layoutFile, const CIClass* card, const RecordArray& records,
                       const HostFieldList& fields, Prompter& prompter, const Translator& translator,
                       const std::filesystem::path& encodeFolder = {}, FileSystem& files = systemFileSystem());

// The paths a save uses beside a layout file.
std::filesystem::path chipEncodePathFor(const std::filesystem::path& layoutFile,
                                        const std::filesystem::path& encodeFolder = {});
std::filesystem::path backupPathFor(const std::filesystem::path& layoutFile);

}  // namespace kestrin
