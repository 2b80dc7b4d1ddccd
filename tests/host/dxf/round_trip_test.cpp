#include <fmt/format.h>

#include <algorithm>

#include "base/encoding.h"
#include "host/dxf/dxf_fixture.h"
#include "host/dxf/text_codec.h"

// Files that other programs wrote, read and written again in their own release.
namespace sg {
namespace {

using dxf::Group;
using dxf::GroupReader;
using dxf::ValueKind;

// The groups of a file, each with the text of what it says: numbers as numbers, texts as the
// drawing has them.
struct Groups {
    std::vector<Group> list;
    std::vector<size_t> lines;

    explicit Groups(const std::string& content) {
        GroupReader reader(content);
        Group group;
        size_t line = 1;
        size_t from = 0;
        while (reader.next(group) == GroupReader::Step::group) {
            list.push_back(group);
            const size_t to = reader.position();
            if (!reader.isBinary()) {
                line += static_cast<size_t>(
                    std::count(content.begin() + static_cast<ptrdiff_t>(from),
                               content.begin() + static_cast<ptrdiff_t>(to), '\n'));
            }
            from = to;
            lines.push_back(line - 2);
        }
    }
};

bool isSame(const Group& a, const Group& b, const dxf::TextCodec& codec) {
    if (a.code != b.code) return false;
    switch (a.kind) {
        case ValueKind::real:
            return a.real == b.real;
        case ValueKind::handle:
        case ValueKind::object:
            return a.handle == b.handle;
        case ValueKind::text:
        case ValueKind::unknown:
            return codec.decoded(a.text) == codec.decoded(b.text);
        case ValueKind::binary:
            return a.text == b.text;
        default:
            return a.whole == b.whole;
    }
}

std::string shown(const Groups& groups, size_t at) {
    if (at >= groups.list.size()) return "the end";
    return fmt::format("line {}: {} {}", groups.lines[at], groups.list[at].code,
                       groups.list[at].text);
}

// What differs, the first few places.
std::vector<std::string> differences(const std::string& before, const std::string& after,
                                     bool isUtf8) {
    const Groups a(before), b(after);
    const auto page = std::find_if(a.list.begin(), a.list.end(),
                                   [](const Group& group) { return group.is(9, "$DWGCODEPAGE"); });
    const dxf::TextCodec codec(page == a.list.end() ? "ANSI_1252" : page[1].text, isUtf8);
    std::vector<std::string> found;
    size_t i = 0, j = 0;
    while ((i < a.list.size() || j < b.list.size()) && found.size() < 20) {
        if (i < a.list.size() && j < b.list.size() && isSame(a.list[i], b.list[j], codec)) {
            ++i;
            ++j;
            continue;
        }
        found.push_back(shown(a, i) + " -> " + shown(b, j));
        // Goes on where the two meet again soonest.
        size_t skip = 1, best_i = i + 1, best_j = j + 1;
        for (bool met = false; skip < 2000 && !met; ++skip) {
            for (size_t k = 0; k <= skip && !met; ++k) {
                const size_t x = i + k, y = j + skip - k;
                if (x + 1 >= a.list.size() || y + 1 >= b.list.size()) continue;
                met = isSame(a.list[x], b.list[y], codec) &&
                      isSame(a.list[x + 1], b.list[y + 1], codec);
                if (met) {
                    best_i = x;
                    best_j = y;
                }
            }
        }
        i = best_i;
        j = best_j;
    }
    return found;
}

class RoundTripTest : public test::DxfTest {};

TEST_F(RoundTripTest, InItsOwnReleaseAFileComesOutAsItWas) {
    const auto files = realFiles();
    if (files.empty()) GTEST_SKIP() << "the files of other programs are not here";
    for (const auto& file : files) {
        const std::string before = contentOf(file);
        AcDbDatabase& database = load(before);
        const std::string after = written(database);
        const bool isUtf8 = dxf::ownRelease(database).number >= AcDb::kDHL_1021;
        for (const std::string& difference : differences(before, after, isUtf8))
            ADD_FAILURE() << file.filename() << " " << difference;
    }
}

// Files of this product: what is written is read to the same drawing, in every release and form.
TEST_F(RoundTripTest, AnyReleaseIsReadAgainWithoutAWord) {
    for (const auto& file : realFiles()) {
        AcDbDatabase& database = load(contentOf(file));
        for (const char* release : {"2000", "2007", "2013", "2018"}) {
            const std::string text = written(database, release);
            AcDbDatabase& again = load(text);
            EXPECT_EQ(dxf::ownRelease(again).name, release);
            EXPECT_TRUE(written(again) == text) << file.filename() << " " << release;
            AcDbDatabase& binary = load(written(database, release, true));
            EXPECT_TRUE(written(binary) == text) << file.filename() << " " << release;
        }
    }
}

}  // namespace
}  // namespace sg
