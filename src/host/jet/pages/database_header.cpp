#include "host/jet/pages/database_header.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>
#include <vector>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

// The stream cipher's key that every file is masked with.
constexpr std::array<uint8_t, 4> maskKey = {0xC7, 0xDA, 0x39, 0x6B};

void applyStream(std::span<uint8_t> bytes, std::span<const uint8_t> key) {
    std::array<uint8_t, 256> state;
    std::iota(state.begin(), state.end(), uint8_t(0));
    uint8_t j = 0;
    for (size_t i = 0; i < state.size(); ++i) {
        j = static_cast<uint8_t>(j + state[i] + key[i % key.size()]);
        std::swap(state[i], state[j]);
    }
    uint8_t i = 0;
    j = 0;
    for (uint8_t& byte : bytes) {
        ++i;
        j = static_cast<uint8_t>(j + state[i]);
        std::swap(state[i], state[j]);
        byte ^= state[static_cast<uint8_t>(state[i] + state[j])];
    }
}

// From Jet 4 on the password is mixed with the whole days of the creation date.
uint32_t passwordMix(ByteView page, const DatabasePageLayout& layout) {
    if (layout.creationDate != 0) {
        const double days = page.getDouble(layout.creationDate);
        if (days > -2147483648.0 && days < 2147483648.0) {
            return static_cast<uint32_t>(static_cast<int32_t>(days));
        }
    }
    return 0;
}

bool hasPassword(ByteView page, const DatabasePageLayout& layout) {
    const uint32_t mix = passwordMix(page, layout);
    const ByteView password = page.sub(layout.password, layout.passwordSize);
    for (size_t at = 0; at < password.size(); at += 4) {
        if (password.get32(at) != mix) {
            return true;
        }
    }
    return false;
}

}  // namespace

void maskDatabasePage(std::span<uint8_t> page, const Format& format) {
    const DatabasePageLayout& layout = format.database;
    applyStream(page.subspan(layout.maskedStart, layout.maskedSize), maskKey);
}

// The key is made of the low half of the creation date and of every other byte of what stands from
// the password on, twice its size: the password's characters, then the date's again.
void maskAccount(std::span<uint8_t> account, ByteView page, const Format& format) {
    const DatabasePageLayout& layout = format.database;
    const uint32_t mix = passwordMix(page, layout);
    uint32_t key = page.get32(layout.creationDate);
    for (uint32_t i = 0; i < layout.passwordSize; ++i) {
        uint32_t byte = page.get8(layout.password + 2 * i);
        if (2 * i < layout.passwordSize) {
            byte ^= mix >> (2 * i % 4 * 8) & 0xff;
        }
        key ^= byte << (i % 24);
    }
    std::array<uint8_t, 4> bytes;
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<uint8_t>(key >> (8 * i));
    }
    applyStream(account, bytes);
}

void requireReadable(const DatabaseHeader& header, const PageStore& store) {
    const std::wstring& name = store.name();
    if (header.hasPassword || (header.isEncoded && store.format().isAce())) {
        throw Error(InvalidPassword, {},
                    {.file = name, .detail = L"the file is protected by a password"});
    }
    if (header.isEncoded) {
        throw Error(CannotOpenDatabase, {name}, {.file = name, .detail = L"the file is encrypted"});
    }
}

DatabaseHeader readDatabaseHeader(const PageStore& store) {
    const Format& format = store.format();
    const DatabasePageLayout& layout = format.database;
    const PageRef ref = store.read(0);
    std::vector<uint8_t> bytes(ref->begin(), ref->end());
    maskDatabasePage(bytes, format);
    const ByteView page(bytes.data(), bytes.size());
    DatabaseHeader header;
    header.version = format.version;
    header.sortOrder.id = page.get16(layout.sortOrder);
    if (!format.isJet3()) {
        header.sortOrder.version = page.get8(layout.sortOrder + 3);
    }
    header.codePage = page.get16(layout.codePage);
    if (layout.creationDate != 0) {
        header.created = Date{page.getDouble(layout.creationDate)};
    }
    header.hasPassword = hasPassword(page, layout);
    header.isEncoded = page.get32(layout.encodingKey) != 0;
    return header;
}

}  // namespace sg::jet
