#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "card/CIClass.h"
#include "items/EditorRecord.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutRenderer.h"
#include "persist/LayoutSaver.h"
#include "rules/LayoutAudit.h"
#include "rules/PlacementValidation.h"
#include "text/Translator.h"

namespace kestrin {

class CatalogRegistry;
class Prompter;
struct DbUpdateEntries;
struct EditorEntries;
struct MultiTrackRequest;

// One open layout and everything its life decides: the card, the records, the host's fields,
// the language handles, the file it lives in, where its chip encode file goes, and whether it
// changed and is saved. New, open, save, save as, close and every change of its items are
// decided here without a window; the control shows the document and asks the operator
// through the prompter.
//
// Every change of the records marks the layout changed and unsaved and tells the listener,
// which rebuilds the grids and raises the host's events. Inside batch() the listener hears
// once, at the end, and only when the records (or the card) did change: one dialog session,
// however many items it applied, is one change, and a cancelled dialog is none.
class LayoutDocument {
public:
    enum class Change {
        Records,  // the records were rebuilt: grids, Changed, then GenericEvent
        Card,     // only the card's properties changed: Changed
    };
    using Listener = std::function<void(Change)>;

    explicit LayoutDocument(Prompter& prompter, const CatalogRegistry* registry = nullptr);

    void setPrompter(Prompter& prompter) { prompter_ = &prompter; }
    Prompter& prompter() const { return *prompter_; }
    void setListener(Listener listener) { listener_ = std::move(listener); }
    // The registry the language handles name.
    void setCatalogRegistry(const CatalogRegistry* registry);

    // ---- State ----
    // A layout is open (the host's CLessLayoutEntered): item commands and writing work.
    bool layoutEntered() const { return layoutEntered_; }
    void setLayoutEntered(bool entered) { layoutEntered_ = entered; }
    const CIClass* card() const { return card_.get(); }
    const RecordArray& records() const { return records_; }
    const HostFieldList& fields() const { return fields_; }
    HostFieldList& fields() { return fields_; }
    const Translator& translator() const { return translator_; }
    Translator& translator() { return translator_; }
    const std::filesystem::path& layoutFile() const { return layoutFile_; }
    const std::filesystem::path& encodePath() const { return encodePath_; }
    void setEncodePath(std::filesystem::path path) { encodePath_ = std::move(path); }
    bool saved() const { return saved_; }
    bool changed() const { return changed_; }
    // The card's switches (UseBit, UseHID): set on the card when there is one; a new or opened
    // layout sets them from its card.
    bool useBit() const;
    void setUseBit(bool on);
    bool useHID() const;
    void setUseHID(bool on);
    // The translated text of a number, with its default.
    std::string text(int32_t id, std::string_view defaultText = {}) const { return translator_.text(id, defaultText); }

    // ---- Life of the layout ----
    // A new layout: open, a new card as a new card is built (HID section in use, bit-wise
    // placement off), no records, no file, not saved.
    void newLayout();
    // Takes a layout built elsewhere (generated, converted or assembled by a host): open, from
    // no file yet, unsaved.
    void setLayout(const CIClass& card, RecordArray records);
    // Reads a layout file. An empty name or a missing file raises KestrinError; false when
    // the operator refused a file of a later version or the file could not be read, and then
    // nothing changed. On success the layout is open, from that file, and saved.
    LayoutReadResult open(const std::filesystem::path& file);
    // The same from a layout file's bytes (a layout kept elsewhere than in a file); the layout
    // then has no file of its own.
    LayoutReadResult openBytes(std::string_view bytes);
    // Writes the layout and its chip encode file to layoutFile(); false without a file or
    // when the save was refused (the operator has been told why).
    bool save();
    // Writes the layout to this file, which becomes the layout's file.
    bool saveTo(const std::filesystem::path& file);
    // The layout file as a save would write it, built in memory.
    RenderedLayout renderFile() const;
    // What the last save wrote or why it was refused.
    const SaveOutcome& lastSave() const { return lastSave_; }
    // The save dialog's filter (in the host's "text|pattern|" form) and title.
    std::string saveDialogFilter() const;
    std::string saveDialogTitle() const;
    // Takes the name chosen in the save dialog: a name without the ".IIF" extension gets it,
    // and the operator is told (text 3123). Writes the layout only while it is open; returns
    // the saved mark.
    bool saveAs(const std::filesystem::path& chosen);
    // Asks whether to close (text 3124) and, with unsaved changes, whether to save first
    // (text 3125): Yes writes to the layout's file, or through saveWithoutFile when it has
    // none, and closes only when written. True when closed.
    bool close(const std::function<bool()>& saveWithoutFile);
    // Everything wrong with the open layout: first the entries its file held that the last open
    // could not keep (until the layout is saved or replaced), then every rule a stored item breaks.
    std::vector<AuditViolation> audit() const;
    // Reads the host project's fields; database updates read before the fields were known
    // get their field names (no change of the layout). True when at least one field was read.
    bool fetchFields(const std::filesystem::path& projectFile);

