#include "PreviewViews.h"

#include <algorithm>
#include <array>

#include "PageMap.h"
#include "card/CIClass.h"
#include "text/Translator.h"
#include "text/UpperCase.h"

namespace kestrin {

namespace {

constexpr int32_t kViewsOf16k = 4;
constexpr int32_t kGridsOf16k = 2;

constexpr TextRef kTextBlocks{4629, "Blocks"};
constexpr TextRef kTextGridPage{4606, "Page"};
constexpr TextRef kTextGridPages{4621, "Pages"};
constexpr TextRef kTextCardLayout{4630, "<Card Layout>"};
constexpr TextRef kTextFilename{4619, "<Filename>"};
constexpr TextRef kTextDate{613, "<Date>"};
constexpr TextRef kTextTime{4620, "<Time>"};
constexpr TextRef kTextAnd{1572, "<and>"};

// What each view of a 16 kbit card shows, after the words "Blocks" or "Page"/"Pages". The
// blank after " 64 - 95" belongs to the text the operators know.
constexpr std::array<std::array<std::string_view, kGridsOf16k>, kViewsOf16k> kBlockRanges = {{
    {" 0 - 31", " 32 - 63"},
    {" 64 - 95 ", " 96 - 127"},
    {" 128 - 159", " 160 - 191"},
    {" 192 - 223", " 224 - 255"},
}};
constexpr std::array<std::string_view, kViewsOf16k> kBlockViews = {" 0 - 63 of 255", " 64 - 127 of 255",
                                                                    " 128 - 191 of 255", " 192 - 255 of 255"};
constexpr std::array<std::string_view, kViewsOf16k> kPageViews = {" 0/1 of 7", " 2/3 of 7", " 4/5 of 7",
                                                                   " 6/7 of 7"};

// A 32-block part of the one 2048-byte page.
CPage pagePart(const CPage& whole, int32_t part) {
    CPage p = whole;
    p.VirtualPage = part;
    p.HasHeader = part == 0 && whole.HasHeader;
    p.HasHIDSpace = part == 0 && whole.HasHIDSpace;
    return p;
}

}  // namespace

int32_t previewViewCount(IClassType chip) {
    return chip == iSmallOnePage ? 1 : kViewsOf16k;
}

PreviewView previewView(const CIClass& card, int32_t index, const Translator& translator) {
    PreviewView v;
    const IClassType chip = card.ChipSize();
    v.index = std::clamp(index, 0, previewViewCount(chip) - 1);
    v.hasPrevious = v.index > 0;
    v.hasNext = v.index < previewViewCount(chip) - 1;
    const size_t k = static_cast<size_t>(v.index);
    switch (chip) {
    case iSmallOnePage:
        if (const CPage* page = card.page(0)) v.pages.push_back(*page);
        v.titles = {translator.text(kTextCardLayout)};
        v.pageNumbers = {0};
        break;
    case iBigOnePage: {
        const std::string word = translator.text(kTextBlocks);
        if (const CPage* whole = card.page(0))
            for (int32_t i = 0; i < kGridsOf16k; ++i) v.pages.push_back(pagePart(*whole, kGridsOf16k * v.index + i));
        for (std::string_view range : kBlockRanges[k]) v.titles.push_back(word + std::string(range));
        v.position = word + std::string(kBlockViews[k]);
        v.pageNumbers = {0};
        break;
    }
    case iBigEightPages: {
        const std::string word = translator.text(kTextGridPage);
        for (int32_t i = 0; i < kGridsOf16k; ++i) {
            const int32_t number = kGridsOf16k * v.index + i;
            if (const CPage* page = card.page(number)) v.pages.push_back(*page);
            v.titles.push_back(word + ' ' + std::to_string(number));
            v.pageNumbers.push_back(number);
        }
        v.position = translator.text(kTextGridPages) + std::string(kPageViews[k]);
        break;
    }
    }
    return v;
}

std::string chipDescription(IClassType chip, const Translator& translator) {
    switch (chip) {
    case iBigOnePage:
        return translator.text(4627, "<16 kbit (2 kbyte) card, non-paged>");
    case iBigEightPages:
        return translator.text(4628, "<16 kbit (2 kbyte) card, paged>");
    case iSmallOnePage:
        break;
    }
    return translator.text(4626, "<2 kbit/256 bytes card>");
}

std::string printHeaderLine(const Translator& translator, std::string_view file, std::string_view date,
                            std::string_view time) {
    return translator.text(kTextFilename) + ": " + std::string(file) + "; " + translator.text(kTextDate) + ": " +
           std::string(date) + "; " + translator.text(kTextTime) + ": " + std::string(time);
}

std::string printPagesHeading(const CIClass& card, const PreviewView& view, const Translator& translator) {
    if (card.ChipSize() != iBigEightPages) return {};
    std::string heading = upperCase(translator.text(kTextPages));
    for (size_t i = 0; i < view.pageNumbers.size(); ++i) {
        if (i > 0) heading += ' ' + translator.text(kTextAnd);
        heading += ' ' + std::to_string(view.pageNumbers[i]);
    }
    return heading;
}

}  // namespace kestrin
