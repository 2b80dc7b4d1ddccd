#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "host/dxf/reading.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/entity.h"

namespace sg::dxf {

// Makes the drawing's objects of those in the file. What no class can read becomes a proxy that
// keeps its groups.
class ObjectLoader {
  public:
    explicit ObjectLoader(Reading& reading) : reading_(reading) {}

    enum class Role { object, entity };

    // Reads the object into the drawing; null, with a warning, when it cannot be one. Its form is
    // looked at later (checkForms) unless that can be done at once (keepForm).
    AcDbObject* load(ScannedObject& scanned, Role role, AcDbObjectId owner);
    // The same for an object of a class that is known; null, with a warning, when it fails.
    AcDbObject* loadAs(ScannedObject& scanned, std::unique_ptr<AcDbObject> object,
                       AcDbObjectId owner);

    // Keeps the object's form as the file has it where its class would write another one.
    void keepForm(AcDbObject& object, const ScannedObject& scanned);
    void checkLater(AcDbObjectId id, size_t position) {
        if (keepsForms()) later_.push_back({id, position});
    }
    // Does so for the others, when everything is read.
    void checkForms();

    // The owner that the object names; the null id when it names none.
    AcDbObjectId ownerOf(const ScannedObject& scanned);

  private:
    // Older files are always written in a release whose objects have other groups.
    bool keepsForms() const { return reading_.release >= AcDb::kDHL_1015; }
    const AcRxClass* classOf(const ScannedObject& scanned);
    std::unique_ptr<AcDbObject> make(ScannedObject& scanned, Role role);
    std::unique_ptr<AcDbObject> makeProxy(ScannedObject& scanned, Role role);
    bool fill(AcDbObject& object, const ScannedObject& scanned, std::wstring& error);
    bool place(AcDbObject& object, const ScannedObject& scanned, AcDbObjectId owner);
    bool dropMalformed(ScannedObject& scanned, Role role);
    void needNames(const ScannedObject& scanned, Role role);
    void needName(const Group& group, model::NamedIn table, const ScannedObject& scanned);
    std::wstring nameOf(const ScannedObject& scanned) const;

    struct Later {
        AcDbObjectId id;
        size_t position;
    };

    Reading& reading_;
    std::unordered_map<std::string, const AcRxClass*> classes_;  // by name, marker and flags
    std::string key_;
    std::unordered_set<std::string_view> knownNames_[8];  // by table
    std::vector<Later> later_;
};

}  // namespace sg::dxf
