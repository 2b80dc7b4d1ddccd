#include "host/jet/storage/page_log.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

// Enough for the head and directory of an ordinary commit in one read.
constexpr size_t firstRead = 1024;
// A page with more versions than this is worth a look at which of them are needed.
constexpr size_t manyVersions = 32;
// A reset while the log is read makes the reader start again. Each reset takes syncs, so that a
// reader is never outrun this often.
constexpr int maxAttempts = 1000;

constexpr size_t headRoom = log::recordHeadSize + log::maxEntries * log::entrySize;
// Bodies of one record, before it is written out.
constexpr size_t maxRecordBytes = size_t(1) << 20;

[[noreturn]] void throwDamagedLog(uint64_t offset, const wchar_t* what) {
    throwDamaged(std::wstring(L"the log, at byte ") + std::to_wstring(offset) + L": " + what);
}

}  // namespace

void PageLog::restart(uint64_t generation, uint64_t salt, uint64_t baseSequence,
                      uint32_t basePages) {
    generation_ = generation;
    sequence_ = baseSequence;
    pageCount_ = basePages;
    end_ = log::recordsOffset;
    chain_ = salt;
    pages_.clear();
}

void PageLog::refresh(const SharedBlock& block, LogChanges& changes) {
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const uint64_t generation = block.generation.load();
        if (generation % 2 != 0) {
            // While the log is reset, the database file has everything.
            const uint64_t committed = block.committed.load();
            const auto pageCount = static_cast<uint32_t>(block.pageCount.load());
            if (block.generation.load() != generation) continue;
            changes.everything |= sequence_ != committed;
            restart(generation, 0, committed, pageCount);
            return;
        }
        if (generation != generation_) {
            const uint64_t salt = block.salt.load();
            const uint64_t baseSequence = block.baseSequence.load();
            const auto basePages = static_cast<uint32_t>(block.basePages.load());
            if (block.generation.load() != generation) continue;
            changes.everything |= sequence_ != baseSequence;
            restart(generation, salt, baseSequence, basePages);
        }
        const uint64_t committed = block.committed.load();
        while (sequence_ < committed && advance(committed, false, changes.entries)) {
        }
        if (block.generation.load() != generation) continue;
        if (sequence_ >= committed) return;
        break;
    }
    throwDamagedLog(end_, L"a commit that another program wrote cannot be read");
}

bool PageLog::advance(uint64_t last, bool checkAll, std::vector<log::Entry>& entries) {
    if (sequence_ >= last) return false;
    std::vector<StagedVersion> staged;
    const size_t entriesBefore = entries.size();
    Position at{end_, chain_};
    while (const auto head = readRecord(at, checkAll, staged, entries)) {
        if (!head->commit) continue;
        if (checkAll && !isPossible(*head, staged)) break;
        for (const StagedVersion& change : staged) {
            insert(change.page, change.version);
        }
        sequence_ = head->sequence;
        pageCount_ = head->pageCount;
        end_ = at.offset;
        chain_ = at.chain;
        return true;
    }
    entries.resize(entriesBefore);
    return false;
}

std::optional<log::RecordHead> PageLog::readRecord(Position& at, bool checkAll,
                                                   std::vector<StagedVersion>& staged,
                                                   std::vector<log::Entry>& entries) const {
    std::vector<uint8_t> bytes(firstRead);
    bytes.resize(file_->read(at.offset, bytes));
    const auto head = log::decodeRecordHead({bytes.data(), bytes.size()});
    if (!head || head->sequence != sequence_ + 1) return std::nullopt;
    const size_t size = log::recordHeadSize + head->directorySize();
    if (bytes.size() < size) {
        const size_t had = bytes.size();
        bytes.resize(size);
        const size_t got = file_->read(at.offset + had, std::span(bytes).subspan(had));
        if (had + got < size) return std::nullopt;
    }
    if (log::chainOf(at.chain, {bytes.data(), size}) != head->chain) return std::nullopt;

    const ByteView directory(bytes.data() + log::recordHeadSize, head->directorySize());
    uint64_t offset = at.offset + size;
    for (uint32_t i = 0; i < head->entries; ++i) {
        const log::Entry entry = log::decodeEntry(directory, i);
        if (entry.delta ? entry.size > pageSize_ : entry.size != pageSize_) return std::nullopt;
        if (checkAll && !isBodyWhole(entry, offset)) return std::nullopt;
        staged.push_back(
            {entry.page, {head->sequence, offset, entry.size, entry.delta, entry.checksum}});
        entries.push_back(entry);
        offset += entry.size;
    }
    at = {offset, head->chain};
    return head;
}

