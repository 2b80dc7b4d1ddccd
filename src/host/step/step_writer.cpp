#include <BRepBuilderAPI_GTransform.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BinTools.hxx>
#include <Interface_Static.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_Printer.hxx>
#include <Quantity_Color.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <TCollection_ExtendedString.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <TopoDS_Iterator.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_LayerTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp_GTrsf.hxx>
#include <sstream>

#include "base/encoding.h"
#include "base/export.h"
#include "host/exchange/step_library.h"

// The shared library over Open CASCADE's exchange of data; nothing else of the host links it.

namespace sg::step {
namespace {

using exchange::StepShape;

TCollection_ExtendedString text(const std::wstring& value) {
    return {toUtf8(value).c_str(), true};
}

TopoDS_Shape shapeOf(const StepShape& item) {
    std::istringstream bytes(item.shape);
    TopoDS_Shape shape;
    BinTools::Read(shape, bytes);
    if (shape.IsNull() || item.placement.isEqualTo(AcGeMatrix3d::kIdentity)) return shape;
    const auto& e = item.placement.entry;
    if (item.placement.isUniScaledOrtho()) {
        gp_Trsf move;
        move.SetValues(e[0][0], e[0][1], e[0][2], e[0][3], e[1][0], e[1][1], e[1][2], e[1][3],
                       e[2][0], e[2][1], e[2][2], e[2][3]);
        return BRepBuilderAPI_Transform(shape, move, true).Shape();
    }
    gp_GTrsf move;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column)
            move.SetValue(row + 1, column + 1, e[row][column]);
    }
    return BRepBuilderAPI_GTransform(shape, move, true).Shape();
}

// A compound of one solid is written as that solid.
TopoDS_Shape withoutCompound(const TopoDS_Shape& shape) {
    TopoDS_Iterator part(shape);
    if (shape.ShapeType() != TopAbs_COMPOUND || !part.More()) return shape;
    const TopoDS_Shape only = part.Value();
    part.Next();
    return part.More() ? shape : only;
}

bool addShape(const Handle(TDocStd_Document) & document, const StepShape& item) {
    const TopoDS_Shape shape = shapeOf(item);
    if (shape.IsNull()) return false;
    const TDF_Label root = document->Main();
    const TDF_Label label =
        XCAFDoc_DocumentTool::ShapeTool(root)->AddShape(withoutCompound(shape), false);
    TDataStd_Name::Set(label, text(item.name));
    XCAFDoc_DocumentTool::LayerTool(root)->SetLayer(label, text(item.layer));
    const Quantity_Color color((item.color >> 16 & 255) / 255.0, (item.color >> 8 & 255) / 255.0,
                               (item.color & 255) / 255.0, Quantity_TOC_sRGB);
    XCAFDoc_DocumentTool::ColorTool(root)->SetColor(label, color, XCAFDoc_ColorGen);
    return true;
}

class Library final : public exchange::StepLibrary {
  public:
    bool write(const std::vector<StepShape>& shapes, const std::string& unit,
               const std::string& path) const override {
        try {
            Message::DefaultMessenger()->RemovePrinters(STANDARD_TYPE(Message_Printer));
            Handle(TDocStd_Document) document;
            XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
            for (const StepShape& item : shapes) {
                if (!addShape(document, item)) return false;
            }
            STEPCAFControl_Writer writer;
            Interface_Static::SetCVal("write.step.unit", unit.c_str());
            writer.SetNameMode(true);
            writer.SetLayerMode(true);
            writer.SetColorMode(true);
            return writer.Transfer(document, STEPControl_AsIs) &&
                   writer.Write(path.c_str()) == IFSelect_RetDone;
        } catch (const Standard_Failure&) {
            return false;
        }
    }
};

}  // namespace
}  // namespace sg::step

extern "C" SG_API const sg::exchange::StepLibrary* swiftgateStepLibrary() {
    static const sg::step::Library library;
    return &library;
}
