#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace sg {

// The last lines of a conversation with a mail server, for reading: "C: " before what the client
// said and "S: " before what the server did. What authenticates the client is left out.
class SmtpTranscript {
  public:
    // One or more whole lines.
    void addClient(std::string_view lines);
    void addServer(std::string_view lines);
    // Bytes of a message, of which only the number is told.
    void addMessageBytes(size_t count);

    std::vector<std::wstring> lines() const;

  private:
    void add(std::string line);
    void endMessage();

    std::deque<std::string> lines_;
    size_t messageBytes_ = 0;
    bool authenticating_ = false;  // what the client says belongs to its password
};

}  // namespace sg
