#pragma once

#include <signal.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "host/jet/file_layer.h"

// The operating system's files for a program that is killed at one of its changes to them.
namespace sg::jet::test {

class DeadlyFiles final : public FileLayer {
  public:
    // Dies in place of the change behind that many others.
    explicit DeadlyFiles(int changes) : left_(changes) {}

    std::unique_ptr<File> open(const std::wstring& path, FileAccess access) override {
        if (access != FileAccess::Read && access != FileAccess::ReadWrite) change();
        return std::make_unique<DeadlyFile>(*this, posixFiles().open(path, access));
    }
    FileIdentity identityOf(const std::wstring& path) override {
        return posixFiles().identityOf(path);
    }
    void rename(const std::wstring& from, const std::wstring& to) override {
        change();
        posixFiles().rename(from, to);
    }
    bool addName(const std::wstring& file, const std::wstring& name) override {
        change();
        return posixFiles().addName(file, name);
    }
    std::wstring followLinks(const std::wstring& path) override {
        return posixFiles().followLinks(path);
    }
    void copyPermissions(const std::wstring& from, const std::wstring& to) override {
        posixFiles().copyPermissions(from, to);
    }
    void remove(const std::wstring& path) override {
        change();
        posixFiles().remove(path);
    }
    void syncFolder(const std::wstring& path) override {
        change();
        posixFiles().syncFolder(path);
    }

  private:
    class DeadlyFile final : public File {
      public:
        DeadlyFile(DeadlyFiles& layer, std::unique_ptr<File> file)
            : layer_(layer), file_(std::move(file)) {}

        size_t read(uint64_t offset, std::span<uint8_t> into) const override {
            return file_->read(offset, into);
        }
        void write(uint64_t offset, std::span<const uint8_t> bytes) override {
            layer_.change();
            file_->write(offset, bytes);
        }
        void truncate(uint64_t size) override {
            layer_.change();
            file_->truncate(size);
        }
        void sync() override {
            layer_.change();
            file_->sync();
        }
        uint64_t size() const override { return file_->size(); }
        FileIdentity identity() const override { return file_->identity(); }
        bool tryLock(LockKind kind, uint64_t offset, uint64_t size) override {
            return file_->tryLock(kind, offset, size);
        }
        void unlock(uint64_t offset, uint64_t size) override { file_->unlock(offset, size); }
        bool isLockedByOther(LockKind kind, uint64_t offset, uint64_t size) const override {
            return file_->isLockedByOther(kind, offset, size);
        }
        std::span<uint8_t> map(size_t size) override { return file_->map(size); }

      private:
        DeadlyFiles& layer_;
        std::unique_ptr<File> file_;
    };

    void change() {
        if (left_.fetch_sub(1) == 0) ::raise(SIGKILL);
    }

    std::atomic<int> left_;
};

}  // namespace sg::jet::test
