#include "support/smtp_fixture.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

namespace sg::test {
namespace {

const std::string kScripts = SWIFTGATE_SUPPORT_TESTS;
const std::string kPython = SWIFTGATE_PYTHON;

struct Child {
    pid_t process = -1;
    int input = -1, output = -1;  // our ends of its standard streams
};

Child start(const std::vector<std::string>& command) {
    std::array<int, 2> in{}, out{};
    EXPECT_EQ(::pipe2(in.data(), O_CLOEXEC), 0);
    EXPECT_EQ(::pipe2(out.data(), O_CLOEXEC), 0);
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    Child child{-1, in[1], out[0]};
    EXPECT_EQ(
        ::posix_spawnp(&child.process, arguments[0], &actions, nullptr, arguments.data(), environ),
        0)
        << command[0];
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    return child;
}

// Up to the end, or up to and with a character.
std::string readUpTo(int descriptor, std::optional<char> end = std::nullopt) {
    std::string text;
    for (char c = 0; (!end || c != *end) && ::read(descriptor, &c, 1) == 1;)
        text += c;
    return text;
}

int statusOf(pid_t process) {
    int status = -1;
    ::waitpid(process, &status, 0);
    return status;
}

}  // namespace

std::string outputOf(const std::vector<std::string>& command) {
    const Child child = start(command);
    ::close(child.input);
    std::string text = readUpTo(child.output);
    ::close(child.output);
    EXPECT_EQ(statusOf(child.process), 0) << command[0] << " " << command[1];
    return text;
}

SmtpServerProcess::SmtpServerProcess(const std::string& folder,
                                     const std::vector<std::string>& options) {
    std::vector<std::string> command = {kPython, "-B", kScripts + "/smtp_server.py", folder};
    command.insert(command.end(), options.begin(), options.end());
    const Child child = start(command);
    process_ = child.process;
    input_ = child.input;
    const std::string line = readUpTo(child.output, '\n');
    ::close(child.output);
    EXPECT_FALSE(line.empty()) << "the mail server did not start";
    if (!line.empty()) port_ = std::stoi(line);
}

SmtpServerProcess::~SmtpServerProcess() {
    ::close(input_);
    statusOf(process_);
}

SmtpTest::SmtpTest()
    : authorities_("SWIFTGATE_SMTP_CA", (folder_ / "ca.pem").string()),
      temporary_("TMPDIR", folder_.string()),
      before_(std::filesystem::current_path().string()) {
    std::filesystem::current_path(folder_);
    make();
}

SmtpTest::~SmtpTest() {
    std::filesystem::current_path(before_);
}

void SmtpTest::startServer(const std::vector<std::string>& options) {
    server_.reset();
    server_.emplace(folder_.string(), options);
    port_.reset();
    port_.emplace("SWIFTGATE_SMTP_PORT", std::to_string(server_->port()));
}

std::vector<std::string> SmtpTest::encrypted() const {
    if (!exists("ca.pem")) outputOf({kScripts + "/make_certificates.sh", folder_.string()});
    return {"--certificate", (folder_ / "server").string()};
}

std::vector<std::string> SmtpTest::authenticated(const std::string& userAndPassword) const {
    std::vector<std::string> options = encrypted();
    options.insert(options.end(), {"--auth", userAndPassword});
    return options;
}

std::string SmtpTest::delivered(int number) const {
    return outputOf({kPython, "-B", kScripts + "/read_message.py",
                     (folder_ / (std::to_string(number) + ".eml")).string()});
}

}  // namespace sg::test
