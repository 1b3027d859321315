#pragma once
#include <cstddef>
#include <cstdint>

#include "items/RecordArray.h"

namespace kestrin {

// Bounds that keep a broken or hostile file from exhausting the control. Real layouts, projects
// and language libraries stay far below them; going beyond one gets the operator a message.

// The largest layout file opened (a full card of one-bit items is under 2 MiB).
inline constexpr uintmax_t kMaxLayoutFileBytes = 64u * 1024u * 1024u;
// The largest host project file read for its database fields.
inline constexpr uintmax_t kMaxProjectFileBytes = 64u * 1024u * 1024u;
// The longest value read from a layout: the profile functions' 1024-character buffer less its
// terminator. Longer values arrive cut.
inline constexpr size_t kMaxValueChars = 1023;
// The most items a layout holds; later entries of a larger file are left out.
inline constexpr int32_t kMaxItems = RecordArray::kMaxRecords;
// The most dropped-entry warnings kept from one reading; the rest are counted.
inline constexpr size_t kMaxReadWarnings = 1000;

}  // namespace kestrin
