#pragma once
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DroppedEntry.h"

namespace kestrin {

class CIClass;
class RecordArray;
class HostFieldList;
class Prompter;
class ProfileDocument;

struct LayoutReadResult {
    bool opened = false;
    std::string message;                // why the layout was not opened
    std::vector<std::string> warnings;  // entries that could not be used and were dropped
    std::vector<DroppedEntry> dropped;  // the same entries, for a check to report
    std::vector<std::string> limitsExceeded;  // what the reading left out or cut, as told to the operator
    bool useBit = false;                // the file's switches, which the control takes over
    bool useHID = false;
    std::vector<std::pair<std::string, std::string>> settings;  // the SETTINGS section, as read
};

// Reads a layout file into the card and the records. An empty name or a missing file
// raises KestrinError; a file from a later version asks the operator first (No: nothing
// is applied). Entries that do not parse or do not fit the card are dropped with a
// warning; the rest loads. Database-update columns are named from fields when given.
// A file that cannot be read or is beyond kMaxLayoutFileBytes is refused with a message;
// items beyond kMaxItems and values cut at kMaxValueChars are told to the operator once.
LayoutReadResult readLayout(const std::filesystem::path& file, CIClass& card, RecordArray& records, Prompter& prompter,
                            const HostFieldList* fields = nullptr);

// The same, from the file's bytes (the checks of the file name are the caller's).
LayoutReadResult readLayoutBytes(std::string_view bytes, CIClass& card, RecordArray& records, Prompter& prompter,
                                 const HostFieldList* fields = nullptr);
// The same, from a parsed document.
LayoutReadResult readLayoutDocument(const ProfileDocument& doc, CIClass& card, RecordArray& records,
                                    Prompter& prompter, const HostFieldList* fields = nullptr);

// The question asked before a file of a later version is opened.
std::string laterVersionWarning(int major, int minor, int revision);

// Fills the empty field names of database-update records from their columns.
void nameDatabaseUpdateFields(RecordArray& records, const HostFieldList& fields);

}  // namespace kestrin
