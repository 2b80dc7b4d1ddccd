#pragma once

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/model/core/list_filers.h"
#include "host/model/core/memory_filers.h"
#include "host/model/model_fixture.h"

namespace sg::test {

using EntityPtr = std::unique_ptr<AcDbEntity>;

// Tests on objects of any class.
class ObjectTest : public ModelTest {
  protected:
    // The groups of an object as text, numbers to nine digits: the same for objects that are the
    // same but for rounding.
    std::string described(const AcDbObject& object, AcDb::FilerType type = AcDb::kBagFiler) {
        model::ListWriter writer(database.get(), {L"*"}, type);
        EXPECT_EQ(object.dxfOutFields(&writer), Acad::eOk);
        resbuf* const list = writer.take();
        std::string text;
        for (const resbuf* group = list; group != nullptr; group = group->rbnext)
            text += described(*group) + "\n";
        acutRelRb(list);
        return text;
    }

    static std::string described(const resbuf& group) {
        std::string text = std::to_string(group.restype);
        switch (acdbGroupCodeToType(group.restype)) {
            case RTREAL:
                return text + number(group.resval.rreal);
            case RT3DPOINT:
                for (const double coordinate : group.resval.rpoint)
                    text += number(coordinate);
                return text;
            case RTSHORT:
                return text + " " + std::to_string(group.resval.rint);
            case RTLONG:
                return text + " " + std::to_string(group.resval.rlong);
            case RTSTR: {
                text += " ";
                for (const wchar_t* at = group.resval.rstring; *at != 0; ++at)
                    text += static_cast<char>(*at);
                return text;
            }
            default: {
                AcDbObjectId id;
                acdbGetObjectId(id, group.resval.rlname);
                return text + " #" + std::to_string(id.asOldId());
            }
        }
    }

    static std::string number(double value) {
        char digits[40];
        std::snprintf(digits, sizeof digits, " %.9g", std::abs(value) < 1e-9 ? 0.0 : value);
        return digits;
    }

    template <class Class>
    static std::unique_ptr<Class> emptyLike(const Class& object) {
        return std::unique_ptr<Class>(Class::cast(object.isA()->create()));
    }

    // What an object of the same class reads of the groups that this one writes.
    template <class Class>
    std::unique_ptr<Class> throughGroups(const Class& object, AcDb::FilerType type,
                                         bool markers = true) {
        model::ListWriter writer(database.get(), {}, type);
        EXPECT_EQ(object.dxfOutFields(&writer), Acad::eOk);
        resbuf* list = writer.take();
        if (!markers) dropMarkers(list);
        auto copy = emptyLike(object);
        model::ListReader reader(list, database.get(), type);
        EXPECT_EQ(copy->dxfInFields(&reader), Acad::eOk);
        acutRelRb(list);
        return copy;
    }

    template <class Class>
    std::unique_ptr<Class> throughMemory(const Class& object) {
        std::vector<uint8_t> bytes;
        model::MemoryWriter writer(bytes, AcDb::kCopyFiler, database.get());
        EXPECT_EQ(object.dwgOutFields(&writer), Acad::eOk);
        auto copy = emptyLike(object);
        model::MemoryReader reader(bytes, AcDb::kCopyFiler, database.get());
        EXPECT_EQ(copy->dwgInFields(&reader), Acad::eOk);
        EXPECT_TRUE(reader.rest().empty());
        return copy;
    }

    static void dropMarkers(resbuf*& list) {
        resbuf** at = &list;
        while (*at != nullptr) {
            resbuf* const group = *at;
            if (group->restype != 100) {
                at = &group->rbnext;
                continue;
            }
            *at = group->rbnext;
            group->rbnext = nullptr;
            acutRelRb(group);
        }
    }
};

// Tests on entities of any class.
class EntityTest : public ObjectTest {
  protected:
    static AcDbExtents extentsOf(const AcDbEntity& entity) {
        AcDbExtents box;
        EXPECT_EQ(entity.getGeomExtents(box), Acad::eOk);
        return box;
    }
    static AcGePoint3dArray gripsOf(const AcDbEntity& entity) {
        AcGePoint3dArray points;
        AcDbIntArray modes, ids;
        EXPECT_EQ(entity.getGripPoints(points, modes, ids), Acad::eOk);
        return points;
    }
    static void expectNear(const AcGePoint3d& a, const AcGePoint3d& b, double tolerance = 1e-7) {
        EXPECT_LT(a.distanceTo(b), tolerance)
            << a.x << "," << a.y << "," << a.z << " and " << b.x << "," << b.y << "," << b.z;
    }
};

}  // namespace sg::test
