#include "host/dwg/class_section.h"

namespace sg::dwg {

std::vector<ClassEntry> readClasses(FileContent& content, const std::wstring& file,
                                    const ReadContext& context) {
    ReadStreams streams = openSection(content, file, section::kClasses, kClassesStart);
    const bool isOld = content.release < AcDb::kDHL_1018;
    BitReader& data = streams.data;
    BitReader& texts = content.release >= AcDb::kDHL_1021 ? streams.texts : data;
    uint16_t last = 0xFFFF;
    if (!isOld) {
        last = static_cast<uint16_t>(data.bitShort());
        data.rawShort();  // always zero
        data.bit();       // always set
    }
    std::vector<ClassEntry> classes;
    while (data.left() >= 16 && (classes.empty() || classes.back().number < last)) {
        ClassEntry entry;
        entry.number = static_cast<uint16_t>(data.bitShort());
        entry.proxyFlags = static_cast<uint16_t>(data.bitShort());
        readText(texts, context, entry.applicationName);
        readText(texts, context, entry.className);
        readText(texts, context, entry.dxfName);
        entry.wasProxy = data.bit();
        entry.kind = static_cast<uint16_t>(data.bitShort());
        if (!isOld) {
            entry.instances = data.bitLong();
            entry.release = data.bitLong();
            entry.maintenance = data.bitLong();
            entry.unknown[0] = data.bitLong();
            entry.unknown[1] = data.bitLong();
        }
        if (data.hasFailed() || texts.hasFailed() || entry.number < kFirstClass) break;
        classes.push_back(std::move(entry));
    }
    return classes;
}

Bytes writeClasses(const std::vector<ClassEntry>& classes, const WriteContext& context) {
    WriteStreams streams;
    const bool isOld = context.release < AcDb::kDHL_1018;
    BitWriter& data = streams.data;
    BitWriter& texts = context.release >= AcDb::kDHL_1021 ? streams.texts : data;
    if (!isOld) {
        const auto last = classes.empty() ? kFirstClass - 1 : classes.back().number;
        data.bitShort(static_cast<int16_t>(last));
        data.rawShort(0);
        data.bit(true);
    }
    for (const ClassEntry& entry : classes) {
        data.bitShort(static_cast<int16_t>(entry.number));
        data.bitShort(static_cast<int16_t>(entry.proxyFlags));
        writeText(texts, context, entry.applicationName);
        writeText(texts, context, entry.className);
        writeText(texts, context, entry.dxfName);
        data.bit(entry.wasProxy);
        data.bitShort(static_cast<int16_t>(entry.kind));
        if (isOld) continue;
        data.bitLong(entry.instances);
        data.bitLong(entry.release);
        data.bitLong(entry.maintenance);
        data.bitLong(entry.unknown[0]);
        data.bitLong(entry.unknown[1]);
    }
    return closeSection(context.release, kClassesStart, data, streams.texts, streams.handles);
}

}  // namespace sg::dwg
