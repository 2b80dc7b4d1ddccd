#pragma once

#include <string_view>

// The values of a deployment, scrambled (support/scramble.h). They come from the file that the
// CMake variable SWIFTGATE_DEPLOYMENT names; the build makes the source that defines them.
namespace sg::deployment {

extern const std::u16string_view kSmtpHost;        // a mail submission server
extern const std::u16string_view kSmtpUser;        // and how to authenticate there
extern const std::u16string_view kSmtpPassword;    //
extern const std::u16string_view kSupportAddress;  // where reports go
extern const std::u16string_view kSupportDomain;   // senders at this domain are refused

}  // namespace sg::deployment
