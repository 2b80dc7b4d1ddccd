#pragma once

#include <string>
#include <string_view>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/format/format.h"
#include "host/jet/values/value.h"

// Texts as rows and definitions hold them. See docs/formats/jet.md, "Text".
namespace sg::jet {

// A Text or Memo value: the code page's bytes in Jet 3, else UTF-16 with or without compression.
// Replaces `text`, whose memory is used again. An odd byte at the end of UTF-16 is left out.
SG_API void decodeText(ByteView bytes, const Format& format, std::wstring& text);

// The same in UTF-8: the bytes themselves where they are that already, else in `buffer`.
SG_API std::string_view decodeTextUtf8(ByteView bytes, const Format& format, std::string& buffer);

// Replaces `bytes` by the text's: UTF-16, compressed when `compress` is set, every character is one
// of U+0001 to U+00FF, and that is shorter and no longer than 4096 bytes. For Jet 4 and ACE. A text
// that begins with U+FEFF is compressed in any case, since nothing else tells it from a compressed
// one; throws ConversionError when it has characters that can't be.
SG_API void encodeText(std::wstring_view text, bool compress, Bytes& bytes);

// A name in a definition or a property block, which is never compressed.
SG_API std::wstring decodeName(ByteView bytes, const Format& format);
// The reverse, for Jet 4 and ACE.
SG_API void encodeName(std::wstring_view name, Bytes& bytes);

}  // namespace sg::jet
