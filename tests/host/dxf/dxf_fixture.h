#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/dxf/files.h"
#include "host/dxf/group_reader.h"
#include "host/seam/host_fixture.h"
#include "real_data.h"

namespace sg::test {

// Drawing files in a host of their own.
class DxfTest : public HostTest {
  protected:
    DxfTest() { make(); }
    ~DxfTest() override {
        drawings_.clear();
        stop();
    }

    // A drawing with what the content holds; the warnings are kept.
    AcDbDatabase& load(const std::string& content) {
        drawings_.push_back(std::make_unique<AcDbDatabase>(false, true));
        warnings = dxf::read(*drawings_.back(), content, L"plan.dxf");
        return *drawings_.back();
    }
    AcDbDatabase& newDrawing() {
        drawings_.push_back(std::make_unique<AcDbDatabase>(true, true));
        return *drawings_.back();
    }
    static std::string written(const AcDbDatabase& database, const char* release = nullptr,
                               bool isBinary = false) {
        std::string content;
        const dxf::Release* const asked = release == nullptr ? nullptr : dxf::releaseNamed(release);
        EXPECT_TRUE(dxf::write(database, {asked, isBinary}, [&](std::string_view bytes) {
            content += bytes;
            return true;
        }));
        return content;
    }

    // Files that other programs wrote; empty where they are not on this machine.
    static std::vector<std::filesystem::path> realFiles() {
        return sg::test::realFiles("dxf", {".dxf"});
    }
    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::vector<std::wstring> warnings;

  private:
    std::vector<std::unique_ptr<AcDbDatabase>> drawings_;
};

}  // namespace sg::test
