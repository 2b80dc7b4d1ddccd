#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "source_folder.h"

namespace sg::test {

// download_server.py, running while this lives.
class DownloadServer {
  public:
    explicit DownloadServer(std::vector<std::string> arguments = {})
        : scheme_(arguments.empty() ? "http" : "https") {
        const std::string program = testSources() / "host/system/download_server.py";
        arguments.insert(arguments.begin(), {"python3", "-B", program});
        int input[2], output[2];
        if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipes");
        }
        child_ = ::fork();
        if (child_ == 0) run(arguments, input[0], output[1]);
        ::close(input[0]);
        ::close(output[1]);
        input_ = input[1];
        std::FILE* const port = ::fdopen(output[0], "r");
        if (std::fscanf(port, "%d", &port_) != 1) throw std::runtime_error("no server");
        std::fclose(port);
    }
    ~DownloadServer() {
        ::close(input_);
        ::waitpid(child_, nullptr, 0);
    }
    DownloadServer(const DownloadServer&) = delete;
    DownloadServer& operator=(const DownloadServer&) = delete;

    std::wstring address(const std::string& path) const {
        const std::string text = scheme_ + "://127.0.0.1:" + std::to_string(port_) + "/" + path;
        return std::wstring(text.begin(), text.end());
    }

  private:
    [[noreturn]] static void run(const std::vector<std::string>& arguments, int input, int output) {
        std::vector<char*> words;
        for (const std::string& argument : arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        ::dup2(input, 0);
        ::dup2(output, 1);
        ::execvp(words[0], words.data());
        ::_exit(127);
    }

    const std::string scheme_;
    pid_t child_ = -1;
    int input_ = -1, port_ = 0;
};

}  // namespace sg::test
