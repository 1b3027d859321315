#include "PlacementValidation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "items/ItemSpan.h"
#include "NumberChecks.h"
#include "base/NumberText.h"
#include "base/ProductInfo.h"
#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "base/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

int64_t powerOfTwo(int64_t n) {
    return n >= 62 ? std::numeric_limits<int64_t>::max() / 2 : (n <= 0 ? 1 : int64_t{1} << n);
}

bool kindMatchesMode(const ItemRecord& r, int32_t mode) {
    const std::string_view kind = kindWord(r);
    switch (mode) {
    case kModeField: return kind == kKindField;
    case kModeFunction: return kind == kKindFunction || kind == kKindSimpleBitFunction;
    case kModeBitField: return kind == kKindBitField;
    case kModeBitFunction: return kind == kKindBitFunction;
    }
    return false;
}

class Rules {
public:
    Rules(const PlacementRequest& q, const CIClass& card, const RecordArray& records, const Translator& tr,
          int32_t recordCount, int32_t skip)
        : q_(q), card_(card), records_(records), tr_(tr), skip_(skip),
          count_(recordCount < 0 ? records.size() : std::min(recordCount, records.size())),
          page_(card.page(q.page)), bitMode_(q.mode == kModeBitField || q.mode == kModeBitFunction),
          size_(wholeNumberOf(q.nrBytesText)) {
        const PageAddress first = PageAddress::at(q.row, q.beginByte, bitMode_ ? q.beginBit : 0);
        span_ = bitMode_ ? BitSpan::ofBits(first, size_) : BitSpan::ofBytes(first, size_);
    }

    std::vector<PlacementViolation> run(bool stopAtFirst) {
        std::vector<PlacementViolation> out;
        if (auto v = completeness()) {
            out.push_back(*v);
            return out;  // nothing else can be judged without a page and a size
        }
        using Step = std::optional<PlacementViolation> (Rules::*)();
        for (Step step : {&Rules::pageFit, &Rules::headerAndHid, &Rules::boundary, &Rules::functionRules,
                          &Rules::checksumRange, &Rules::overlap}) {
            if (auto v = (this->*step)()) {
                out.push_back(std::move(*v));
                if (stopAtFirst) break;
            }
        }
        return out;
    }

private:
    PlacementViolation text(int32_t id) const { return {id, placementRuleText(id, tr_), EditorBox::None, -1, false}; }
    static std::optional<PlacementViolation> failed(const NumberCheck& c, EditorBox box) {
        if (c.ok) return std::nullopt;
        return PlacementViolation{c.textId, c.message, box, -1, false};
    }

    std::optional<PlacementViolation> completeness() {
        if (q_.selectedText.empty() || q_.itemName.empty() || q_.page < 0 || q_.row < 0 || q_.beginByte < 0 ||
            size_ <= 0 || page_ == nullptr)
            return text(kTextIncomplete);
        return std::nullopt;
    }

    std::optional<PlacementViolation> pageFit() {
        // A bit item reaches every byte its bits touch.
        if (span_.end().bytesReached() > page_->PageSize) return text(kTextPageFit);
        return std::nullopt;
    }

    std::optional<PlacementViolation> headerAndHid() {
        if (q_.row < page_->BeginFreeSpace) return text(kTextHeaderOrHid);
        return std::nullopt;
    }

    std::optional<PlacementViolation> boundary() {
        if (card_.ChipSize() != iBigEightPages) return std::nullopt;
        // The first bit of the block after the boundary block.
        if (span_.crosses(PageAddress::ofBlock(int64_t{page_->Boundary} + 1)))
            return text(kTextBoundary);
        return std::nullopt;
    }

