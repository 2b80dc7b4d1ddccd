#include "host/dxf/group_reader.h"

#include <gtest/gtest.h>

#include <cstring>

namespace sg::dxf {
namespace {

using Step = GroupReader::Step;

std::string bytes(std::initializer_list<int> values) {
    return {values.begin(), values.end()};
}

const std::string kSentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

std::string real(double value) {
    return {reinterpret_cast<const char*>(&value), sizeof(value)};
}

TEST(GroupReaderTest, LinesInAnyShapeAreGroups) {
    for (const char* content : {"  0\r\nLINE\r\n 10\r\n1.5\r\n", "0\nLINE\n10\n 1.5 \n",
                                "\xEF\xBB\xBF  0\nLINE\n10\n+1.5", "  0\rLINE\r 10\r1.5\r",
                                "999\nsaid by a program\n  0\nLINE\n\n 10\n15e-1\n"}) {
        GroupReader reader(content);
        Group group;
        ASSERT_EQ(reader.next(group), Step::group) << content;
        EXPECT_TRUE(group.is(0, "LINE")) << content;
        ASSERT_EQ(reader.next(group), Step::group) << content;
        EXPECT_EQ(group.code, 10);
        EXPECT_EQ(group.real, 1.5) << content;
        EXPECT_EQ(reader.next(group), Step::end) << content;
    }
}

TEST(GroupReaderTest, ValuesAreWhatTheirCodesSay) {
    struct Case {
        const char* content;
        ValueKind kind;
        int64_t whole;
        bool isMalformed;
    };
    for (const Case& c : {Case{"70\n  -3\n", ValueKind::whole16, -3, false},
                          {"70\n2.0\n", ValueKind::whole16, 2, false},
                          {"160\n9007199254740993\n", ValueKind::whole64, 9007199254740993, false},
                          {"90\n99999999999999999999\n", ValueKind::whole32, 0, true},
                          {"290\nx\n", ValueKind::boolean, 0, true},
                          {"330\n1f\n", ValueKind::object, 0x1F, false},
                          {"5\nFFFFFFFFFFFFFFFF\n", ValueKind::handle, -1, false},
                          {"5\nxyz\n", ValueKind::handle, 0, true},
                          {"40\nnan\n", ValueKind::real, 0, true},
                          {"40\n1e999\n", ValueKind::real, 0, true},
                          {"40\n1e-999\n", ValueKind::real, 0, false}}) {
        GroupReader reader(c.content);
        Group group;
        ASSERT_EQ(reader.next(group), Step::group);
        EXPECT_EQ(group.kind, c.kind) << c.content;
        EXPECT_EQ(group.isMalformed, c.isMalformed) << c.content;
        if (!c.isMalformed) {
            EXPECT_EQ(group.whole, c.whole) << c.content;
        }
    }
}

TEST(GroupReaderTest, DamageStaysWhereItIsAndTheNextObjectIsFound) {
    const std::string content = "  0\nLINE\nrubbish\nmore\n  0\n0\n  0\nCIRCLE\n 40\n";
    GroupReader reader(content);
    Group group;
    reader.next(group);
    EXPECT_EQ(reader.next(group), Step::damage);
    EXPECT_EQ(reader.lineOf(reader.position()), 3u);
    ASSERT_TRUE(reader.recover());
    EXPECT_EQ(reader.lineOf(reader.position()), 7u);
    EXPECT_EQ(reader.next(group), Step::group);
    EXPECT_TRUE(group.is(0, "CIRCLE"));
    EXPECT_EQ(reader.next(group), Step::damage) << "the value is cut off";
    EXPECT_FALSE(reader.recover());
}

TEST(GroupReaderTest, BinaryFilesHaveCodesOfOneByteOrTwo) {
    const std::string wide = kSentinel + bytes({0, 0}) + "SECTION" + bytes({0, 10, 0}) + real(1.5) +
                             bytes({54, 1, 2, 7, 8});
    const std::string narrow = kSentinel + bytes({0}) + "SECTION" + bytes({0, 10}) + real(1.5) +
                               bytes({255, 0xEC, 3, 2, 7, 8});
    for (const std::string& content : {wide, narrow}) {
        ASSERT_TRUE(GroupReader::recognises(content.substr(0, 64)));
        GroupReader reader(content);
        Group group;
        ASSERT_EQ(reader.next(group), Step::group);
        EXPECT_TRUE(group.is(0, "SECTION"));
        ASSERT_EQ(reader.next(group), Step::group);
        EXPECT_EQ(group.real, 1.5);
        ASSERT_EQ(reader.next(group), Step::group);
        EXPECT_EQ(group.text, "\x07\x08");
        EXPECT_FALSE(group.isHex);
        EXPECT_EQ(reader.next(group), Step::end);
        for (size_t cut = kSentinel.size() + 1; cut < content.size(); ++cut) {
            GroupReader shorter(std::string_view(content).substr(0, cut));
            Step step = Step::group;
            for (int i = 0; i < 4 && step == Step::group; ++i)
                step = shorter.next(group);
            EXPECT_NE(step, Step::group) << cut;
        }
    }
}

TEST(GroupReaderTest, OnlyDrawingsAreRecognised) {
    EXPECT_TRUE(GroupReader::recognises("  0\r\nSECTION"));
    EXPECT_TRUE(GroupReader::recognises("999\ncomment"));
    for (const char* start : {"", "0", "AC1032\n", "no drawing at all\n", "1\n"})
        EXPECT_FALSE(GroupReader::recognises(start)) << start;
}

}  // namespace
}  // namespace sg::dxf