bool PageLog::isBodyWhole(const log::Entry& entry, uint64_t offset) const {
    buffer_.resize(entry.size);
    if (file_->read(offset, buffer_) < entry.size) return false;
    if (log::checksum(0, buffer_) != entry.checksum) return false;
    std::vector<uint8_t> page(entry.delta ? pageSize_ : 0);
    return !entry.delta || log::applyDelta(page, {buffer_.data(), buffer_.size()});
}

// The rules that every record of ours keeps: whoever breaks them did not write a log.
bool PageLog::isPossible(const log::RecordHead& commit,
                         const std::vector<StagedVersion>& staged) const {
    if (commit.pageCount < pageCount_ || commit.pageCount - pageCount_ > staged.size()) {
        return false;
    }
    std::unordered_map<uint32_t, size_t> deltas;  // behind the image, of this transaction's pages
    for (const StagedVersion& change : staged) {
        if (change.page >= commit.pageCount) return false;
        if (!change.version.delta) {
            deltas[change.page] = 0;
            continue;
        }
        const int known = deltasOf(change.page);
        const auto found = deltas.find(change.page);
        if (found == deltas.end() && known < 0) return false;
        size_t& count =
            found != deltas.end() ? found->second : (deltas[change.page] = size_t(known));
        if (++count > log::maxDeltas) return false;
    }
    return true;
}

void PageLog::insert(uint32_t page, const PageVersion& version) {
    Versions& versions = pages_[page];
    if (!version.delta && versions.size() >= manyVersions) {
        auto keep = std::upper_bound(
            versions.begin(), versions.end(), needed_,
            [](uint64_t needed, const PageVersion& v) { return needed < v.sequence; });
        if (keep != versions.begin()) {
            --keep;
            while (keep->delta && keep != versions.begin())
                --keep;
            versions.erase(versions.begin(), keep);
        }
    }
    versions.push_back(version);
}

const PageLog::Versions* PageLog::versionsOf(uint32_t page) const {
    const auto found = pages_.find(page);
    return found == pages_.end() ? nullptr : &found->second;
}

bool PageLog::changedAfter(uint32_t page, uint64_t sequence) const {
    const Versions* versions = versionsOf(page);
    return versions != nullptr && versions->back().sequence > sequence;
}

int PageLog::deltasOf(uint32_t page) const {
    const Versions* versions = versionsOf(page);
    if (versions == nullptr) return -1;
    int count = 0;
    for (size_t i = versions->size(); i > 0 && (*versions)[i - 1].delta; --i) {
        ++count;
    }
    return count;
}

bool PageLog::load(uint32_t page, uint64_t sequence, const SharedBlock& block,
                   std::span<uint8_t> into) const {
    const Versions* versions = versionsOf(page);
    if (versions == nullptr || block.generation.load() != generation_) return false;
    size_t index = versions->size();
    while (index > 0 && (*versions)[index - 1].sequence > sequence)
        --index;
    if (index == 0) return false;
    if (build(*versions, index - 1, into)) return true;
    // The bytes may be those of a new generation, which began while they were read.
    if (block.generation.load() != generation_) return false;
    throwDamagedLog((*versions)[index - 1].offset, L"the page's content has changed");
}

