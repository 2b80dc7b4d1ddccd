#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/model/core/dwg_form.h"
#include "host/model/core/group_data.h"
#include "host/model/core/memory_filers.h"
#include "platform/db/entity.h"

namespace sg::model {

// What may be done with the objects of a class while the class is absent.
enum ProxyFlags : int {
    kProxyEraseAllowed = 0x1,
    kProxyTransformAllowed = 0x2,
    kProxyColorChangeAllowed = 0x4,
    kProxyLayerChangeAllowed = 0x8,
    kProxyLinetypeChangeAllowed = 0x10,
    kProxyLinetypeScaleChangeAllowed = 0x20,
    kProxyVisibilityChangeAllowed = 0x40,
    kProxyCloningAllowed = 0x80,
    kProxyLineWeightChangeAllowed = 0x100,
    kProxyPlotStyleNameChangeAllowed = 0x200,
};

// The classes of DWG files under which everything goes that a proxy keeps, when its own class has
// no form in the file's release. No program has them, so that others show the graphics that stand
// with an entity.
inline constexpr const wchar_t* kWrappedEntity = L"SgKeptEntity";
inline constexpr const wchar_t* kWrappedObject = L"SgKeptObject";

// What a proxy keeps of the object that it stands for: its class, and what the class files behind
// the fields that every object, or entity, has.
struct ProxyData {
    std::wstring className, dxfName, applicationName;
    int32_t flags = 0;
    std::vector<uint8_t> bytes;
    std::vector<MemoryWriter::IdPlace> ids;  // where in the bytes ids stand, in rising order
    // What it writes to drawing files behind those fields. A proxy that a drawing file brought has
    // nothing else.
    GroupData groups;
    // What it has in DWG files, where one of them brought it. Their reader sets the class and the
    // flags, then calls dwgIn(), which finds the rest.
    std::unique_ptr<KeptBits> bits;
    // Entities that stand behind it in drawing files up to the end of a sequence, that included.
    std::vector<AcDbHardOwnershipId> parts;

    bool allows(ProxyFlags what) const { return (flags & what) != 0; }
    // Whether it has what a DWG file had of the object, and nothing else.
    bool isOnlyBits() const;
    // Whether it is read from a DWG file where it stands for another class.
    bool isWrapped() const;

    // Everything, through a filer of any kind.
    void dwgOut(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler& filer);
};

// What a class has filed of an object.
struct FiledObject {
    std::vector<uint8_t> bytes;
    std::vector<MemoryWriter::IdPlace> ids;
    AcDb::FilerType type;
    AcDbDatabase* database;
};

// Files an object whether it is open or not.
FiledObject fileObject(const AcDbObject& object, AcDb::FilerType type);
// An object of a class, in no database, made from what was filed. A proxy when the class asks for
// one (eMakeMeProxy); null for a class without instances, and when what was filed does not fit it.
std::unique_ptr<AcDbObject> makeObject(const AcRxClass& descriptor, const FiledObject& filed);
// A proxy of an object of the class.
std::unique_ptr<AcDbObject> makeProxy(const AcRxClass& descriptor, const FiledObject& filed);

// The data of a proxy; null for another object.
const ProxyData* proxyData(const AcDbObject& object);
// The name of its class in drawing files; of a proxy that of the class that it stands for. Holds
// for as long as the object does.
SG_API const wchar_t* dxfNameOf(const AcDbObject& object);

// Every object of the class, in all databases, becomes a proxy: the class is about to go.
void turnIntoProxies(const AcRxClass& descriptor);
// Proxies whose classes are registered come back to life, but for those that are open.
void reviveProxies();

}  // namespace sg::model

// Stands for an object whose class is absent.
class SG_API AcDbProxyObject : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbProxyObject)
    AcDbProxyObject();
    ~AcDbProxyObject() override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    // Reads what a drawing file has of an object of a class that is not there.
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    sg::model::ProxyData data;

  protected:
    Acad::ErrorStatus subErase(bool erasing) override;
    Acad::ErrorStatus subDeepClone(AcDbObject* owner, AcDbObject*& copy, AcDbIdMapping& mapping,
                                   bool isPrimary) const override;
    Acad::ErrorStatus subWblockClone(AcRxObject* owner, AcDbObject*& copy, AcDbIdMapping& mapping,
                                     bool isPrimary) const override;
};

// Stands for an entity whose class is absent. What its class does not allow answers eNotApplicable.
class SG_API AcDbProxyEntity : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbProxyEntity)
    AcDbProxyEntity();
    ~AcDbProxyEntity() override;

    Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents) override;
    Acad::ErrorStatus setLayer(AcDbObjectId layer, bool doSubents, bool allowHidden) override;
    Acad::ErrorStatus setLinetype(AcDbObjectId linetype, bool doSubents) override;
    Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents) override;
    Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, bool doSubents) override;
    Acad::ErrorStatus setVisibility(AcDb::Visibility visibility, bool doSubents) override;
    Acad::ErrorStatus setPlotStyleName(AcDb::PlotStyleNameType type, AcDbObjectId style,
                                       bool doSubents) override;

    // What the entity has to be transformed by when its class is there again.
    const AcGeMatrix3d& pendingTransform() const { return pending_; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    // Reads what a drawing file has of an object of a class that is not there.
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    sg::model::ProxyData data;

  protected:
    Acad::ErrorStatus subErase(bool erasing) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subDeepClone(AcDbObject* owner, AcDbObject*& copy, AcDbIdMapping& mapping,
                                   bool isPrimary) const override;
    Acad::ErrorStatus subWblockClone(AcRxObject* owner, AcDbObject*& copy, AcDbIdMapping& mapping,
                                     bool isPrimary) const override;

  private:
    AcGeMatrix3d pending_;
};
