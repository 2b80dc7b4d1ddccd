#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "host/jet/compact/compact.h"
#include "host/jet/format/error.h"

// What the parts of a compaction share. For compact*.cpp alone.
namespace sg::jet::compaction {

inline constexpr int cancelled = 3059;

// "table T: page N: what was wrong there", without the parts that are not known.
std::wstring lineOf(const Error& error);

// One compaction under way: what it was asked for, what it has lost, and how far it is.
class Run {
  public:
    Run(const CompactOptions& options, CompactReport& report)
        : options_(options), report_(report) {}

    const CompactOptions& options() const { return options_; }
    CompactReport& report() const { return report_; }

    bool repairs() const { return options_.repair; }
    // True of an error that only costs what it was met in: damage, but not a disk that fails.
    bool forgives(const Error& error) const;

    // The same line is told once.
    void lose(std::wstring line);
    // "WHAT: lineOf(error)".
    void lose(std::wstring_view what, const Error& error);

    // Runs `work`. What it throws that can be forgiven becomes a loss, and the answer is false.
    template <class Work>
    bool guard(std::wstring_view what, Work work) {
        try {
            work();
            return true;
        } catch (const Error& error) {
            if (!forgives(error)) throw;
            lose(what, error);
            return false;
        }
    }

    // Progress, in rows. Throws 3059 when the program asks to stop.
    void expect(uint64_t rows) { total_ += rows; }
    void advance(uint64_t rows = 1);
    void finish();

  private:
    void tell();

    const CompactOptions& options_;
    CompactReport& report_;
    std::unordered_set<std::wstring> lines_;
    uint64_t hidden_ = 0;  // losses that are not listed
    uint64_t done_ = 0;
    uint64_t total_ = 0;
    std::chrono::steady_clock::time_point told_{};
};

}  // namespace sg::jet::compaction
