CREATE TABLE tblGlobal (ixGlobal COUNTER CONSTRAINT ixGlobal PRIMARY KEY, sKey TEXT(50), bNumeric YESNO, sText TEXT(255),
    dNumber DOUBLE);
CREATE INDEX sKey ON tblGlobal (sKey);

CREATE TABLE tblLayer (ixLayer COUNTER CONSTRAINT ixLayer PRIMARY KEY, sName TEXT(100), bRGBColor YESNO, iColor SHORT,
    iRed SHORT, iGreen SHORT, iBlue SHORT, sLinetype TEXT(50), bPlot YESNO, sLineweight TEXT(10), sPlotstyle TEXT(50),
    ixMasterDatabase LONG, iMasterDatabaseIndex LONG);
CREATE INDEX sName ON tblLayer (sName);

CREATE TABLE tblLayerKey (ixLayerKey COUNTER CONSTRAINT ixLayerKey PRIMARY KEY, ixLayerSystem LONG, ixLayer LONG,
    sKey TEXT(50), ixMasterDatabase LONG, iMasterDatabaseIndex LONG);
CREATE INDEX isxLayerSystemKey ON tblLayerKey (ixLayerSystem, sKey);

CREATE TABLE tblLayerSystem (ixLayerSystem COUNTER CONSTRAINT ixLayerSystem PRIMARY KEY, sDescription TEXT(100),
    iSortOrder SHORT, bSolid YESNO, sPrefix TEXT(20), sSuffix TEXT(20),
    supplyHatchOn YESNO, supplyHatchType TEXT(20), supplyHatchPattern TEXT(50), supplyHatchAngle DOUBLE, supplyHatchScale DOUBLE,
    returnHatchOn YESNO, returnHatchType TEXT(20), returnHatchPattern TEXT(50), returnHatchAngle DOUBLE, returnHatchScale DOUBLE,
    exhaustHatchOn YESNO, exhaustHatchType TEXT(20), exhaustHatchPattern TEXT(50), exhaustHatchAngle DOUBLE,
    exhaustHatchScale DOUBLE, outsideHatchOn YESNO, outsideHatchType TEXT(20), outsideHatchPattern TEXT(50),
    outsideHatchAngle DOUBLE, outsideHatchScale DOUBLE, bHatchFlexDucts YESNO, dHatchOverhang DOUBLE,
    ixMasterDatabase LONG, iMasterDatabaseIndex LONG);
CREATE INDEX iSortOrder ON tblLayerSystem (iSortOrder);

CREATE TABLE tblTextStyle (ixTextStyle COUNTER CONSTRAINT ixTextStyle PRIMARY KEY, sKey TEXT(50), sStyleName TEXT(50),
    dHeight DOUBLE, dScaleFactor DOUBLE, ixMasterDatabase LONG, iMasterDatabaseIndex LONG);
CREATE INDEX sKey ON tblTextStyle (sKey);

CREATE TABLE tblLabelGroup (ixLabelGroup COUNTER CONSTRAINT ixLabelGroup PRIMARY KEY, sGroup TEXT(50), sKey TEXT(50),
    sLabel TEXT(100), dWidth DOUBLE, sJustification TEXT(10), bDisplay YESNO, iSortOrder LONG);

INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight) VALUES ('M-Duct', 4, 'Continuous', True, '25');
INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight) VALUES ('M-Pipe', 5, 'Hidden', True, Null);
INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight) VALUES ('M-Text', 2, 'Continuous', True, '18');
INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight) VALUES ('Unused', 7, 'Continuous', False, Null);

INSERT INTO tblLayerSystem (sDescription, iSortOrder, bSolid) VALUES ('Offices', 1, True);
INSERT INTO tblLayerSystem (sDescription, iSortOrder, bSolid) VALUES ('Plant', 2, False);

INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) VALUES (Null, 1, 'duct');
INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) VALUES (Null, 3, 'Text');
INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) VALUES (1, 2, 'pipe');
INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) VALUES (1, 1, 'Duct');
INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) VALUES (2, 1, 'duct');

INSERT INTO tblTextStyle (sKey, sStyleName, dHeight, dScaleFactor) VALUES ('Default', 'Standard', 2.5, 1);
INSERT INTO tblTextStyle (sKey, sStyleName, dHeight, dScaleFactor) VALUES ('Title', 'Bold', 5, 1);

INSERT INTO tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder)
    VALUES ('Duct', 'Schedule Title', 'DUCTS', Null, 'Left', True, -1);
INSERT INTO tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder)
    VALUES ('Duct', 'Size', 'Size', 1.5, 'Center', True, 2);
INSERT INTO tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder)
    VALUES ('Duct', 'Flow', 'L/s', 1, 'Right', False, 1);
INSERT INTO tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder)
    VALUES ('Owner''s', 'Tag', 'Tag', 2, 'Left', True, 1);
