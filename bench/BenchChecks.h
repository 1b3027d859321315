#pragma once
// Checks that prove a measured save, open or render really produced the expected files
// and items, run outside the timed loops.
#include <filesystem>
#include <string>

#include "BenchLayouts.h"

namespace kestrin::bench {

// Each check returns an empty text when everything is as expected, else what is wrong.

// The records read back equal the records saved, in the same order.
std::string compareRecords(const RecordArray& expected, const RecordArray& actual);
// An opened card has the chip type and switches of the saved one.
std::string compareCards(const CIClass& expected, const CIClass& actual);
// The layout file, its chip encode file (one entry per used host field) and, when
// expectBackup, the backup exist; the layout file reads back to exactly the saved layout.
std::string checkSavedFiles(const std::filesystem::path& layoutFile, const BenchLayout& layout, bool expectBackup);
// A chip encode file's bytes list every used host field, in the host's order.
std::string checkChipEncodeBytes(const std::string& bytes, const BenchLayout& layout);
// A layout file's bytes hold one place entry per item, in the section of the item's kind.
std::string checkLayoutBytes(const std::string& bytes, const BenchLayout& layout);

}  // namespace kestrin::bench
