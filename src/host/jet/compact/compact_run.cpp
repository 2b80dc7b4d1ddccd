#include "host/jet/compact/compact_run.h"

#include <algorithm>

#include "host/jet/storage/file_layer.h"

namespace sg::jet::compaction {
namespace {

// Further losses are counted in the last line.
constexpr size_t mostLosses = 100000;

constexpr auto tellEvery = std::chrono::milliseconds(10);

}  // namespace

std::wstring lineOf(const Error& error) {
    const ErrorPlace& place = error.place();
    std::wstring line;
    if (!place.table.empty()) line += L"table " + place.table + L": ";
    if (place.page) line += L"page " + std::to_wstring(*place.page) + L": ";
    return line + (place.detail.empty() ? error.text() : place.detail);
}

bool Run::forgives(const Error& error) const {
    switch (error.code()) {
        case DiskFull:
        case DiskOrNetwork:
        case FileInUse:
        case cancelled:
            return false;
        default:
            return repairs();
    }
}

void Run::lose(std::wstring line) {
    std::vector<std::wstring>& losses = report_.losses;
    if (losses.size() < mostLosses) {
        if (lines_.insert(line).second) losses.push_back(std::move(line));
        return;
    }
    if (hidden_++ == 0) losses.emplace_back();
    losses.back() = std::to_wstring(hidden_) + L" more";
}

void Run::lose(std::wstring_view what, const Error& error) {
    lose(what.empty() ? lineOf(error) : std::wstring(what) + L": " + lineOf(error));
}

void Run::advance(uint64_t rows) {
    done_ += rows;
    if (!options_.progress) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - told_ < tellEvery) return;
    told_ = now;
    tell();
}

void Run::finish() {
    total_ = done_;
    if (options_.progress) tell();
}

// What a definition says of its rows need not be so.
void Run::tell() {
    if (!options_.progress(std::min(done_, total_), total_)) throw Error(cancelled);
}

}  // namespace sg::jet::compaction
