#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace sg {

// Where a mail session connects, and how.
struct SmtpServer {
    std::wstring host;
    int32_t port = 587;
    std::wstring user, password;   // not used without a user, or where none is asked for
    std::wstring authorities;      // a PEM file of certificates in place of the system's; or empty
    bool passwordNeedsTls = true;  // no password goes over a connection that is not encrypted
    std::chrono::seconds patience{0};  // longest wait for an answer; 0: 30 s to connect and log
                                       // in, 120 s for any other answer
};

// The server with what the environment sets in place of its values:
//
//   SWIFTGATE_SMTP_HOST     the host: a relay that the user trusts, so that a password may go to it
//                           also where it offers no encryption
//   SWIFTGATE_SMTP_PORT     the port
//   SWIFTGATE_SMTP_CA       the file of certificate authorities
//   SWIFTGATE_SMTP_TIMEOUT  the patience, in whole seconds
//
// Empty variables count as not set. False, with the reason in `wrong`, when one is not what it must
// be.
bool applySmtpEnvironment(SmtpServer& server, std::wstring& wrong);

}  // namespace sg
