#include "host/jet/catalog/properties.h"

#include <gtest/gtest.h>

#include "host/jet/database/database.h"
#include "host/jet/file_builder.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {
namespace {

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes sized(const Bytes& content, size_t sizeBytes, size_t counted) {
    Bytes bytes = test::number(static_cast<int64_t>(content.size() + counted), sizeBytes).bytes;
    append(bytes, content);
    return bytes;
}

// A property value put together part by part.
struct PropertyBytes {
    Version version;
    Bytes bytes = version == Version::Jet3 ? Bytes{'K', 'K', 'D', 0} : Bytes{'M', 'R', '2', 0};

    Bytes name(const std::wstring& text) const {
        return sized(test::text(version, text).bytes, 2, 0);
    }
    void chunk(uint16_t kind, const Bytes& content) {
        append(bytes, test::number(static_cast<int64_t>(content.size() + 6), 4).bytes);
        append(bytes, test::number(kind, 2).bytes);
        append(bytes, content);
    }
    void names(const std::vector<std::wstring>& list) {
        Bytes content;
        for (const std::wstring& one : list) {
            append(content, name(one));
        }
        chunk(0x80, content);
    }
    static Bytes record(uint8_t flag, ColumnType type, uint16_t name, const Bytes& data) {
        Bytes content = {flag, static_cast<uint8_t>(type)};
        append(content, test::number(name, 2).bytes);
        append(content, sized(data, 2, 0));
        return sized(content, 2, 2);
    }
    void block(uint16_t kind, const std::wstring& owner, const std::vector<Bytes>& records) {
        Bytes content = sized(name(owner), 4, 4);
        for (const Bytes& record : records) {
            append(content, record);
        }
        chunk(kind, content);
    }
    Properties parse() const {
        return Properties::parse({bytes.data(), bytes.size()}, formatOf(version));
    }
};

PropertyBytes sample(Version version) {
    PropertyBytes p{version};
    p.names({L"Description", L"Required", L"GUID", L"Width"});
    const auto text = [&](const wchar_t* t) { return test::text(version, t).bytes; };
    p.block(0, L"", {p.record(1, ColumnType::Text, 0, text(L"all rooms"))});
    p.block(
        1, L"Area",
        {p.record(1, ColumnType::Boolean, 1, {1}), p.record(0, ColumnType::Memo, 0, text(L"m²")),
         p.record(0, ColumnType::Binary, 2, Bytes(16, 0xAB)),
         p.record(0, ColumnType::Integer, 3, {0x34, 0x12})});
    return p;
}

class PropertiesTest : public testing::TestWithParam<Version> {};

TEST_P(PropertiesTest, BlocksOfTheTableAndOfItsColumns) {
    const Properties p = sample(GetParam()).parse();
    ASSERT_EQ(p.blocks().size(), 2u);
    EXPECT_EQ(p.text(L"", L"description"), L"all rooms");
    EXPECT_EQ(p.text(L"AREA", L"Description"), L"m²");
    EXPECT_TRUE(p.flag(L"Area", L"Required"));
    EXPECT_TRUE(p.find(L"Area", L"Required")->needsDesignRights);
    EXPECT_FALSE(p.find(L"Area", L"Width")->needsDesignRights);
    EXPECT_EQ(p.find(L"Area", L"Width")->value, Value(int16_t(0x1234)));
    EXPECT_TRUE(std::holds_alternative<Guid>(p.find(L"Area", L"GUID")->value));
    EXPECT_EQ(p.find(L"", L"Required"), nullptr);
    EXPECT_EQ(p.find(L"Name", L"Description"), nullptr);
    EXPECT_EQ(p.text(L"Area", L"Width"), L"");
    EXPECT_FALSE(p.flag(L"Area", L"Description"));
}

TEST_P(PropertiesTest, AnyCutIsAnErrorAtAPartOrAShorterList) {
    const PropertyBytes whole = sample(GetParam());
    EXPECT_TRUE(Properties::parse({}, formatOf(GetParam())).blocks().empty());
    for (size_t size = 1; size < whole.bytes.size(); ++size) {
        try {
            const Properties p =
                Properties::parse({whole.bytes.data(), size}, formatOf(GetParam()));
            EXPECT_LT(p.blocks().size(), 2u) << size;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), Damaged);
        }
    }
}

TEST_P(PropertiesTest, ContradictionsAreErrors) {
    const Version version = GetParam();
    const auto refused = [](const PropertyBytes& p) { EXPECT_THROW(p.parse(), Error); };
    PropertyBytes mark{version};
    mark.bytes[0] = 'X';
    refused(mark);
    PropertyBytes noNames{version};
    noNames.block(0, L"", {PropertyBytes::record(0, ColumnType::Boolean, 0, {1})});
    refused(noNames);
    PropertyBytes shortRecord{version};
    shortRecord.names({L"A"});
    shortRecord.block(0, L"", {Bytes{0, 0}});
    refused(shortRecord);
    PropertyBytes shortChunk{version};
    append(shortChunk.bytes, {5, 0, 0, 0, 0, 0});
    refused(shortChunk);
    PropertyBytes shortValue{version};
    shortValue.names({L"A"});
    shortValue.block(0, L"", {PropertyBytes::record(0, ColumnType::Double, 0, {1, 2})});
    refused(shortValue);
    PropertyBytes longName{version};
    longName.names({std::wstring(65, L'n')});
    refused(longName);
}

