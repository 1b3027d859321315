#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "card/CPage.h"
#include "card/IClassType.h"
#include "text/TextIds.h"

namespace kestrin {

class CIClass;
class Translator;

// Texts of the preview and its print options.
inline constexpr TextRef kTextPreviewCaption{4622, "Preview iClass Layout"};
inline constexpr TextRef kTextPreviewPrint{4623, "<Print>"};
inline constexpr TextRef kTextPreviewPrevious{4624, "<Previous>"};
inline constexpr TextRef kTextPreviewNext{4625, "<Next>"};
inline constexpr std::string_view kTextPreviewOk = "<OK>";
inline constexpr TextRef kTextPrintOptionsCaption{4631, "<Print preview>"};
inline constexpr TextRef kTextDestination{4632, "<Destination>"};
inline constexpr TextRef kTextPrintRange{4633, "<Print range>"};
inline constexpr TextRef kTextPrintToPrinter{4634, "<Print to &printer>"};
inline constexpr TextRef kTextCurrentPages{4636, "<&Current page(s)>"};
inline constexpr TextRef kTextAllPages{4637, "<&All pages>"};

// What the preview shows in one view: the pages of its grids (one on the 2 kbit card, two on
// the 16 kbit cards; the one-page 16 kbit card in parts of 32 blocks with only the first
// carrying the fixed areas), the grid titles, the position in the card and the card pages
// the view shows. The pages point at the card they were taken from.
struct PreviewView {
    int32_t index = 0;
    std::vector<CPage> pages;
    std::vector<std::string> titles;  // one a grid
    std::string position;             // empty on the 2 kbit card
    std::vector<int32_t> pageNumbers;
    bool hasPrevious = false;
    bool hasNext = false;
};

int32_t previewViewCount(IClassType chip);
// The view index clamped to the chip's views.
PreviewView previewView(const CIClass& card, int32_t index, const Translator& translator);
std::string chipDescription(IClassType chip, const Translator& translator);

// The first line of every printed sheet: file name, date and time with their words.
std::string printHeaderLine(const Translator& translator, std::string_view file, std::string_view date,
                            std::string_view time);
// The second heading of a sheet of an eight-page card, "<PAGES> 2 <and> 3"; empty on the
// other cards.
std::string printPagesHeading(const CIClass& card, const PreviewView& view, const Translator& translator);

}  // namespace kestrin
