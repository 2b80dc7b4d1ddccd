#include "app/progress_bar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "app/process.h"
#include "base/encoding.h"

namespace sg::app {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 300ms;  // before the bar comes
constexpr auto kPause = 100ms;     // between two pictures of it
constexpr int kWidest = 40;        // characters of the bar
constexpr int kNarrowest = 5;

bool hasTerminal(ProgressBar::Beside beside) {
    if (isatty(STDERR_FILENO) == 0) return false;
    if (beside == ProgressBar::Beside::Output && isatty(STDOUT_FILENO) != 0) return false;
    const char* const kind = std::getenv("TERM");
    return kind != nullptr && kind != std::string_view("dumb") && *kind != '\0';
}

void write(const std::wstring& text) {
    const std::string bytes = toUtf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

}  // namespace

ProgressBar::ProgressBar(std::wstring title, Beside beside)
    : title_(std::move(title)), hasTerminal_(hasTerminal(beside)) {
    next_ = Clock::now() + kPatience;
}

void ProgressBar::show(uint64_t done, uint64_t total) {
    if (!hasTerminal_) return;
    const Clock::time_point now = Clock::now();
    if (now < next_) return;
    next_ = now + kPause;
    draw(done, total);
}

void ProgressBar::draw(uint64_t done, uint64_t total) {
    // The last column stays free, since a terminal may go to the next line behind it.
    const int columns = terminalColumns(STDERR_FILENO) - 1;
    std::wstring line = title_.substr(0, static_cast<size_t>(columns));
    constexpr int around = 9;  // a blank, brackets, and the percents
    const int width = std::min(kWidest, columns - static_cast<int>(line.size()) - around);
    if (total != 0 && width >= kNarrowest) {
        const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
        const auto full = static_cast<size_t>(share * width);
        const std::wstring percents = std::to_wstring(static_cast<int>(share * 100));
        line += L" [" + std::wstring(full, L'#') +
                std::wstring(static_cast<size_t>(width) - full, L' ') + L"] " +
                std::wstring(3 - percents.size(), L' ') + percents + L"%";
    }
    if (line == drawn_) return;
    write(L"\r" + line + L"\033[K");
    drawn_ = std::move(line);
}

void ProgressBar::erase() {
    if (drawn_.empty()) return;
    write(L"\r\033[K");
    drawn_.clear();
}

}  // namespace sg::app
