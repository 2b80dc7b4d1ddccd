#include "host/dwg/code_pages.h"

#include <iterator>

namespace sg::dwg {
namespace {

constexpr uint16_t kStandard = 30;

constexpr std::string_view kNames[] = {
    "",          "ASCII",     "ISO8859-1", "ISO8859-2", "ISO8859-3", "ISO8859-4", "ISO8859-5",
    "ISO8859-6", "ISO8859-7", "ISO8859-8", "ISO8859-9", "DOS437",    "DOS850",    "DOS852",
    "DOS855",    "DOS857",    "DOS860",    "DOS861",    "DOS863",    "DOS864",    "DOS865",
    "DOS869",    "DOS932",    "MACINTOSH", "BIG5",      "KSC5601",   "JOHAB",     "DOS866",
    "ANSI_1250", "ANSI_1251", "ANSI_1252", "GB2312",    "ANSI_1253", "ANSI_1254", "ANSI_1255",
    "ANSI_1256", "ANSI_1257", "ANSI_874",  "ANSI_932",  "ANSI_936",  "ANSI_949",  "ANSI_950",
    "ANSI_1361", "",          "ANSI_1258",
};

}  // namespace

std::string_view codePageName(uint16_t number) {
    const bool isKnown = number < std::size(kNames) && !kNames[number].empty();
    return kNames[isKnown ? number : kStandard];
}

uint16_t codePageNumber(std::string_view name) {
    for (uint16_t number = 1; number < std::size(kNames); ++number) {
        if (kNames[number] == name) return number;
    }
    return kStandard;
}

}  // namespace sg::dwg
