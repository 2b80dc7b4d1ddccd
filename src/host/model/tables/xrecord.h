#pragma once

#include "host/model/core/group_data.h"
#include "platform/db/dictionary.h"

// A list of groups that a program keeps in a dictionary.
class SG_API AcDbXrecord : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbXrecord)
    AcDbXrecord();
    ~AcDbXrecord() override;

    // A copy, which the caller releases.
    Acad::ErrorStatus rbChain(resbuf** groups) const;
    // Codes from 1 to 369 but 5 and 105: eInvalidDxfCode for others, and nothing changes.
    Acad::ErrorStatus setFromRbChain(const resbuf& groups);

    AcDb::DuplicateRecordCloning mergeStyle() const { return mergeStyle_; }
    void setMergeStyle(AcDb::DuplicateRecordCloning style);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);

    sg::model::GroupData groups_;
    AcDb::DuplicateRecordCloning mergeStyle_ = AcDb::kDrcIgnore;
};
