#include <random>

#include "base/encoding.h"
#include "host/dwg/dwg_fixture.h"
#include "host/dwg/object_map.h"
#include "host/model/core/object_access.h"

// Damaged files end in a drawing, with a word on what is wrong, or in an error that names it.
namespace sg {
namespace {

using dwg::Error;
using test::kWrittenReleases;

constexpr const char* kLine = "0\nLINE\n8\n0\n10\n1\n20\n2\n30\n3\n11\n4\n21\n5\n31\n6\n";

class DwgDamageTest : public test::DwgTest {
  protected:
    // What is said of a file that is no drawing; empty when it is one.
    std::string errorOf(const std::string& content) {
        try {
            load(content);
        } catch (const Error& error) {
            return error.what();
        }
        return {};
    }
    bool warnedOf(std::wstring_view text) const {
        return std::any_of(warnings.begin(), warnings.end(), [&](const std::wstring& warning) {
            return warning.find(text) != warning.npos;
        });
    }
};

TEST_F(DwgDamageTest, ErrorsNameTheFileAndTheSection) {
    const std::string file = written(newDrawing(), "2018");
    EXPECT_EQ(errorOf(file.substr(0, 12)), "plan.dwg: the drawing file ends in its first bytes");
    EXPECT_EQ(errorOf("AC1009" + file.substr(6)),
              "plan.dwg: drawing files of the version AC1009 are not read");
    EXPECT_EQ(errorOf(file.substr(0, 0xC0)), "plan.dwg: the drawing file ends in its header");
    std::string scrambled = file;
    scrambled[0x80] = static_cast<char>(scrambled[0x80] ^ 1);
    EXPECT_EQ(errorOf(scrambled), "plan.dwg: the drawing file's header is damaged");
    EXPECT_EQ(errorOf(file.substr(0, 0x400)), "plan.dwg: the page map is not in the file");
}

TEST_F(DwgDamageTest, AnObjectsWrongCheckNumberIsSaid) {
    std::string file = written(drawingOf(kLine), "2000");
    const dwg::ByteSpan bytes(reinterpret_cast<const uint8_t*>(file.data()), file.size());
    dwg::FileContent content = dwg::readContainer(bytes, L"plan.dwg");
    const dwg::ObjectPlace last = dwg::readObjectMap(content, L"plan.dwg").back();
    const size_t size = dwg::shortAt(bytes, last.address);
    file[last.address + 2 + size] = static_cast<char>(file[last.address + 2 + size] ^ 0x10);
    load(file);
    EXPECT_TRUE(warnedOf(L"plan.dwg: the check number of object "));
    EXPECT_EQ(warnings.size(), 1u);
}

// Wherever a file ends, or a bit is wrong, reading ends.
TEST_F(DwgDamageTest, NoDamageIsFatal) {
    AcDbDatabase& database = drawingOf(kLine);
    std::mt19937 random(5);
    for (const char* const release : {"2000", "2018"}) {
        const std::string file = written(database, release);
        for (size_t end = 0; end < file.size(); end += 37)
            errorOf(file.substr(0, end));
        for (int turn = 0; turn < 300; ++turn) {
            std::string damaged = file;
            for (int i = 0; i < 3; ++i) {
                char& byte = damaged[random() % damaged.size()];
                byte = static_cast<char>(byte ^ 1 << random() % 8);
            }
            errorOf(damaged);
        }
    }
}

TEST_F(DwgDamageTest, ADamagedObjectCostsNoOther) {
    AcDbDatabase& database = drawingOf(std::string(kLine) + kLine + kLine);
    std::string file = written(database, "2000");
    const dwg::ByteSpan bytes(reinterpret_cast<const uint8_t*>(file.data()), file.size());
    dwg::FileContent content = dwg::readContainer(bytes, L"plan.dwg");
    const auto* const space = model::peek<AcDbBlockTableRecord>(database.modelSpaceId());
    const uint64_t handle = (*space->entityIds().begin()).handle();
    for (const dwg::ObjectPlace& place : dwg::readObjectMap(content, L"plan.dwg")) {
        if (place.handle == handle) file[place.address] = 0;
    }
    AcDbDatabase& again = load(file);
    const auto* const left = model::peek<AcDbBlockTableRecord>(again.modelSpaceId());
    size_t count = 0;
    for ([[maybe_unused]] const AcDbObjectId id : left->entityIds())
        ++count;
    EXPECT_EQ(count, 2u);
    EXPECT_TRUE(warnedOf(L" is not where the map of objects says; it is left out"));
}

TEST_F(DwgDamageTest, TheMapOfObjectsIsCutIntoParts) {
    std::vector<dwg::ObjectPlace> places;
    uint64_t handle = 0;
    uint64_t address = 1'000'000;
    for (int i = 0; i < 5000; ++i) {
        handle += 1 + static_cast<uint64_t>(i % 3) * 1000;
        address += static_cast<uint64_t>(i % 2 == 0 ? 70 : -30);
        places.push_back({handle, address});
    }
    dwg::FileContent content;
    content.add(dwg::section::kObjectMap, dwg::writeObjectMap(places));
    const auto again = dwg::readObjectMap(content, L"plan.dwg");
    EXPECT_TRUE(content.warnings.empty());
    ASSERT_EQ(again.size(), places.size());
    for (size_t i = 0; i < places.size(); ++i) {
        EXPECT_EQ(again[i].handle, places[i].handle) << i;
        EXPECT_EQ(again[i].address, places[i].address) << i;
    }
}

}  // namespace
}  // namespace sg