TEST_P(PropertiesTest, TheDatabaseFindsThemWithTheirTable) {
    test::FileBuilder builder(GetParam());
    builder.addObject(-5, L"Linked", 6, 0, test::inlineLong(sample(GetParam()).bytes));
    const Bytes bytes = builder.bytes();
    const Database db(std::make_unique<MemoryPageStore>(bytes, L"p.mdb"));
    EXPECT_EQ(db.tableProperties(L"linked").text(L"", L"Description"), L"all rooms");
}

// All that a property value tells, one line a property.
std::vector<std::wstring> told(const Properties& properties) {
    std::vector<std::wstring> lines;
    for (const PropertyBlock& block : properties.blocks()) {
        for (const Property& p : block.properties) {
            lines.push_back(std::to_wstring(block.kind) + L" " + block.owner + L"." + p.name +
                            L" " + std::to_wstring(static_cast<int>(p.type)) +
                            (p.needsDesignRights ? L"! " : L" ") +
                            std::to_wstring(p.value.index()) + L" " + toInvariantText(p.value));
        }
    }
    return lines;
}

std::vector<std::wstring> toldAgain(const Properties& properties) {
    const Bytes bytes = properties.serialize(formatOf(Version::Jet4));
    return told(Properties::parse({bytes.data(), bytes.size()}, formatOf(Version::Jet4)));
}

TEST_P(PropertiesTest, WhatIsReadIsWrittenTheSame) {
    const Properties p = sample(GetParam()).parse();
    EXPECT_EQ(told(p).size(), 5u);
    EXPECT_EQ(toldAgain(p), told(p));
    const PropertyBytes jet4 = sample(Version::Jet4);
    EXPECT_EQ(p.serialize(formatOf(Version::Jet4)), jet4.bytes);
    EXPECT_TRUE(Properties().serialize(formatOf(Version::Jet4)).empty());
}

TEST_P(PropertiesTest, PropertiesAreSetTakenAwayAndGivenToAnotherOwner) {
    Properties p = sample(GetParam()).parse();
    p.set(L"AREA", {L"required", ColumnType::Boolean, true, false});
    p.set(L"Area", {L"Default", ColumnType::Memo, false, std::wstring(L"0")});
    p.set(L"Name", {L"Caption", ColumnType::Text, false, std::wstring(L"The name")});
    p.set(L"", {L"ValidationRule", ColumnType::Text, true, std::wstring(L"[Area]>0")});
    p.set(L"", {L"description", ColumnType::Text, true, Value()});
    p.set(L"", {L"Never", ColumnType::Text, true, Value()});
    EXPECT_FALSE(p.flag(L"Area", L"Required"));
    EXPECT_EQ(p.text(L"area", L"default"), L"0");
    EXPECT_EQ(p.text(L"", L"ValidationRule"), L"[Area]>0");
    EXPECT_EQ(p.find(L"", L"Description"), nullptr);
    EXPECT_EQ(told(p).size(), 7u);
    EXPECT_EQ(toldAgain(p), told(p));
    p.renameOwner(L"area", L"Floor");
    EXPECT_EQ(p.find(L"Area", L"Width"), nullptr);
    EXPECT_NE(p.find(L"Floor", L"Width"), nullptr);
    p.removeOwner(L"NAME");
    EXPECT_EQ(p.find(L"Name", L"Caption"), nullptr);
    EXPECT_EQ(toldAgain(p), told(p));
    p.removeOwner(L"Floor");
    p.removeOwner(L"");
    EXPECT_TRUE(p.serialize(formatOf(Version::Jet4)).empty());
}

TEST_P(PropertiesTest, ThePropertiesOfNothingBeginWithTheObject) {
    Properties p;
    p.set(L"Area", {L"Caption", ColumnType::Text, false, std::wstring(L"a")});
    p.set(L"", {L"Caption", ColumnType::Text, false, std::wstring(L"o")});
    ASSERT_EQ(p.blocks().size(), 2u);
    EXPECT_EQ(p.blocks()[0].kind, 0);
    EXPECT_EQ(p.blocks()[1].owner, L"Area");
    EXPECT_EQ(toldAgain(p), told(p));
}

TEST_P(PropertiesTest, WhatHasNoRoomIsRefused) {
    const Format& format = formatOf(Version::Jet4);
    Properties longName;
    longName.set(L"", {std::wstring(65, L'n'), ColumnType::Boolean, false, true});
    EXPECT_THROW(longName.serialize(format), Error);
    Properties longValue;
    longValue.set(L"", {L"T", ColumnType::Memo, false, std::wstring(32763, L't')});
    EXPECT_EQ(toldAgain(longValue), told(longValue));
    longValue.set(L"", {L"T", ColumnType::Memo, false, std::wstring(32764, L't')});
    EXPECT_THROW(longValue.serialize(format), Error);
}

INSTANTIATE_TEST_SUITE_P(Versions, PropertiesTest, testing::Values(Version::Jet3, Version::Jet4));

}  // namespace
}  // namespace sg::jet
