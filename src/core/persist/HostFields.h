#pragma once
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrin {

class ProfileDocument;

// One database column of the host's badge project that may be placed on the chip.
struct HostField {
    std::string name;       // display name (NAME)
    std::string dbField;    // database field name (DbFIELD)
    std::string fieldType;  // type text (FIELDTYPE), kept as text
    int16_t fieldSize = 0;
    int16_t column = 0;     // the column's number in the project file minus 1
    bool inProject = true;
};

// The host project's database fields and image types, read from its project file.
class HostFieldList {
public:
    // Reads the project file. The field list replaces what an earlier call left; the image
    // types are replaced only when the file names at least one. Counts beyond the 16-bit
    // range end the reading quietly, as any error inside it does. Problems go to warnings.
    void fetch(const std::filesystem::path& projectFile, std::vector<std::string>* warnings = nullptr);
    // The same from the project file's bytes.
    void fetchFromBytes(std::string_view bytes, std::vector<std::string>* warnings = nullptr);

    const std::vector<HostField>& fields() const { return fields_; }
    int16_t count() const { return static_cast<int16_t>(fields_.size()); }
    // -1 until fields are fetched or when none were accepted.
    int16_t highestIndex() const { return static_cast<int16_t>(count() - 1); }
    // The image types (1-based in the project file, 0-based here).
    std::vector<std::string> imageTypes() const;
    int16_t imageTypeCount() const { return imageTypeCount_; }
    const std::string& tagField() const { return tagField_; }

    // The first field whose database field name equals dbField, or nullptr.
    const HostField* byDbField(std::string_view dbField) const;
    const HostField* byColumn(int16_t column) const;

    // Replaces the list (tests, hosts that supply fields themselves).
    void setFields(std::vector<HostField> fields);

private:
    void read(const ProfileDocument& doc, std::vector<std::string>* warnings);
    void reindex();

    std::vector<HostField> fields_;
    std::vector<std::string> imageTypes_;
    int16_t imageTypeCount_ = 0;
    std::string tagField_;
    std::unordered_map<std::string, size_t> byDbField_;
    std::unordered_map<int16_t, size_t> byColumn_;
};

// The field type code of a host type text: "Character" 0, "Number"/"Numeric" 1, "Date" 2,
// "Binary" 3; -1 for any other text.
int16_t fieldTypeCode(std::string_view typeText);

}  // namespace kestrin
