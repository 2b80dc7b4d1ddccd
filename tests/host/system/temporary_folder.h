#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "base/encoding.h"

namespace sg {

// A test with an empty folder of its own.
class FolderTest : public testing::Test {
  protected:
    FolderTest() {
        std::string name = (std::filesystem::temp_directory_path() / "swiftgate-XXXXXX").string();
        folder_ = std::filesystem::canonical(mkdtemp(name.data()));
    }
    ~FolderTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    std::wstring path(const std::string& name = {}) const {
        return fromUtf8(name.empty() ? folder_.string() : (folder_ / name).string());
    }
    void write(const std::string& name, const std::string& content = {}) const {
        std::filesystem::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }
    std::string read(const std::string& name) const {
        std::ostringstream content;
        content << std::ifstream(folder_ / name, std::ios::binary).rdbuf();
        return content.str();
    }
    bool exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

    std::filesystem::path folder_;
};

// Sets an environment variable while it lives.
class WithEnvironment {
  public:
    WithEnvironment(const char* name, const std::string& value) : name_(name) {
        const char* const before = std::getenv(name);
        had_ = before != nullptr;
        if (had_) before_ = before;
        setenv(name, value.c_str(), 1);
    }
    ~WithEnvironment() {
        if (had_) {
            setenv(name_, before_.c_str(), 1);
        } else {
            unsetenv(name_);
        }
    }

  private:
    const char* const name_;
    std::string before_;
    bool had_ = false;
};

}  // namespace sg