bool PageLog::build(const Versions& versions, size_t index, std::span<uint8_t> into) const {
    size_t image = index;
    while (image > 0 && versions[image].delta)
        --image;
    if (versions[image].delta) return false;
    for (size_t i = image; i <= index; ++i) {
        const PageVersion& version = versions[i];
        buffer_.resize(version.size);
        const std::span<uint8_t> body = version.delta ? std::span<uint8_t>(buffer_) : into;
        if (file_->read(version.offset, body) < version.size) return false;
        if (log::checksum(0, body) != version.checksum) return false;
        if (version.delta && !log::applyDelta(into, {body.data(), body.size()})) return false;
    }
    return true;
}

void PageLog::loadImage(const PageVersion& version, std::span<uint8_t> into) const {
    if (file_->read(version.offset, into) < version.size ||
        log::checksum(0, into) != version.checksum) {
        throwDamagedLog(version.offset, L"the page's content has changed");
    }
}

std::vector<uint32_t> PageLog::pagesChanged(uint64_t after, uint64_t last) const {
    std::vector<uint32_t> changed;
    for (const auto& [page, versions] : pages_) {
        for (size_t i = versions.size(); i-- > 0;) {
            if (versions[i].sequence <= last) {
                if (versions[i].sequence > after) changed.push_back(page);
                break;
            }
        }
    }
    std::sort(changed.begin(), changed.end());
    return changed;
}

void PageLog::adopt(const LogAppender& appender, uint32_t pageCount) {
    for (const StagedVersion& change : appender.written_) {
        insert(change.page, change.version);
    }
    ++sequence_;
    pageCount_ = pageCount;
    end_ = appender.offset_;
    chain_ = appender.chain_;
}

void LogAppender::add(uint32_t page, std::span<const uint8_t> bytes,
                      std::span<const uint8_t> before, uint64_t base) {
    if (pending_.size() == log::maxEntries || buffer_.size() >= maxRecordBytes) {
        writeRecord(false, 0);
    }
    buffer_.resize(std::max(buffer_.size(), headRoom));
    const size_t start = buffer_.size();
    const int deltas = log_->deltasOf(page);
    log::Entry entry{.page = page, .first = deltas < 0 && written(page) == nullptr};
    entry.delta = !before.empty() && deltas >= 0 && deltas < static_cast<int>(log::maxDeltas) &&
                  written(page) == nullptr &&
                  log::appendDelta(buffer_, before, bytes, bytes.size() / 4);
    if (!entry.delta) {
        buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    }
    entry.size = static_cast<uint32_t>(buffer_.size() - start);
    entry.checksum = log::checksum(0, std::span(buffer_).subspan(start));
    entry.base = entry.first ? base : 0;
    pending_.push_back(entry);
}

void LogAppender::flush() {
    if (!pending_.empty()) writeRecord(false, 0);
    for (; indexed_ < written_.size(); ++indexed_) {
        lastWritten_[written_[indexed_].page] = indexed_;
    }
}

const PageVersion* LogAppender::written(uint32_t page) const {
    const auto found = lastWritten_.find(page);
    return found == lastWritten_.end() ? nullptr : &written_[found->second].version;
}

void LogAppender::writeRecord(bool commit, uint32_t pageCount) {
    buffer_.resize(std::max(buffer_.size(), headRoom));
    // Head and directory end where the bodies begin, so that the record leaves in one write.
    const size_t size = log::recordHeadSize + pending_.size() * log::entrySize;
    const size_t start = headRoom - size;
    const log::RecordHead head{.commit = commit, .sequence = sequence(), .pageCount = pageCount};
    const uint64_t chain =
        log::encodeRecord({buffer_.data() + start, size}, head, pending_, chain_);
    file_->write(offset_, std::span(buffer_).subspan(start));

    uint64_t offset = offset_ + size;
    for (const log::Entry& entry : pending_) {
        written_.push_back(
            {entry.page, {sequence(), offset, entry.size, entry.delta, entry.checksum}});
        offset += entry.size;
    }
    offset_ = offset;
    chain_ = chain;
    pending_.clear();
    buffer_.resize(headRoom);
}

}  // namespace sg::jet
