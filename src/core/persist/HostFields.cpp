#include "HostFields.h"

#include <limits>

#include "ProfileDocument.h"
#include "InputLimits.h"
#include "ProfileStrings.h"

namespace kestrin {

namespace {
bool fitsInt16(int32_t v) {
    return v >= std::numeric_limits<int16_t>::min() && v <= std::numeric_limits<int16_t>::max();
}
}  // namespace

int16_t fieldTypeCode(std::string_view typeText) {
    if (typeText == "Character") return 0;
    if (typeText == "Number" || typeText == "Numeric") return 1;
    if (typeText == "Date") return 2;
    if (typeText == "Binary") return 3;
    return -1;
}

void HostFieldList::fetch(const std::filesystem::path& projectFile, std::vector<std::string>* warnings) {
    std::string error;
    auto loaded = ProfileDocument::load(projectFile, &error, kMaxProjectFileBytes);
    // A missing project file reads as one without keys: the lists come out empty.
    if (!loaded && warnings) warnings->push_back("project file: " + error);
    if (loaded) read(*loaded, warnings);
    else read(ProfileDocument::parse({}), warnings);
}

void HostFieldList::fetchFromBytes(std::string_view bytes, std::vector<std::string>* warnings) {
    read(ProfileDocument::parse(bytes), warnings);
}

void HostFieldList::read(const ProfileDocument& doc, std::vector<std::string>* warnings) {
    auto warn = [&](const std::string& text) {
        if (warnings) warnings->push_back(text);
    };
    const int32_t declared = doc.getInt("DATABASE", "NUMCOLUMNS", 0);
    if (!fitsInt16(declared)) {
        warn("project file: NUMCOLUMNS " + std::to_string(declared) + " is out of range; fields not read");
        return;
    }
    tagField_ = readLayoutString(doc, "DATABASE", "TagField");

    std::vector<HostField> fields;
    for (int32_t i = 1; i <= declared; ++i) {
        const std::string section = "COLUMN" + std::to_string(i);
        HostField f;
        f.dbField = readLayoutString(doc, section, "DbFIELD");
        if (f.dbField == tagField_) continue;  // the tag field identifies the card record
        if (doc.getInt(section, "InProject", 1) == 0) continue;
        f.name = readLayoutString(doc, section, "NAME");
        f.fieldType = readLayoutString(doc, section, "FIELDTYPE");
        const int32_t size = doc.getInt(section, "FIELDSIZE", 0);
        if (!fitsInt16(size)) {
            warn("project file: " + section + " FIELDSIZE " + std::to_string(size) + " is out of range");
            fields_ = std::move(fields);
            reindex();
            return;
        }
        f.fieldSize = static_cast<int16_t>(size);
        f.column = static_cast<int16_t>(i - 1);
        fields.push_back(std::move(f));
    }
    fields_ = std::move(fields);
    reindex();

    const int32_t images = doc.getInt("ImageTypes", "Count", 0);
    if (!fitsInt16(images)) {
        warn("project file: ImageTypes Count " + std::to_string(images) + " is out of range");
        return;
    }
    if (images <= 0) {
        // Only the count goes back to zero; earlier entries stay allocated.
        imageTypeCount_ = 0;
        return;
    }
    imageTypes_.clear();
    for (int32_t i = 1; i <= images; ++i) imageTypes_.push_back(readLayoutString(doc, "ImageTypes", std::to_string(i)));
    imageTypeCount_ = static_cast<int16_t>(images);
}

std::vector<std::string> HostFieldList::imageTypes() const {
    const size_t n = std::min(imageTypes_.size(), static_cast<size_t>(imageTypeCount_));
    return {imageTypes_.begin(), imageTypes_.begin() + static_cast<std::ptrdiff_t>(n)};
}

void HostFieldList::setFields(std::vector<HostField> fields) {
    fields_ = std::move(fields);
    reindex();
}

void HostFieldList::reindex() {
    byDbField_.clear();
    byColumn_.clear();
    for (size_t i = 0; i < fields_.size(); ++i) {
        byDbField_.try_emplace(fields_[i].dbField, i);
        byColumn_.try_emplace(fields_[i].column, i);
    }
}

const HostField* HostFieldList::byDbField(std::string_view dbField) const {
    auto it = byDbField_.find(std::string(dbField));
    return it == byDbField_.end() ? nullptr : &fields_[it->second];
}

const HostField* HostFieldList::byColumn(int16_t column) const {
    auto it = byColumn_.find(column);
    return it == byColumn_.end() ? nullptr : &fields_[it->second];
}

}  // namespace kestrin
