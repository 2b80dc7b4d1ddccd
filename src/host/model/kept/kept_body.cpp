#include <algorithm>

#include "base/encoding.h"
#include "host/model/kept/kept_form.h"

// Bodies. Groups have a body's text line by line, in pieces where a line is long; a DWG object has
// it in blocks of bytes with a line feed behind each line. In both the text is turned round: a
// character above the space is 159 less itself.

namespace sg::model {
namespace {

constexpr const wchar_t* kBodies[] = {L"3DSOLID", L"REGION", L"BODY"};
constexpr int16_t kTextVersion = 1;
constexpr int kFirstPiece = 1;
constexpr int kNextPiece = 3;
constexpr size_t kPieceLength = 255;
constexpr size_t kBlockLength = 4096;
constexpr size_t kMostBytes = size_t(1) << 28;

// What solids alone have behind the body from release 2007 on.
constexpr const char* kSolidMarker = "AcDb3dSolid";
constexpr int kHistory = 350;

bool isSolid(const ProxyData& data) {
    return data.dxfName == kBodies[0];
}

void appendLine(GroupData& groups, std::string_view line) {
    int code = kFirstPiece;
    do {
        groups.appendText(code, line.substr(0, kPieceLength));
        line.remove_prefix(std::min(line.size(), kPieceLength));
        code = kNextPiece;
    } while (!line.empty());
}

void appendLines(GroupData& groups, std::string_view body) {
    while (!body.empty()) {
        const size_t end = std::min(body.find('\n'), body.size());
        std::string_view line = body.substr(0, end);
        while (line.ends_with('\r') || line.ends_with(' '))
            line.remove_suffix(1);
        appendLine(groups, line);
        body.remove_prefix(std::min(end + 1, body.size()));
    }
}

bool readBlocks(AcDbDwgFiler& filer, std::string& body) {
    while (true) {
        std::vector<uint8_t> block;
        if (readBytes(&filer, block) != Acad::eOk) return false;
        if (block.empty()) return true;
        body.append(block.begin(), block.end());
        if (body.size() > kMostBytes) return false;
    }
}

std::string bodyOf(const GroupData& groups) {
    std::string body;
    for (GroupData::Walk walk(groups); walk.next();) {
        const GroupData::Group& group = walk.group();
        if (group.code == kFirstPiece && !body.empty()) body += '\n';
        if (group.code == kFirstPiece || group.code == kNextPiece) body += group.text;
    }
    return body.empty() ? body : body + '\n';
}

}  // namespace

bool isKeptBody(const ProxyData& data) {
    return std::find(std::begin(kBodies), std::end(kBodies), data.dxfName) != std::end(kBodies);
}

bool readKeptBody(AcDbDwgFiler& filer, ProxyData& data) {
    bool isEmpty = false;
    bool unused = false;
    int16_t version = 0;
    std::string body;
    filer.readBool(&isEmpty);
    if (!isEmpty) {
        filer.readBool(&unused);
        filer.readInt16(&version);
        if (version != kTextVersion || !readBlocks(filer, body)) return false;
    }
    if (filer.filerStatus() != Acad::eOk) return false;
    data.groups.appendText(100, "AcDbModelerGeometry");
    data.groups.appendWhole(70, kTextVersion);
    appendLines(data.groups, body);
    if (isSolid(data) && !isBefore(&filer, AcDb::kDHL_1021)) {
        data.groups.appendText(100, kSolidMarker);
        data.groups.appendObject(kHistory, AcDbObjectId());
    }
    return true;
}

// The lines that a program draws of the body are left to it.
bool writeKeptBody(AcDbDwgFiler& filer, const ProxyData& data) {
    const std::string body = bodyOf(data.groups);
    filer.writeBool(body.empty());
    if (!body.empty()) {
        filer.writeBool(false);
        filer.writeInt16(kTextVersion);
        for (size_t at = 0; at < body.size(); at += kBlockLength) {
            const size_t size = std::min(kBlockLength, body.size() - at);
            filer.writeUInt32(static_cast<uint32_t>(size));
            filer.writeBytes(body.data() + at, size);
        }
        filer.writeUInt32(0);
    }
    constexpr bool kHasLines = false;
    filer.writeBool(kHasLines);
    filer.writeBool(body.empty());
    if (isBefore(&filer, AcDb::kDHL_1021)) return true;
    if (!isBefore(&filer, AcDb::kDHL_1027)) {
        filer.writeBool(false);
        filer.writeInt32(0);
        filer.writeInt16(0);
        filer.writeInt16(0);
        const uint8_t noRevision[8] = {};
        filer.writeBytes(noRevision, sizeof noRevision);
        filer.writeInt32(0);
    }
    return true;
}

}  // namespace sg::model
