#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace sg {

// What is printed: UTF-8 on standard output, or on standard error while modules load. Standard
// output is buffered; it is written when the buffer is full, before anything goes to standard
// error, on flush(), and after each print when it is a terminal.
class SG_API Output {
  public:
    // Takes bytes; false when they could not be written, after which the sink is not used any more.
    using Sink = std::function<bool(std::string_view bytes)>;

    Output();  // on the process's own standard output and standard error
    // `sharedCursor` tells that both sinks show on one terminal or file, `immediate` that nothing
    // is held back.
    Output(Sink standardOutput, Sink standardError, bool sharedCursor = false,
           bool immediate = false);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output();  // flushes

    // Prints to the innermost capture, else where the LoadingScopes lead.
    void print(std::wstring_view text);

    // Prints to standard error, on a line of its own: a line feed comes before it unless the cursor
    // is at the start of a line, and after it unless it ends with one.
    void reportError(std::wstring_view text);

    // Rings the bell of the terminal that standard output is; silent when it is none.
    void bell();

    // Names the window of the terminal that standard output is, which has its own name back in the
    // end; without effect where there is none, or one that has no window. Control characters in the
    // text become blanks.
    void setTitle(std::wstring_view text);

    // Called before bytes go out, by what shows something else at the cursor and has to clear it.
    void setBeforeWrite(std::function<void()> beforeWrite) {
        beforeWrite_ = std::move(beforeWrite);
    }

    // Writes what is buffered. False when anything printed so far to standard output is lost.
    bool flush();

    // True when the next text to standard output starts a line.
    bool atLineStart() const { return output_.atLineStart; }
    // The same for standard error.
    bool errorAtLineStart() const { return error_.atLineStart; }

    // While one lives, printed text goes to standard error.
    class SG_API LoadingScope {
      public:
        explicit LoadingScope(Output& output) : output_(output) { ++output_.loading_; }
        LoadingScope(const LoadingScope&) = delete;
        LoadingScope& operator=(const LoadingScope&) = delete;
        ~LoadingScope() { --output_.loading_; }

      private:
        Output& output_;
    };

    // While one lives, printed text is kept in it. Captures nest; errors are not captured.
    class SG_API Capture {
      public:
        explicit Capture(Output& output);
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;
        ~Capture();
        const std::wstring& text() const { return text_; }

      private:
        friend class Output;
        Output& output_;
        std::wstring text_;
    };

  private:
    struct Stream {
        Sink sink;
        std::string buffer;
        bool atLineStart = true;
        bool failed = false;
    };

    void put(Stream& stream, std::string_view bytes);
    void write(Stream& stream);
    void printError(std::string_view bytes);
    void control(std::string_view sequence);

    Stream output_, error_;
    const bool sharedCursor_;
    const bool immediate_;
    std::function<void()> beforeWrite_;
    bool titled_ = false;  // the window's own name is put aside
    int loading_ = 0;
    std::vector<Capture*> captures_;  // innermost last
};

}  // namespace sg
