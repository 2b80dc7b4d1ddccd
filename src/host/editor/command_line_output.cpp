#include "host/editor/command_line_output.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr size_t kBufferBytes = 64 * 1024;

Output::Sink descriptorSink(int descriptor) {
    return [descriptor](std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) return false;
            bytes.remove_prefix(static_cast<size_t>(written));
        }
        return true;
    };
}

// The console of the machine itself has no window, and would print the sequence.
bool terminalHasWindow() {
    const char* const kind = std::getenv("TERM");
    const std::string_view name = kind != nullptr ? kind : "";
    return !name.empty() && name != "dumb" && name != "linux";
}

// Both lead to one terminal, pipe or file: "2>&1" too.
bool standardStreamsAreOne() {
    struct stat output, error;
    return ::fstat(1, &output) == 0 && ::fstat(2, &error) == 0 && output.st_dev == error.st_dev &&
           output.st_ino == error.st_ino;
}

}  // namespace

Output::Output()
    : Output(descriptorSink(1), descriptorSink(2), standardStreamsAreOne(), ::isatty(1) == 1) {}

Output::Output(Sink standardOutput, Sink standardError, bool sharedCursor, bool immediate)
    : sharedCursor_(sharedCursor), immediate_(immediate) {
    output_.sink = std::move(standardOutput);
    error_.sink = std::move(standardError);
}

Output::~Output() {
    flush();
    if (titled_) control("\033[23;2t");
}

void Output::put(Stream& stream, std::string_view bytes) {
    if (bytes.empty()) return;
    stream.buffer += bytes;
    stream.atLineStart = bytes.back() == '\n';
    if (immediate_ || stream.buffer.size() >= kBufferBytes) write(stream);
}

void Output::write(Stream& stream) {
    if (!stream.buffer.empty() && beforeWrite_) beforeWrite_();
    if (!stream.buffer.empty() && !stream.failed) stream.failed = !stream.sink(stream.buffer);
    stream.buffer.clear();
}

void Output::printError(std::string_view bytes) {
    write(output_);
    put(error_, bytes);
    write(error_);
    if (sharedCursor_) output_.atLineStart = error_.atLineStart;
}

void Output::print(std::wstring_view text) {
    if (text.empty()) return;
    if (!captures_.empty()) {
        captures_.back()->text_ += text;
    } else if (loading_ > 0) {
        printError(toUtf8(text));
    } else {
        put(output_, toUtf8(text));
        if (sharedCursor_) error_.atLineStart = output_.atLineStart;
    }
}

void Output::reportError(std::wstring_view text) {
    std::string bytes = error_.atLineStart ? "" : "\n";
    bytes += toUtf8(text);
    if (!bytes.ends_with('\n')) bytes += '\n';
    printError(bytes);
}

// What controls the terminal is no text: where the cursor stands is left alone.
void Output::control(std::string_view sequence) {
    output_.buffer += sequence;
    write(output_);
}

void Output::bell() {
    if (immediate_) control("\a");
}

void Output::setTitle(std::wstring_view text) {
    if (!immediate_ || !terminalHasWindow()) return;
    if (!titled_) control("\033[22;2t");
    titled_ = true;
    std::wstring title(text);
    for (wchar_t& c : title) {
        if (c < 0x20 || (c >= 0x7F && c < 0xA0)) c = L' ';
    }
    control("\033]2;" + toUtf8(title) + "\a");
}

bool Output::flush() {
    write(output_);
    return !output_.failed;
}

Output::Capture::Capture(Output& output) : output_(output) {
    output_.captures_.push_back(this);
}

Output::Capture::~Capture() {
    auto& all = output_.captures_;
    all.erase(std::remove(all.begin(), all.end(), this), all.end());
}

}  // namespace sg
