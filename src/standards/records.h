#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "standards/standards_record.h"

// The standards tables: one class each, with the columns in the order of the table.
namespace sg {

// A setting by its key, a number or a text.
class GlobalRecord : public StandardsRecord {
  public:
    GlobalRecord(bool flag, CDBConnection* connection)
        : StandardsRecord(flag, connection, L"tblGlobal", L"ixGlobal") {}

    bool seekKey(const std::wstring& key) { return seekOn(L"sKey", key); }

    Column<int32_t> ixGlobal{*this, L"ixGlobal"};
    Column<std::wstring> sKey{*this, L"sKey"};
    Column<bool> bNumeric{*this, L"bNumeric"};
    NullableColumn<std::wstring> sText{*this, L"sText"};
    NullableColumn<double> dNumber{*this, L"dNumber"};
};

// What a layer of a name is like. Of the line weight the text is a whole number of hundredths of a
// millimetre; Null is the default weight.
class LayerRecord : public StandardsRecord {
  public:
    LayerRecord(bool flag, CDBConnection* connection)
        : StandardsRecord(flag, connection, L"tblLayer", L"ixLayer") {}

    bool seekKey(const std::wstring& name) { return seekOn(L"sName", name); }
    bool moveLast() { return moveToLast(); }

    Column<int32_t> ixLayer{*this, L"ixLayer"};
    Column<std::wstring> sName{*this, L"sName"};
    Column<bool> bRGBColor{*this, L"bRGBColor"};
    NullableColumn<int16_t> iColor{*this, L"iColor"};
    NullableColumn<int16_t> iRed{*this, L"iRed"};
    NullableColumn<int16_t> iGreen{*this, L"iGreen"};
    NullableColumn<int16_t> iBlue{*this, L"iBlue"};
    Column<std::wstring> sLinetype{*this, L"sLinetype"};
    Column<bool> bPlot{*this, L"bPlot"};
    NullableColumn<std::wstring> sLineweight{*this, L"sLineweight"};
    NullableColumn<std::wstring> sPlotstyle{*this, L"sPlotstyle"};
    NullableColumn<int32_t> ixMasterDatabase{*this, L"ixMasterDatabase"};
    NullableColumn<int32_t> iMasterDatabaseIndex{*this, L"iMasterDatabaseIndex"};
};

// The layer that a key stands for in a layer system. The general system is Null.
class LayerKeyRecord : public StandardsRecord {
  public:
    LayerKeyRecord(bool flag, CDBConnection* connection)
        : StandardsRecord(flag, connection, L"tblLayerKey", L"ixLayerKey") {}

    bool seekKey(const std::wstring& key) { return seekOn(L"sKey", key); }
    // nullopt is the general system.
    bool seekSystemKey(std::optional<int32_t> system, const std::wstring& key) {
        const COleVariant first = system ? COleVariant::fromInt32(*system) : COleVariant::null();
        return seekOn(L"isxLayerSystemKey", first, key);
    }

    Column<int32_t> ixLayerKey{*this, L"ixLayerKey"};
    NullableColumn<int32_t> ixLayerSystem{*this, L"ixLayerSystem"};
    Column<int32_t> ixLayer{*this, L"ixLayer"};
    Column<std::wstring> sKey{*this, L"sKey"};
    NullableColumn<int32_t> ixMasterDatabase{*this, L"ixMasterDatabase"};
    NullableColumn<int32_t> iMasterDatabaseIndex{*this, L"iMasterDatabaseIndex"};
};

// A layer system other than the general one, which has no row: its labels and hatches.
class LayerSystemRecord : public StandardsRecord {
  public:
    LayerSystemRecord(bool flag, CDBConnection* connection)
        : StandardsRecord(flag, connection, L"tblLayerSystem", L"ixLayerSystem") {}

    Column<int32_t> ixLayerSystem{*this, L"ixLayerSystem"};
    Column<std::wstring> sDescription{*this, L"sDescription"};
    Column<int16_t> iSortOrder{*this, L"iSortOrder"};
    Column<bool> bSolid{*this, L"bSolid"};
    Column<std::wstring> sPrefix{*this, L"sPrefix"};
    Column<std::wstring> sSuffix{*this, L"sSuffix"};
    Column<bool> supplyHatchOn{*this, L"supplyHatchOn"};
    Column<std::wstring> supplyHatchType{*this, L"supplyHatchType"};
    Column<std::wstring> supplyHatchPattern{*this, L"supplyHatchPattern"};
    Column<double> supplyHatchAngle{*this, L"supplyHatchAngle"};
    Column<double> supplyHatchScale{*this, L"supplyHatchScale"};
    Column<bool> returnHatchOn{*this, L"returnHatchOn"};
    Column<std::wstring> returnHatchType{*this, L"returnHatchType"};
    Column<std::wstring> returnHatchPattern{*this, L"returnHatchPattern"};
    Column<double> returnHatchAngle{*this, L"returnHatchAngle"};
    Column<double> returnHatchScale{*this, L"returnHatchScale"};
    Column<bool> exhaustHatchOn{*this, L"exhaustHatchOn"};
    Column<std::wstring> exhaustHatchType{*this, L"exhaustHatchType"};
    Column<std::wstring> exhaustHatchPattern{*this, L"exhaustHatchPattern"};
    Column<double> exhaustHatchAngle{*this, L"exhaustHatchAngle"};
    Column<double> exhaustHatchScale{*this, L"exhaustHatchScale"};
    Column<bool> outsideHatchOn{*this, L"outsideHatchOn"};
    Column<std::wstring> outsideHatchType{*this, L"outsideHatchType"};
    Column<std::wstring> outsideHatchPattern{*this, L"outsideHatchPattern"};
    Column<double> outsideHatchAngle{*this, L"outsideHatchAngle"};
    Column<double> outsideHatchScale{*this, L"outsideHatchScale"};
    Column<bool> bHatchFlexDucts{*this, L"bHatchFlexDucts"};
    Column<double> dHatchOverhang{*this, L"dHatchOverhang"};
    NullableColumn<int32_t> ixMasterDatabase{*this, L"ixMasterDatabase"};
    NullableColumn<int32_t> iMasterDatabaseIndex{*this, L"iMasterDatabaseIndex"};
};

// The text style that a key stands for. What is Null is that of the row for the key "Default".
class TextStyleRecord : public StandardsRecord {
  public:
    TextStyleRecord(bool flag, CDBConnection* connection)
        : StandardsRecord(flag, connection, L"tblTextStyle", L"ixTextStyle") {}

    bool seekKey(const std::wstring& key) { return seekOn(L"sKey", key); }

    Column<int32_t> ixTextStyle{*this, L"ixTextStyle"};
    Column<std::wstring> sKey{*this, L"sKey"};
    NullableColumn<std::wstring> sStyleName{*this, L"sStyleName"};
    NullableColumn<double> dHeight{*this, L"dHeight"};
    NullableColumn<double> dScaleFactor{*this, L"dScaleFactor"};
    NullableColumn<int32_t> ixMasterDatabase{*this, L"ixMasterDatabase"};
    NullableColumn<int32_t> iMasterDatabaseIndex{*this, L"iMasterDatabaseIndex"};
};

}  // namespace sg
