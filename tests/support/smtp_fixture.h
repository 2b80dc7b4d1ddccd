#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/seam/host_fixture.h"

namespace sg::test {

// Runs a program to its end and answers what it printed; a failure of it fails the test.
std::string outputOf(const std::vector<std::string>& command);

// A mail server on loopback (smtp_server.py), with what it was told in a folder.
class SmtpServerProcess {
  public:
    // Answers when the server listens.
    SmtpServerProcess(const std::string& folder, const std::vector<std::string>& options);
    SmtpServerProcess(const SmtpServerProcess&) = delete;
    SmtpServerProcess& operator=(const SmtpServerProcess&) = delete;
    ~SmtpServerProcess();

    int port() const { return port_; }

  private:
    pid_t process_ = -1;
    int input_ = -1;  // closing it ends the server
    int port_ = 0;
};

// A test with a host, certificates, and a mail server that the environment names.
class SmtpTest : public HostTest {
  protected:
    SmtpTest();
    ~SmtpTest() override;

    void startServer(const std::vector<std::string>& options = {});
    void stopServer() { server_.reset(); }
    // The options of a server that encrypts, and of one that also wants a user and a password.
    std::vector<std::string> encrypted() const;
    std::vector<std::string> authenticated(const std::string& userAndPassword) const;

    std::string delivered(int number = 1) const;  // as read_message.py prints it
    std::string envelope(int number = 1) const { return read(std::to_string(number) + ".json"); }
    bool isDelivered(int number = 1) const { return exists(std::to_string(number) + ".eml"); }

    std::optional<SmtpServerProcess> server_;
    const WithEnvironment host_{"SWIFTGATE_SMTP_HOST", "127.0.0.1"};
    const WithEnvironment patience_{"SWIFTGATE_SMTP_TIMEOUT", "20"};
    const WithEnvironment authorities_;
    const WithEnvironment temporary_;
    std::optional<WithEnvironment> port_;

  private:
    const std::string before_;  // the current folder
};

}  // namespace sg::test
