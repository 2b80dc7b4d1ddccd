#include "base/file_kind.h"

#include <gtest/gtest.h>

using namespace sg;
using namespace std::literals;

TEST(FileKindTest, ContentGoesBeforeTheNamesEnding) {
    const struct {
        std::string_view bytes;
        std::wstring_view name;
        FileKind kind;
    } cases[] = {
        {"", L"plan.dwg", FileKind::Empty},
        {"AC1032\0\0", L"plan.lsp", FileKind::Drawing},
        {"\0\1\0\0Standard Jet DB"sv, L"a", FileKind::Database},
        {"\0\1\0\0Standard Jet"sv, L"a", FileKind::Unknown},
        {"\0\1\0"sv, L"a", FileKind::Unknown},
        {"(princ 1)", L"folder.dwg/own.LSP", FileKind::Program},
        {"(princ 1)", L"lsp", FileKind::Unknown},
        {"  0\nSECTION", L"plan.Dxf", FileKind::Drawing},
        {"\x89PNG\r\n", L"plan.dwg", FileKind::Picture},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(fileKind(one.bytes, one.name), one.kind) << one.bytes;
    }
}

TEST(FileKindTest, WhatAFileIsContinuesAMessage) {
    EXPECT_EQ(butWhatItIs(FileKind::Empty), L": it is empty");
    EXPECT_EQ(butWhatItIs(FileKind::Archive), L", but an archive");
    EXPECT_EQ(butWhatItIs(FileKind::Unknown), L"");
}
