#pragma once

#include <string>

#include "base/export.h"
#include "platform/rx/error_status.h"

// One drawing's objects. A database belongs to the document that shows it.
class SG_API AcDbDatabase {
  public:
    AcDbDatabase() = default;
    AcDbDatabase(const AcDbDatabase&) = delete;
    AcDbDatabase& operator=(const AcDbDatabase&) = delete;
    virtual ~AcDbDatabase() = default;

    // The file that the database was read from or last saved to; eFileNotFound, and `name` empty,
    // for a drawing that has no file yet.
    Acad::ErrorStatus getFilename(std::wstring& name) const;
    void setFilename(const std::wstring& name) { filename_ = name; }

  private:
    std::wstring filename_;
};

// What the drawing database asks of the program around it.
class SG_API AcDbHostApplicationServices {
  public:
    virtual ~AcDbHostApplicationServices() = default;

    // The database that operations without a database argument work on: that of the current
    // document, unless set otherwise. Null when no document is open.
    virtual AcDbDatabase* workingDatabase() const = 0;
    virtual void setWorkingDatabase(AcDbDatabase* database) = 0;
};

SG_API AcDbHostApplicationServices* acdbHostApplicationServices();
