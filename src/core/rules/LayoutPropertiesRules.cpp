#include "LayoutPropertiesRules.h"

#include <algorithm>
#include <cmath>

#include "card/CIClass.h"
#include "card/CardGeometry.h"
#include "base/KestrinError.h"
#include "base/ProductInfo.h"
#include "items/ItemSpan.h"
#include "rules/NumberChecks.h"
#include "base/NumberText.h"
#include "items/RecordArray.h"
#include "base/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

namespace {
const PageAddress kHidEnd = PageAddress::ofBlock(kFreeSpaceWithHid);

PageAddress boundaryPlace(const std::string& text) {
    return PageAddress::ofBlock(wholeNumberOf(text));
}
}  // namespace

std::string trimBlanks(const std::string& text) {
    const size_t b = text.find_first_not_of(' ');
    if (b == std::string::npos) return {};
    return text.substr(b, text.find_last_not_of(' ') - b + 1);
}

LayoutPropertiesCheck checkLayoutProperties(const BoundaryTexts& boundaries, bool hidChecked,
                                            const RecordArray& records, const Translator& tr) {
    LayoutPropertiesCheck out;
    for (int32_t n = 1; n <= 7; ++n) {
        const PageAddress b = boundaryPlace(boundaries[static_cast<size_t>(n - 1)]);
        for (int32_t i = 0; i < records.size(); ++i) {
            const ItemRecord& r = records[i];
            if (r.isDbUpdate || r.page != n) continue;
            if (itemSpan(r).crosses(b)) {
                out.cutBoxes[static_cast<size_t>(n - 1)] = true;
                out.boundaryFailed = true;
                out.cutItems.push_back(i);
            }
        }
    }
    if (out.boundaryFailed)
        out.messages.push_back(
            tr.text(kTextBoundaryCuts, "Some or all application boundaries cut through database items or functions.") +
            "\r\n" + tr.text(kTextBoundaryCutsHint, "Move the boundary or click cancel and move your iClass items."));
    if (hidChecked) {
        for (int32_t i = 0; i < records.size(); ++i) {
            const ItemRecord& r = records[i];
            if (!r.isDbUpdate && r.page == 0 && itemSpan(r).first < kHidEnd) out.hidItems.push_back(i);
        }
        out.hidFailed = !out.hidItems.empty();
        if (out.hidFailed)
            out.messages.push_back(
                tr.text(kTextHidCovers, "HID Space should not cover database items or functions.") + "\r\n" +
                tr.text(kTextHidCoversHint, "Disable HID application or click cancel and move your iClass items."));
    }
    return out;
}

bool acceptLayoutProperties(const LayoutPropertiesCheck& check, Prompter& prompter) {
    for (const auto& m : check.messages) prompter.tell(Icon::Exclamation, m, kProductTitle);
    return !check.boundaryFailed && !check.hidFailed;
}

NumberCheck checkBoundaryBox(const std::string& text, const Translator& translator) {
    return checkNumberInRange(5, 31, trimBlanks(text), translator);
}

IClassType chipTypeOf(bool smallChip, int memoryTypeIndex) {
    if (smallChip) return iSmallOnePage;
    return memoryTypeIndex == 0 ? iBigOnePage : iBigEightPages;
}

bool boundaryTabEnabled(bool bigChipSelected, int memoryTypeIndex) {
    return bigChipSelected && memoryTypeIndex == 1;
}

BoundaryTexts boundaryTextsOf(const CIClass& card) {
    BoundaryTexts texts;
    texts.fill("18");
    if (card.ChipSize() == iBigEightPages)
        for (int32_t p = 0; p < 8; ++p) texts[static_cast<size_t>(p)] = std::to_string(card.GetBoundary(p));
    return texts;
}

bool writeLayoutProperties(CIClass& card, bool smallChip, int memoryTypeIndex, bool bitwise, bool hid,
                           const BoundaryTexts& boundaries) {
    card.setChipSize(chipTypeOf(smallChip, memoryTypeIndex));
    card.setEnableBitwise(bitwise);
    card.setUseHIDSection(hid);
    std::string joined;
    if (card.ChipSize() == iBigEightPages)
        for (size_t p = 0; p < boundaries.size(); ++p) joined += (p ? "|" : "") + boundaries[p];
    try {
        card.SetBoundaries(joined);
    } catch (const KestrinError&) {
        return false;  // a box that holds no number: the pages keep their boundaries
    }
    return true;
}

}  // namespace kestrin
