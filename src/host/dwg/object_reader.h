#pragma once

#include "host/dwg/links.h"
#include "host/dwg/object_map.h"
#include "host/dwg/object_types.h"
#include "host/dwg/reading.h"
#include "host/model/core/object_access.h"
#include "platform/db/entity.h"

namespace sg::dwg {

// Makes the drawing's objects of those in the file. What no class can read becomes a proxy that
// keeps its bits.
class ObjectReader {
  public:
    explicit ObjectReader(Reading& reading);

    // The type of an object, which its first bits tell; 0 when nothing is there.
    uint16_t typeAt(const ObjectPlace& place) const;
    // Reads an object into the drawing; null, with a warning, when it cannot be one.
    AcDbObject* load(const ObjectPlace& place);

    const Links& links() const { return links_; }

  private:
    // What is known of an object before its class reads.
    struct Head {
        uint64_t handle = 0;
        uint16_t type = 0;
        std::wstring dxfName, className, applicationName;
        int proxyFlags = 0;
        bool isEntity = false;
        const AcRxClass* descriptor = nullptr;  // null: the class is not there
    };
    // What stands ahead of class data besides.
    struct Common {
        model::ExtendedData data;
        AcDbObjectId owner, dictionary;
        AcDbObjectIdArray reactors;
        std::vector<uint8_t> graphics;
        model::EntityData entity;
        bool hasLinks = false;
        uint64_t before = 0, behind = 0;
    };

    AcDb::AcDbDwgVersion release() const { return reading_.context.release; }
    std::wstring nameOf(const Head& head) const;
    bool open(const ObjectPlace& place, Head& head);
    bool openBody(ByteSpan whole, size_t start, size_t size, size_t handleBits, Head& head);
    bool classify(Head& head);
    void setClass(Head& head, const ClassEntry& entry) const;
    void readCommon(const Head& head, Common& common);
    void readGraphics(Common& common);
    struct Flags;
    void readEntityData(Common& common, Flags& flags);
    void readColor(Common& common, Flags& flags);
    void readEntityHandles(Common& common, const Flags& flags);
    void readOwnership(uint64_t own, size_t reactors, bool hasDictionary, Common& common);
    AcDbObjectId pointer() { return reading_.context.refer(streams_.handles.handle(), own_); }
    std::unique_ptr<AcDbObject> make(const Head& head, Common& common);
    std::unique_ptr<AcDbObject> makeProxy(const Head& head, Common& common);
    static void attach(AcDbObject& object, Common& common);

    Reading& reading_;
    ByteSpan objects_;
    uint64_t taken_ = 0;  // bytes of all objects so far
    ReadStreams streams_;
    uint64_t own_ = 0;
    ReadFiler filer_;
    Links links_;
    std::vector<const AcRxClass*> known_;  // descriptors by object type
    std::unordered_map<uint16_t, const ClassEntry*> classes_;
};

}  // namespace sg::dwg