    // ---- The card ----
    // A new chip type for the card (its pages rebuilt); nothing without a card.
    void setChipType(int32_t type);
    // The eight boundaries joined by "|" for the card; nothing without a card.
    void setAppBoundaries(const std::string& boundaries);
    // The card the properties dialog wrote; modified marks the layout changed and tells the
    // listener.
    void adoptCard(const CIClass& card, bool modified);
    // The card the item dialogs place on: a host may declare a layout entered without one,
    // and then gets a new card.
    CIClass& cardForEditing();

    // ---- Items ----
    // The item editor's Apply: validates the entries against the card and the other records
    // (the record at index replacing, the item being edited, does not count), removes an
    // overlapped item the operator let go, and writes the item: in place of the edited record,
    // or as a new record in a light random colour. Rejected: nothing changed. index is where
    // the written record now stands.
    struct ApplyResult {
        int32_t code = kPlacementRejected;
        EditorBox focus = EditorBox::None;
        int32_t index = -1;
    };
    ApplyResult applyItem(const EditorEntries& entries, int32_t replacing = -1);
    // The multi-track dialog's Apply: a "Binary Field" item, in place of the record at
    // replacing or new. Every broken rule refuses it with a message; then nothing changed.
    ApplyResult applyMultiTrack(const MultiTrackRequest& request, int32_t replacing = -1);
    // The database-update dialog's OK: the update in place of the record at replacing, or new.
    // False (with a message naming the box to correct) when it cannot be stored.
    struct DbUpdateResult {
        bool stored = false;
        int focusBox = 0;  // a DbUpdateBox
    };
    DbUpdateResult applyDbUpdate(const DbUpdateEntries& entries, int32_t replacing = -1);

    // The item grid's row (0 is the first item) as an editor receives it; editing is false for
    // a row that shows no item.
    EditorRecord editorRecordOfRow(int32_t row) const;
    // The index of the first record a grid row shows, or -1.
    int32_t recordIndexOf(const EditorRecord& record) const;
    // The record shown in a row of the database-update grid (0 is the first), or -1.
    int32_t dbUpdateIndexOfRow(int32_t row) const { return records_.indexOfDbUpdateRow(row + 1); }
    // Removes the item of a grid row after asking (texts 3104 and 3105); a row without an item
    // tells text 3104. True when a record was removed.
    bool removeItemRow(int32_t row);
    bool removeDbUpdateRow(int32_t row);

    // Runs an operator's session of changes (a dialog) and tells the listener once at its end,
    // only when something changed.
    void batch(const std::function<void()>& session);

private:
    void changedBy(Change change);
    void recordsChanged();
    void takeCard(std::unique_ptr<CIClass> card);
    // False, after telling the operator, when the record array is full.
    bool roomForOneMore();
    bool confirmRemove(const std::string& name);
    bool write();
    LayoutReadResult adoptRead(LayoutReadResult result, std::unique_ptr<CIClass> card, RecordArray records,
                               const std::filesystem::path& file);

    Prompter* prompter_;
    Listener listener_;
    const CatalogRegistry* registry_;
    Translator translator_;

    std::unique_ptr<CIClass> card_;
    RecordArray records_;
    std::vector<DroppedEntry> dropped_;  // of the file the layout was opened from
    HostFieldList fields_;
    std::filesystem::path layoutFile_;
    std::filesystem::path encodePath_;
    bool layoutEntered_ = false;
    bool useBit_ = false;
    bool useHID_ = false;
    bool saved_ = false;
    bool changed_ = false;
    SaveOutcome lastSave_;

    int batchDepth_ = 0;
    bool pendingRecords_ = false;
    bool pendingCard_ = false;
};

}  // namespace kestrin
