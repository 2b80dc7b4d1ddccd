#pragma once

#include <string>

#include "base/export.h"
#include "host/jet/byte_view.h"
#include "host/jet/format.h"

// Texts as rows and definitions hold them. See docs/formats/jet.md, "Text".
namespace sg::jet {

// A Text or Memo value: the code page's bytes in Jet 3, else UTF-16 with or without compression.
// Replaces `text`, whose memory is used again. An odd byte at the end of UTF-16 is left out.
SG_API void decodeText(ByteView bytes, const Format& format, std::wstring& text);

// A name in a definition or a property block, which is never compressed.
SG_API std::wstring decodeName(ByteView bytes, const Format& format);

}  // namespace sg::jet
