#pragma once

#include <span>
#include <string>

#include "host/dwg/bit_reader.h"
#include "host/dwg/bit_writer.h"
#include "host/dwg/code_pages.h"
#include "host/dxf/handles.h"
#include "host/dxf/text_codec.h"
#include "host/model/core/dwg_form.h"

namespace sg::dwg {

// The three rows of bits of an object in a file. Until release 2004 texts stand among the data.
struct ReadStreams {
    BitReader data, texts, handles;
};

// What file filers share.
class FileFiler : public AcDbDwgFiler, public model::DwgForm {
  public:
    FileFiler(AcDbDatabase* database, AcDb::AcDbDwgVersion release, const dxf::TextCodec& codec)
        : database_(database), release_(release), codec_(codec) {}

    AcDb::FilerType filerType() const final { return AcDb::kFileFiler; }
    Acad::ErrorStatus filerStatus() const final { return status_; }
    void setFilerStatus(Acad::ErrorStatus status) final { status_ = status; }
    void resetFilerStatus() final { status_ = Acad::eOk; }
    AcDb::AcDbDwgVersion dwgVersion() const final { return release_; }
    AcDbDatabase* database() const final { return database_; }
    model::DwgForm* dwgForm() final { return this; }

    std::string encode(const std::wstring& text) const final;
    std::wstring decode(std::string_view bytes, uint8_t codePage) const final;
    uint8_t codePage() const final {
        return static_cast<uint8_t>(codePageNumber(codec_.codePage()));
    }

  protected:
    Acad::ErrorStatus refuse() {
        if (status_ == Acad::eOk) status_ = Acad::eInvalidInput;
        return status_;
    }
    bool hasTextStream() const { return release_ >= AcDb::kDHL_1021; }

    AcDbDatabase* database_;
    AcDb::AcDbDwgVersion release_;
    const dxf::TextCodec& codec_;
    Acad::ErrorStatus status_ = Acad::eOk;
};

}  // namespace sg::dwg