    std::optional<PlacementViolation> functionRules() {
        if (q_.mode != kModeFunction && q_.mode != kModeBitFunction) return std::nullopt;
        const std::string& name = q_.itemName;
        if (name == kFunctionConstant || name == kFunctionCount) {
            if (q_.valueFromField && q_.fieldChosen.empty()) return text(kTextIncomplete);
            if (name == kFunctionConstant && q_.mode == kModeBitFunction && !q_.valueFromField)
                return failed(checkNumberInRange(0, powerOfTwo(size_) - 1, q_.constantText, tr_), EditorBox::ConstantValue);
        } else if (name == kFunctionCardSnNr) {
            return cardSerialSize();
        } else if (name == kFunctionChecksum) {
            return q_.mode == kModeFunction ? byteChecksum() : bitChecksum();
        }
        return std::nullopt;
    }

    std::optional<PlacementViolation> cardSerialSize() {
        struct Rule {
            int64_t bytes;
            int32_t textId;
        };
        static constexpr Rule rules[] = {{10, kTextCardSnNrDecimal}, {8, kTextCardSnNrHex},
                                         {4, kTextCardSnNrMotorola}, {4, kTextCardSnNrIntel}};
        if (q_.propertyOption < 0 || q_.propertyOption > 3) return std::nullopt;
        const Rule& rule = rules[q_.propertyOption];
        // A bit function counts its size in bits.
        const int64_t required = q_.mode == kModeBitFunction ? rule.bytes * PageAddress::BitsPerByte : rule.bytes;
        if (size_ != required) return text(rule.textId);
        return std::nullopt;
    }

    std::optional<PlacementViolation> byteChecksum() {
        if (size_ != 1) return text(kTextChecksumOneByte);
        if (q_.propertyOption == kChecksumParity)
            return failed(checkNumberInRange(0, 1, q_.startValueText, tr_), EditorBox::StartValue);
        if (q_.propertyOption == kChecksumCrc) {
            if (auto v = failed(checkNumberInRange(257, 511, q_.polynomText, tr_), EditorBox::Polynom)) return v;
            return failed(checkNumberInRange(0, 255, q_.startValueText, tr_), EditorBox::StartValue);
        }
        return std::nullopt;
    }

    std::optional<PlacementViolation> bitChecksum() {
        if (q_.propertyOption == kChecksumAdd) return failed(checkNumberEquals(8, q_.nrBytesText, tr_), EditorBox::NrBytes);
        if (q_.propertyOption == kChecksumParity)
            return failed(checkNumberEquals(1, q_.nrBytesText, tr_), EditorBox::NrBytes);
        if (q_.propertyOption == kChecksumCrc) {
            if (auto v = failed(checkNumberInRange(1, 8, q_.nrBytesText, tr_), EditorBox::NrBytes)) return v;
            const int64_t top = powerOfTwo(size_);
            if (auto v = failed(checkNumberInRange(top + 1, 2 * top - 1, q_.polynomText, tr_), EditorBox::Polynom))
                return v;
            return failed(checkNumberInRange(0, top - 1, q_.startValueText, tr_), EditorBox::StartValue);
        }
        return std::nullopt;
    }

    std::optional<PlacementViolation> checksumRange() {
        if (q_.itemName != kFunctionChecksum || (q_.mode != kModeFunction && q_.mode != kModeBitFunction))
            return std::nullopt;
        const int64_t count = wholeNumberOf(q_.rangeCountText);
        if (count < 1) return std::nullopt;
        const BitSpan range = BitSpan::ofBytes(PageAddress::at(q_.rangeRow, q_.rangeBeginByte), count);
        if (span_.overlaps(range)) return text(kTextChecksumCoversItself);
        for (int32_t i = 0; i < count_; ++i) {
            const ItemRecord& r = records_[i];
            if (i == skip_ || r.isDbUpdate || !isChecksum(r)) continue;
            // Positions within a page only: the other checksum's page is not compared.
            if (range.contains(itemSpan(r).first.bit())) return text(kTextRangeHoldsChecksum);
        }
        for (int32_t i = 0; i < count_; ++i) {
            const ItemRecord& r = records_[i];
            if (i == skip_ || r.isDbUpdate || !isChecksum(r)) continue;
            // The other range is placed with its page; the new start bit is taken as it is.
            const bool bitSum = !isByteSized(r);
            const auto& g = r.range;
            const PageAddress s = PageAddress::at(g[1], g[2], bitSum ? g[3] : 0).plusBytes((int64_t{g[0]} - 1) * page_->PageSize);
            const BitSpan other = bitSum ? BitSpan::ofBits(s, g[4]) : BitSpan::ofBytes(s, g[3]);
            if (other.contains(span_.first.bit())) return text(kTextInsideOtherRange);
        }
        return std::nullopt;
    }

