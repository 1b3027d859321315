#include "CIClass.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "CardGeometry.h"
#include "base/KestrinError.h"

namespace kestrin {

namespace {

std::vector<std::string> splitBars(const std::string& text) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (;;) {
        size_t bar = text.find('|', start);
        parts.push_back(text.substr(start, bar == std::string::npos ? std::string::npos : bar - start));
        if (bar == std::string::npos) return parts;
        start = bar + 1;
    }
}

// A boundary part converts like an automation integer conversion: blanks around a decimal
// number, halves rounded to the even neighbour; text that is no number is a type mismatch.
int32_t boundaryValue(const std::string& part) {
    const char* begin = part.c_str();
    char* end = nullptr;
    errno = 0;
    double value = std::strtod(begin, &end);
    while (end && (*end == ' ' || *end == '\t')) ++end;
    bool isNumber = end != begin && end && *end == '\0' && part.find_first_of("xXnNiIpP") == std::string::npos;
    if (!isNumber) throw KestrinError(13, "CIClass", "Type mismatch");
    double rounded = std::nearbyint(value);
    if (errno == ERANGE || rounded < INT32_MIN || rounded > INT32_MAX)
        throw KestrinError(6, "CIClass", "Overflow");
    return static_cast<int32_t>(rounded);
}

}  // namespace

CIClass::CIClass() {
    setChipSize(iSmallOnePage);
}

CIClass::CIClass(const CIClass& other)
    : pages_(other.pages_), pagesCount_(other.pagesCount_), enableBitwise_(other.enableBitwise_),
      useHIDSection_(other.useHIDSection_), chipSize_(other.chipSize_), layoutName_(other.layoutName_) {
    reparent();
}

CIClass& CIClass::operator=(const CIClass& other) {
    if (this == &other) return *this;
    pages_ = other.pages_;
    pagesCount_ = other.pagesCount_;
    enableBitwise_ = other.enableBitwise_;
    useHIDSection_ = other.useHIDSection_;
    chipSize_ = other.chipSize_;
    layoutName_ = other.layoutName_;
    reparent();
    return *this;
}

void CIClass::reparent() {
    for (CPage* p : pages_.list()) p->Parent = this;
}

void CIClass::setUseHIDSection(bool on) {
    useHIDSection_ = on;
    if (pages_.Count() > 0) pages_.Item(1).BeginFreeSpace = on ? kFreeSpaceWithHid : kFreeSpaceWithoutHid;
}

void CIClass::setChipSize(IClassType type) {
    chipSize_ = type;
    buildPages();
    setUseHIDSection(true);
    enableBitwise_ = false;
}

void CIClass::buildPages() {
    const int32_t before = pages_.Count();
    for (int32_t i = 1; i <= before; ++i) pages_.Remove(std::to_string(i - 1));

    const int32_t firstFree = useHIDSection_ ? kFreeSpaceWithHid : kFreeSpaceWithoutHid;
    if (chipSize_ == iSmallOnePage || chipSize_ == iBigOnePage) {
        pagesCount_ = 1;
        CPage& p = pages_.Add("0", 0, "0");
        p.Parent = this;
        p.Boundary = 0;
        p.PageSize = pageSizeOf(chipSize_);
        p.BeginFreeSpace = firstFree;
        p.HasHeader = true;
        p.HasHIDSpace = true;
    } else if (chipSize_ == iBigEightPages) {
        pagesCount_ = 8;
        for (int32_t n = 0; n < 8; ++n) {
            const std::string key = std::to_string(n);
            CPage& p = pages_.Add(key, n, key);
            p.Parent = this;
            p.PageSize = kSmallPageSize;
            p.BeginFreeSpace = n == 0 ? firstFree : kFreeSpaceWithoutHid;
            p.HasHeader = true;
            p.HasHIDSpace = n == 0;
            p.Boundary = kDefaultBoundary;
        }
    }
}

void CIClass::SetBoundaries(const std::string& sBoundaries) {
    if (sBoundaries.empty() || pages_.Count() == 0) return;
    const std::vector<std::string> parts = splitBars(sBoundaries);
    if (chipSize_ == iSmallOnePage || chipSize_ == iBigOnePage) {
        // Position 0 does not exist, so a one-page card never takes boundaries from text.
        pages_.Item(0).Boundary = 0;
        return;
    }
    if (chipSize_ != iBigEightPages || parts.size() != 8) return;
    std::vector<int32_t> values;
    for (const auto& part : parts) values.push_back(boundaryValue(part));
    for (int32_t n = 0; n < 8; ++n) pages_.Item(std::to_string(n)).Boundary = values[static_cast<size_t>(n)];
}

void CIClass::SetBoundary(int32_t iPage, int32_t iBoundary) {
    if (iPage < 1 || iPage > 8 || iBoundary < kMinBoundary || iBoundary > kMaxBoundary) return;
    if (pagesCount_ < iPage + 1) return;
    if (CPage* p = pages_.find(std::to_string(iPage))) p->Boundary = iBoundary;
}

int32_t CIClass::GetBoundary(int32_t iPage) const {
    if (pages_.Count() == 0 || pagesCount_ < iPage) return -1;
    return pages_.Item(std::to_string(iPage)).Boundary;
}

CPage* CIClass::page(int32_t pageNumber) {
    return pages_.find(std::to_string(pageNumber));
}

const CPage* CIClass::page(int32_t pageNumber) const {
    return pages_.find(std::to_string(pageNumber));
}

}  // namespace kestrin
