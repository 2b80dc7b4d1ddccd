#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/dwg/files.h"
#include "host/dxf/files.h"
#include "host/seam/host_fixture.h"
#include "real_data.h"

namespace sg::test {

// DWG files in a host of their own.
class DwgTest : public HostTest {
  protected:
    DwgTest() { make(); }
    ~DwgTest() override {
        drawings_.clear();
        stop();
    }

    AcDbDatabase& empty() {
        drawings_.push_back(std::make_unique<AcDbDatabase>(false, true));
        return *drawings_.back();
    }
    AcDbDatabase& newDrawing() {
        drawings_.push_back(std::make_unique<AcDbDatabase>(true, true));
        return *drawings_.back();
    }
    // A drawing of the groups of entities, without the sections around them.
    AcDbDatabase& drawingOf(const std::string& entities) {
        AcDbDatabase& database = empty();
        dxf::read(database, "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n",
                  L"plan.dxf");
        return database;
    }
    // A drawing with what the file holds; the warnings are kept.
    AcDbDatabase& load(const std::string& content) {
        AcDbDatabase& database = empty();
        warnings = dwg::read(database, content, L"plan.dwg");
        return database;
    }
    std::string written(const AcDbDatabase& database, const char* release) {
        const auto made = dwg::write(database, *dxf::releaseNamed(release));
        losses = made.losses;
        return {made.bytes.begin(), made.bytes.end()};
    }
    // What is in the drawing's tables, blocks, entities and objects, as groups. Classes are left
    // out: each release has others, and other programs count their objects otherwise.
    static std::string groupsOf(const AcDbDatabase& database) {
        std::string content;
        dxf::write(database, {dxf::releaseNamed("2018"), false}, [&](std::string_view bytes) {
            content += bytes;
            return true;
        });
        return content.substr(content.find("TABLES"));
    }

    // DWG files that other programs wrote; empty where they are not on this machine.
    static std::vector<std::filesystem::path> realFiles() {
        return sg::test::realFiles("dwg", {".dwg"});
    }
    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::vector<std::wstring> warnings, losses;

  private:
    std::vector<std::unique_ptr<AcDbDatabase>> drawings_;
};

constexpr const char* kWrittenReleases[] = {"2000", "2004", "2010", "2013", "2018"};

}  // namespace sg::test
