#pragma once
#include <cstdint>
#include <string>

#include "IClassType.h"
#include "Pages.h"

namespace kestrin {

// The card being designed: chip type, pages, HID section, bit-wise switch, layout name
// and the application boundaries. Setting the chip type rebuilds every page and then
// switches the HID section on and bit-wise placement off.
class CIClass {
public:
    CIClass();
    CIClass(const CIClass& other);
    CIClass& operator=(const CIClass& other);

    kestrin::Pages& Pages() { return pages_; }
    const kestrin::Pages& Pages() const { return pages_; }
    int32_t PagesCount() const { return pagesCount_; }

    bool EnableBitwise() const { return enableBitwise_; }
    void setEnableBitwise(bool on) { enableBitwise_ = on; }

    bool UseHIDSection() const { return useHIDSection_; }
    // Also moves the first page's first free block to 19 (on) or 6 (off).
    void setUseHIDSection(bool on);

    IClassType ChipSize() const { return chipSize_; }
    void setChipSize(IClassType type);

    const std::string& LayoutName() const { return layoutName_; }
    void setLayoutName(const std::string& name) { layoutName_ = name; }

    // Eight boundaries joined by "|", pages "0" to "7". A one-page card raises the
    // collection's subscript error and keeps boundary 0; any other count of parts is ignored.
    void SetBoundaries(const std::string& sBoundaries);
    // Pages 1 to 8 (existing pages only) take boundaries 6 to 32; anything else is dropped.
    void SetBoundary(int32_t iPage, int32_t iBoundary);
    // -1 without pages or when iPage is beyond the page count; a missing key raises.
    int32_t GetBoundary(int32_t iPage) const;

    // The page with key text of pageNumber, or nullptr.
    CPage* page(int32_t pageNumber);
    const CPage* page(int32_t pageNumber) const;

private:
    void buildPages();
    void reparent();

    kestrin::Pages pages_;
    int32_t pagesCount_ = 0;
    bool enableBitwise_ = false;
    bool useHIDSection_ = false;
    IClassType chipSize_ = iSmallOnePage;
    std::string layoutName_;
};

}  // namespace kestrin