    std::optional<PlacementViolation> overlap() {
        for (int32_t i = 0; i < count_; ++i) {
            const ItemRecord& r = records_[i];
            if (i == skip_ || r.isDbUpdate || r.page != q_.page) continue;
            const BitSpan other = itemSpan(r);
            const bool overlaps = span_.contains(other.first.bit()) || span_.contains(other.lastBit()) ||
                                  (other.first <= span_.first && other.lastBit() >= span_.first.bit());
            if (!overlaps) continue;
            PlacementViolation v;
            v.overlappedIndex = i;
            if (r.name == q_.itemName && other.first != span_.first) {
                v.textId = kTextOverlapSameName;
            } else if (r.name == q_.itemName && kindMatchesMode(r, q_.mode)) {
                v.textId = kTextOverlapSameName;  // placed again where it stood: replaced without a question
                v.message = tr_.text(kTextOverlapSameName) + ": " + r.name + ".";
                return v;
            } else {
                v.textId = kTextOverlapOther;
            }
            v.message = tr_.text(v.textId) + ": " + r.name + ".";
            v.asksToReplace = true;
            return v;
        }
        return std::nullopt;
    }

    const PlacementRequest& q_;
    const CIClass& card_;
    const RecordArray& records_;
    const Translator& tr_;
    int32_t skip_;
    int32_t count_;
    const CPage* page_;
    bool bitMode_;
    int64_t size_;
    BitSpan span_;
};

}  // namespace

std::string placementRuleText(int32_t textId, const Translator& translator) {
    // English defaults where the rules have one; the other texts come from the language libraries only.
    static constexpr TextRef defaults[] = {
        {kTextIncomplete, "<Please complete the item: choose what to place, where, and its size.>"},
        {kTextPageFit, "<Your data does not fit into this Page!>"},
        {kTextHeaderOrHid, "<You cannot put an item into the Header or HID sections!>"},
        {kTextBoundary, "<Your item should not overlap an application boundary!>"},
        {kTextChecksumOneByte, "<Checksum Functions should occupy 1 byte!>"}};
    for (const TextRef& d : defaults)
        if (d.id == textId) return translator.text(d);
    return translator.text(textId);
}

std::vector<PlacementViolation> placementViolations(const PlacementRequest& request, const CIClass& card,
                                                    const RecordArray& records, const Translator& translator,
                                                    bool stopAtFirst, int32_t recordCount, int32_t skip) {
    return Rules(request, card, records, translator, recordCount, skip).run(stopAtFirst);
}

PlacementResult ValidatePlacement(const PlacementRequest& request, const CIClass& card, RecordArray& records,
                                  Prompter& prompter, const Translator& translator, const std::string& title,
                                  int32_t skip) {
    const std::string boxTitle = title.empty() ? kProductTitle : title;
    const auto violations = placementViolations(request, card, records, translator, true, records.size(), skip);
    if (violations.empty()) return {kPlacementAccepted, EditorBox::None};
    const PlacementViolation& v = violations.front();
    if (v.overlappedIndex < 0) {
        prompter.tell(Icon::Exclamation, v.message, boxTitle);
        return {kPlacementRejected, v.focus};
    }
    if (v.asksToReplace && prompter.ask(Icon::Exclamation, v.message, Buttons::OkCancel, boxTitle) != Answer::Ok)
        return {kPlacementRejected, EditorBox::None};
    // The scan stops at the first overlapping record that counts, so removing its slot is
    // the removal by place, name and kind.
    records.removeAt(v.overlappedIndex);
    return {kPlacementReplaced, EditorBox::None, v.overlappedIndex};
}

}  // namespace kestrin
