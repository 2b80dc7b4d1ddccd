#pragma once

#include "bridge/marshal_readers.h"
#include "platform/db/object.h"
#include "platform/ge/point3d.h"
#include "platform/lisp/external_functions.h"
#include "platform/lisp/resbuf.h"

namespace sg {

// The arguments of the LISP call in progress, and where reading them stands; released in the end.
class CallArguments {
  public:
    CallArguments() : list_(acedGetArgs()), next(list_) {}
    ~CallArguments() { acutRelRb(list_); }
    CallArguments(const CallArguments&) = delete;
    CallArguments& operator=(const CallArguments&) = delete;

  private:
    resbuf* list_;

  public:
    const resbuf* next;  // null behind the last one
};

// Reads an entity name as the id of its object; as the null id when it stands for nothing.
inline bool nextNamedObject(const resbuf*& position, AcDbObjectId& id) {
    ads_name name;
    if (!nextEntityName(position, name)) return false;
    if (acdbGetObjectId(id, name) != Acad::eOk) id.setNull();
    return true;
}

// An object of a class, open for as long as this lives; null when it cannot be opened.
template <class Class>
class Opened {
  public:
    Opened(AcDbObjectId id, AcDb::OpenMode mode) {
        if (acdbOpenObject(object_, id, mode) != Acad::eOk) object_ = nullptr;
    }
    ~Opened() {
        if (object_ != nullptr) object_->close();
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    explicit operator bool() const { return object_ != nullptr; }
    Class* operator->() const { return object_; }
    Class& operator*() const { return *object_; }
    Class* get() const { return object_; }

  private:
    Class* object_ = nullptr;
};

inline int retPoint(const AcGePoint3d& point) {
    const ads_point value = {point.x, point.y, point.z};
    return acedRetPoint(value);
}

}  // namespace sg
