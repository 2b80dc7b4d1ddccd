#pragma once

#include <memory>
#include <vector>

#include "platform/db/curve.h"
#include "platform/db/object_iterator.h"

namespace sg::model {

struct ObjectAccess;

// A vertex in the order of its polyline: an object of the database, or one that the polyline owns.
struct VertexSlot {
    AcDbObjectId id;
    std::unique_ptr<AcDbEntity> loose;  // while the polyline is in no database
};

// The vertices of an entity whose vertices are entities of their own, in their order.
class SG_API VertexList {
  public:
    std::unique_ptr<AcDbObjectIterator> vertexIterator() const;
    // The vertex behind one of them, erased ones left out; the first for the null id. Null behind
    // the last, for what is no vertex of this, and outside a database.
    AcDbObjectId vertexAfter(AcDbObjectId vertex) const;
    AcDbObjectId sequenceEndId() const { return sequenceEnd_; }  // null outside a database

  protected:
    VertexList();
    ~VertexList();

    size_t slotCount() const { return slots_.size(); }
    // Calls `visit` with each vertex that is not erased, to read it whether it is open or not, or
    // open for write.
    template <class Vertex, class Visit>
    void forEachVertex(const Visit& visit) const {
        for (const VertexSlot& slot : slots_) {
            if (const auto* own = Vertex::cast(peekVertex(slot))) visit(*own);
        }
    }
    template <class Vertex, class Visit>
    void changeVertices(const Visit& visit) {
        visitForWrite([&](AcDbEntity& vertex) {
            if (auto* own = Vertex::cast(&vertex)) visit(*own);
        });
    }
    template <class Visit>
    void visitForWrite(const Visit& visit) {
        for (const VertexSlot& slot : slots_) {
            AcDbEntity* const vertex = openVertex(slot);
            if (vertex == nullptr) continue;
            visit(*vertex);
            closeVertex(slot, vertex);
        }
    }
    static void eraseSlot(const VertexSlot& slot);
    // The slot's vertex without opening it; null for an erased one.
    static const AcDbEntity* peekVertex(const VertexSlot& slot);
    // The slot's vertex, open for write; null when it cannot be. Close it with closeVertex().
    static AcDbEntity* openVertex(const VertexSlot& slot);
    static void closeVertex(const VertexSlot& slot, AcDbEntity* vertex);

    Acad::ErrorStatus writeIds(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus readIds(AcDbDwgFiler* filer);

    std::vector<VertexSlot> slots_;
    AcDbObjectId sequenceEnd_;

  private:
    friend struct ObjectAccess;
    class Iterator;
};

// An entity of the class `Base` that has vertices. While it is in no database it owns them as
// objects; when it comes into one they follow, with a sequence end behind them, and then it knows
// them by their ids. It carries changes of its properties on to them, and they are erased with it.
template <class Base>
class SG_API VertexOwner : public Base, public VertexList {
  public:
    ~VertexOwner() override;

    Acad::ErrorStatus setOwnerId(AcDbObjectId owner) override;
    Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents = true) override;
    Acad::ErrorStatus setLayer(AcDbObjectId layer, bool doSubents = true,
                               bool allowHiddenLayer = false) override;
    using Base::setLayer;
    Acad::ErrorStatus setLinetype(AcDbObjectId linetype, bool doSubents = true) override;
    using Base::setLinetype;
    Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents = true) override;
    Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, bool doSubents = true) override;
    Acad::ErrorStatus setVisibility(AcDb::Visibility visibility, bool doSubents = true) override;
    Acad::ErrorStatus setPlotStyleName(AcDb::PlotStyleNameType type,
                                       AcDbObjectId style = AcDbObjectId(),
                                       bool doSubents = true) override;
    Acad::ErrorStatus setTransparency(uint32_t transparency, bool doSubents = true) override;
    Acad::ErrorStatus setMaterial(AcDbObjectId material, bool doSubents = true) override;

  protected:
    VertexOwner();

    // A new vertex as readVertices() makes them. Where there are several kinds of vertices,
    // kindOf() tells them apart.
    virtual std::unique_ptr<AcDbEntity> newVertex(uint8_t kind) const = 0;
    virtual uint8_t kindOf(const AcDbEntity& vertex) const;

    // Files the vertices, behind what the class has of its own.
    Acad::ErrorStatus readVertices(AcDbDwgFiler* filer);
    Acad::ErrorStatus writeVertices(AcDbDwgFiler* filer) const;

    // The vertex belongs to the database, and stays open for write, or to this from here on.
    Acad::ErrorStatus appendVertexEntity(AcDbObjectId& id, AcDbEntity* vertex);
    // Behind the vertex that has the id; the null id stands for the beginning. eKeyNotFound.
    Acad::ErrorStatus insertVertexEntity(AcDbObjectId& id, AcDbObjectId after, AcDbEntity* vertex);

    // Takes the vertices out, for a new order of them with others between; what is not given back
    // to setSlots() is to be erased with eraseSlot().
    std::vector<VertexSlot> takeSlots();
    void setSlots(std::vector<VertexSlot> slots);

    Acad::ErrorStatus subErase(bool erasing) override;
    Acad::ErrorStatus subClose() override;

  private:
    // What was done to this is done to the vertices too.
    template <class Change>
    Acad::ErrorStatus carriedOn(Acad::ErrorStatus status, bool doSubents, const Change& change) {
        if (status == Acad::eOk && doSubents) visitForWrite(change);
        return status;
    }
    // Gives the database what this still owns.
    void moveIntoDatabase();
    void addSequenceEnd();
    Acad::ErrorStatus place(size_t at, AcDbObjectId& id, AcDbEntity* vertex);
};

extern template class VertexOwner<AcDbCurve>;
extern template class VertexOwner<AcDbEntity>;

// A polyline is a curve, a mesh is none.
using VertexCurve = VertexOwner<AcDbCurve>;
using VertexMesh = VertexOwner<AcDbEntity>;

}  // namespace sg::model
