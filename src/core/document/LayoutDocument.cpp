#include "LayoutDocument.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

#include "base/NumberText.h"
#include "base/PathText.h"
#include "base/ProductInfo.h"
#include "base/Prompter.h"
#include "items/GridRows.h"
#include "items/ItemColor.h"
#include "rules/DatabaseUpdateRules.h"
#include "rules/EditorEntries.h"
#include "rules/MultiTrackValidation.h"

namespace kestrin {

namespace {

constexpr int32_t kTextSelectItemFirst = 3104;
constexpr int32_t kTextReallyRemove = 3105;
constexpr int32_t kTextAllFiles = 3121;
constexpr int32_t kTextSaveTitle = 3122;
constexpr int32_t kTextExtensionAdded = 3123;
constexpr int32_t kTextCloseLayout = 3124;
constexpr int32_t kTextSaveChanges = 3125;

bool hasLayoutExtension(const std::filesystem::path& file) {
    std::string extension = pathText(file.extension());
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return extension == ".IIF";
}

}  // namespace

LayoutDocument::LayoutDocument(Prompter& prompter, const CatalogRegistry* registry)
    : prompter_(&prompter), registry_(registry), translator_(registry) {}

void LayoutDocument::setCatalogRegistry(const CatalogRegistry* registry) {
    Translator next(registry);
    next.setLanguageDLL(translator_.LanguageDLL());
    next.setCustomLanguageDLL(translator_.CustomLanguageDLL());
    registry_ = registry;
    translator_ = next;
}

bool LayoutDocument::useBit() const { return card_ ? card_->EnableBitwise() : useBit_; }

void LayoutDocument::setUseBit(bool on) {
    useBit_ = on;
    if (card_) card_->setEnableBitwise(on);
}

bool LayoutDocument::useHID() const { return card_ ? card_->UseHIDSection() : useHID_; }

void LayoutDocument::setUseHID(bool on) {
    useHID_ = on;
    if (card_) card_->setUseHIDSection(on);
}

// ---- Changes ----------------------------------------------------------------------------

void LayoutDocument::changedBy(Change change) {
    changed_ = true;
    saved_ = false;
    if (batchDepth_ > 0) {
        (change == Change::Records ? pendingRecords_ : pendingCard_) = true;
        return;
    }
    if (listener_) listener_(change);
}

void LayoutDocument::recordsChanged() { changedBy(Change::Records); }

// The document's switches follow the card it takes.
void LayoutDocument::takeCard(std::unique_ptr<CIClass> card) {
    card_ = std::move(card);
    useBit_ = card_->EnableBitwise();
    useHID_ = card_->UseHIDSection();
}

bool LayoutDocument::roomForOneMore() {
    if (records_.size() < RecordArray::kMaxRecords) return true;
    prompter_->tell(Icon::Exclamation, "The layout holds as many items as it can.", kProductTitle);
    return false;
}

void LayoutDocument::batch(const std::function<void()>& session) {
    ++batchDepth_;
    try {
        session();
    } catch (...) {
        --batchDepth_;
        throw;
    }
    if (--batchDepth_ > 0) return;
    const bool records = std::exchange(pendingRecords_, false);
    const bool card = std::exchange(pendingCard_, false);
    if (!listener_) return;
    if (records)
        listener_(Change::Records);
    else if (card)
        listener_(Change::Card);
}

// ---- Life of the layout -------------------------------------------------------------------

void LayoutDocument::newLayout() {
    layoutEntered_ = true;
    takeCard(std::make_unique<CIClass>());
    records_.clear();
    dropped_.clear();
    layoutFile_.clear();
    recordsChanged();
}

void LayoutDocument::setLayout(const CIClass& card, RecordArray records) {
    layoutEntered_ = true;
    takeCard(std::make_unique<CIClass>(card));
    records_ = std::move(records);
    dropped_.clear();
    layoutFile_.clear();
    recordsChanged();
}

LayoutReadResult LayoutDocument::open(const std::filesystem::path& file) {
    auto card = std::make_unique<CIClass>();
    RecordArray records;
    LayoutReadResult result = readLayout(file, *card, records, *prompter_, &fields_);
    return adoptRead(std::move(result), std::move(card), std::move(records), file);
}

LayoutReadResult LayoutDocument::openBytes(std::string_view bytes) {
    auto card = std::make_unique<CIClass>();
    RecordArray records;
    LayoutReadResult result = readLayoutBytes(bytes, *card, records, *prompter_, &fields_);
    return adoptRead(std::move(result), std::move(card), std::move(records), {});
}

LayoutReadResult LayoutDocument::adoptRead(LayoutReadResult result, std::unique_ptr<CIClass> card, RecordArray records,
                                           const std::filesystem::path& file) {
    if (!result.opened) return result;
    // The reader applied the file's switches after the chip type, which resets them.
    takeCard(std::move(card));
    records_ = std::move(records);
    dropped_ = result.dropped;
    layoutFile_ = file;
    layoutEntered_ = true;
    recordsChanged();
    saved_ = !file.empty();
    return result;
}

RenderedLayout LayoutDocument::renderFile() const {
    return card_ ? renderLayoutFile(*card_, records_, fields_) : RenderedLayout{};
}

bool LayoutDocument::write() {
    lastSave_ = saveLayout(layoutFile_, card_.get(), records_, fields_, *prompter_, translator_, encodePath_);
    if (lastSave_.saved) {
        saved_ = true;
        dropped_.clear();  // the file written holds only what the layout has
    }
    return lastSave_.saved;
}

bool LayoutDocument::saveTo(const std::filesystem::path& file) {
    layoutFile_ = file;
    return write();
}

bool LayoutDocument::save() {
    return !layoutFile_.empty() && write();
}

std::string LayoutDocument::saveDialogFilter() const {
    return "Lumisk (*.IIF)|*.IIF|" + text(kTextAllFiles) + " (*.*)|*.*";
}

std::string LayoutDocument::saveDialogTitle() const {
    return text(kTextSaveTitle);
}

bool LayoutDocument::saveAs(const std::filesystem::path& chosen) {
    layoutFile_ = chosen;
    if (!hasLayoutExtension(chosen)) {
        prompter_->tell(Icon::Information, text(kTextExtensionAdded), kProductTitle);
        layoutFile_ += ".IIF";
    }
    if (layoutEntered_) write();
    return saved_;
}

bool LayoutDocument::close(const std::function<bool()>& saveWithoutFile) {
    if (prompter_->ask(Icon::Question, text(kTextCloseLayout), Buttons::YesNo, kProductTitle) != Answer::Yes)
        return false;
    if (changed_ && !saved_) {
        switch (prompter_->ask(Icon::Question, text(kTextSaveChanges), Buttons::YesNoCancel, kProductTitle)) {
        case Answer::Yes: {
            const bool written = layoutFile_.empty() ? (saveWithoutFile && saveWithoutFile()) : save();
            if (!written) return false;
            break;
        }
        case Answer::No:
            break;
        default:
            return false;
        }
    }
    records_.clear();
    dropped_.clear();
    card_.reset();
    layoutFile_.clear();
    changed_ = false;
    saved_ = false;
    layoutEntered_ = false;
    return true;
}

std::vector<AuditViolation> LayoutDocument::audit() const {
    std::vector<AuditViolation> out;
    for (const DroppedEntry& entry : dropped_) out.push_back(violationOf(entry, translator_));
    if (!card_) return out;
    auto rules = auditLayout(*card_, records_, translator_);
    out.insert(out.end(), std::make_move_iterator(rules.begin()), std::make_move_iterator(rules.end()));
    return out;
}

bool LayoutDocument::fetchFields(const std::filesystem::path& projectFile) {
    fields_.fetch(projectFile);
    nameDatabaseUpdateFields(records_, fields_);
    return fields_.count() > 0;
}

// ---- The card -----------------------------------------------------------------------------

void LayoutDocument::setChipType(int32_t type) {
    if (card_) card_->setChipSize(static_cast<IClassType>(type));
}

void LayoutDocument::setAppBoundaries(const std::string& boundaries) {
    if (card_) card_->SetBoundaries(boundaries);
}

void LayoutDocument::adoptCard(const CIClass& card, bool modified) {
    takeCard(std::make_unique<CIClass>(card));
    if (modified) changedBy(Change::Card);
}

CIClass& LayoutDocument::cardForEditing() {
    if (!card_) {
        takeCard(std::make_unique<CIClass>());
    }
    return *card_;
}

// ---- Items --------------------------------------------------------------------------------

LayoutDocument::ApplyResult LayoutDocument::applyItem(const EditorEntries& entries, int32_t replacing) {
    if (replacing >= records_.size()) replacing = -1;
    if (replacing < 0 && !roomForOneMore()) return {};
    const CIClass& card = cardForEditing();
    const int32_t color = replacing >= 0 ? records_[replacing].color : randomItemColor();
    const int32_t lastBefore = records_.size() - 1;
    const PlacementResult placed = ValidatePlacement(placementRequestOf(entries), card, records_, *prompter_,
                                                     translator_, {}, replacing);
    if (placed.code == kPlacementRejected) return {placed.code, placed.focus, -1};

    const ItemRecord record = itemRecordOf(entries, color);
    int32_t at = replacing;
    if (at < 0) {
        records_.add(record);
        at = records_.size() - 1;
    } else {
        // The removed slot took the last record, which may have been the edited one.
        if (placed.code == kPlacementReplaced && at == lastBefore) at = placed.removedIndex;
        records_[at] = record;
    }
    recordsChanged();
    return {placed.code, EditorBox::None, at};
}

LayoutDocument::ApplyResult LayoutDocument::applyMultiTrack(const MultiTrackRequest& request, int32_t replacing) {
    if (replacing >= records_.size()) replacing = -1;
    const CIClass& card = cardForEditing();
    if (!ValidateMultiTrack(request, card, records_, *prompter_, translator_, replacing)) return {};
    if (replacing < 0 && !roomForOneMore()) return {};
    ItemRecord item = replacing >= 0 ? records_[replacing] : ItemRecord{};
    if (replacing < 0) item.color = randomItemColor();
    item.isBinary = true;
    item.name = request.fieldName;
    item.page = request.page;
    item.block = request.row;
    item.beginByte = request.beginByte;
    item.beginBit = request.beginBit;
    item.numBytes = static_cast<int16_t>(std::clamp<int64_t>(wholeNumberOf(request.nrBytesText), 0, 32767));
    item.numBits = 0;
    int32_t at = replacing;
    if (at < 0) {
        records_.add(item);
        at = records_.size() - 1;
    } else {
        records_[at] = item;
    }
    recordsChanged();
    return {kPlacementAccepted, EditorBox::None, at};
}

LayoutDocument::DbUpdateResult LayoutDocument::applyDbUpdate(const DbUpdateEntries& entries, int32_t replacing) {
    if (replacing >= 0 && (replacing >= records_.size() || !records_[replacing].isDbUpdate)) replacing = -1;
    if (const auto v = dbUpdateViolation(entries, translator_)) {
        prompter_->tell(Icon::Exclamation, v->message, kProductTitle);
        return {false, static_cast<int>(v->focus)};
    }
    if (replacing < 0 && !roomForOneMore()) return {};
    const ItemRecord record = dbUpdateRecordOf(entries);
    if (replacing >= 0)
        records_[replacing] = record;
    else
        records_.add(record);
    recordsChanged();
    return {true};
}

EditorRecord LayoutDocument::editorRecordOfRow(int32_t row) const {
    const int32_t index = records_.indexOfItemRow(row + 1);
    if (index < 0) return {};
    return editorRecordOf(itemRowOf(records_[index]));
}

int32_t LayoutDocument::recordIndexOf(const EditorRecord& r) const {
    const uint16_t index = records_.findByPosition({r.page, r.block, r.beginByte, r.numBytes, r.beginBit, r.numBits},
                                                   r.name, r.kindWord);
    return index == RecordArray::kNone ? -1 : index;
}

bool LayoutDocument::confirmRemove(const std::string& name) {
    if (name.empty()) {
        prompter_->tell(Icon::Exclamation, text(kTextSelectItemFirst), kProductTitle);
        return false;
    }
    const std::string question = text(kTextSelectItemFirst) + "\r\n" + text(kTextReallyRemove);
    return prompter_->ask(Icon::Question, question, Buttons::YesNo, kProductTitle) == Answer::Yes;
}

bool LayoutDocument::removeItemRow(int32_t row) {
    const EditorRecord item = editorRecordOfRow(row);
    if (!confirmRemove(item.name)) return false;
    const ItemPosition at{item.page, item.block, item.beginByte, item.numBytes, item.beginBit, item.numBits};
    if (!records_.removeByPosition(at, item.name, item.kindWord)) return false;
    recordsChanged();
    return true;
}

bool LayoutDocument::removeDbUpdateRow(int32_t row) {
    const int32_t index = dbUpdateIndexOfRow(row);
    if (!confirmRemove(index < 0 ? std::string() : records_[index].dbFieldName)) return false;
    records_.removeAt(index);
    recordsChanged();
    return true;
}

}  // namespace kestrin
