#pragma once

#include <signal.h>

#include <atomic>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "host/jet/storage/file_layer.h"

// The operating system's files for a program that is killed at one of its changes to them.
namespace sg::jet::test {

class DeadlyFiles final : public FileLayer {
  public:
    // Each change has two moments, one before it and one behind it; dies behind that many of them.
    explicit DeadlyFiles(int moments) : left_(moments) {}

    std::unique_ptr<File> open(const std::wstring& path, FileAccess access) override {
        const Change change(*this);
        return std::make_unique<DeadlyFile>(*this, posixFiles().open(path, access));
    }
    FileIdentity identityOf(const std::wstring& path) override {
        return posixFiles().identityOf(path);
    }
    void rename(const std::wstring& from, const std::wstring& to) override {
        const Change change(*this);
        posixFiles().rename(from, to);
    }
    bool addName(const std::wstring& file, const std::wstring& name) override {
        const Change change(*this);
        return posixFiles().addName(file, name);
    }
    std::wstring followLinks(const std::wstring& path) override {
        return posixFiles().followLinks(path);
    }
    void copyPermissions(const std::wstring& from, const std::wstring& to) override {
        posixFiles().copyPermissions(from, to);
    }
    void remove(const std::wstring& path) override {
        const Change change(*this);
        posixFiles().remove(path);
    }
    void syncFolder(const std::wstring& path) override {
        const Change change(*this);
        posixFiles().syncFolder(path);
    }

  private:
    class Change {
      public:
        explicit Change(DeadlyFiles& layer) : layer_(layer) { layer_.pass(); }
        ~Change() { layer_.pass(); }
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

      private:
        DeadlyFiles& layer_;
    };

    class DeadlyFile final : public File {
      public:
        DeadlyFile(DeadlyFiles& layer, std::unique_ptr<File> file)
            : layer_(layer), file_(std::move(file)) {}

        size_t read(uint64_t offset, std::span<uint8_t> into) const override {
            return file_->read(offset, into);
        }
        void write(uint64_t offset, std::span<const uint8_t> bytes) override {
            const Change change(layer_);
            file_->write(offset, bytes);
        }
        void truncate(uint64_t size) override {
            const Change change(layer_);
            file_->truncate(size);
        }
        void sync() override {
            const Change change(layer_);
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

    void pass() {
        if (left_.fetch_sub(1) == 0) ::raise(SIGKILL);
    }

    std::atomic<int> left_;
};

}  // namespace sg::jet::test
