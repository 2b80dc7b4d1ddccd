;; A standards database with the tables that the dialogs edit, connected as "standards.qn" in the
;; folder for temporary files, and looks into it.

(setq standards (strcat (getenv "TEMP") "/standards.qn"))

(defun run-all (statements)
  (foreach statement statements
    (if (null (sg_command statement)) (princ (strcat "\nfailed: " statement)))))

(defun hatch-columns (ducts)
  (strcat ducts "HatchOn bit, " ducts "HatchType text(20), " ducts "HatchPattern text(40), "
          ducts "HatchAngle double, " ducts "HatchScale double, "))

(defun make-standards ()
  (sg_create_db standards)
  (sg_connect standards)
  (run-all
    (list
      "create table tblLayer (ixLayer counter constraint ixLayer primary key, sName text(50), bRGBColor bit, iColor short, iRed short, iGreen short, iBlue short, sLinetype text(50), bPlot bit, sLineweight text(10), sPlotstyle text(50), ixMasterDatabase long, iMasterDatabaseIndex long)"
      "create index sName on tblLayer (sName)"
      "create table tblLayerKey (ixLayerKey counter constraint ixLayerKey primary key, ixLayerSystem long, ixLayer long, sKey text(50), ixMasterDatabase long, iMasterDatabaseIndex long)"
      "create index sKey on tblLayerKey (sKey)"
      "create index isxLayerSystemKey on tblLayerKey (ixLayerSystem, sKey)"
      (strcat
        "create table tblLayerSystem (ixLayerSystem counter constraint ixLayerSystem primary key, sDescription text(50), iSortOrder short, bSolid bit, sPrefix text(20), sSuffix text(20), "
        (hatch-columns "supply") (hatch-columns "return") (hatch-columns "exhaust")
        (hatch-columns "outside")
        "bHatchFlexDucts bit, dHatchOverhang double, ixMasterDatabase long, iMasterDatabaseIndex long)")
      "create index iSortOrder on tblLayerSystem (iSortOrder)"
      "create table tblTextStyle (ixTextStyle counter constraint ixTextStyle primary key, sKey text(50), sStyleName text(50), dHeight double, dScaleFactor double, ixMasterDatabase long, iMasterDatabaseIndex long)"
      "create index sKey on tblTextStyle (sKey)"
      "create table tblLabelGroup (ixLabelGroup counter constraint ixLabelGroup primary key, sGroup text(50), sKey text(50), sLabel text(100), dWidth double, sJustification text(10), bDisplay bit, iSortOrder short)")))

(defun add-layers (layers)
  (foreach layer layers
    (run-all
      (list (strcat "insert into tblLayer (sName, bRGBColor, iColor, sLinetype, bPlot, sLineweight) values (" layer ")")))))

(defun add-systems (systems / order)
  (setq order 0)
  (foreach system systems
    (setq order (1+ order))
    (run-all
      (list (strcat "insert into tblLayerSystem (sDescription, iSortOrder, supplyHatchOn, supplyHatchType, supplyHatchPattern, supplyHatchAngle, supplyHatchScale, dHatchOverhang) values ('"
                    system "', " (itoa order) ", -1, 'Predefined', 'ANSI31', 0.7853981625, 2, 1.5)")))))

;; A key of a system, "Null" for the general one, with the layer's id.
(defun add-key (system key layer)
  (run-all
    (list (strcat "insert into tblLayerKey (ixLayerSystem, ixLayer, sKey) values ("
                  system ", " (itoa layer) ", '" key "')"))))

;; The layers "A" to "C", the general system and two more, each with two keys.
(defun fill-standards ()
  (add-layers '("'A', 0, 1, 'Continuous', -1, '25'" "'B', 0, 2, 'HIDDEN', 0, Null"
                "'C', -1, Null, 'Continuous', -1, '200'"))
  (add-systems '("Supply Air" "Power"))
  (add-key "Null" "DUCT_2" 1) (add-key "Null" "DUCT_10" 2)
  (add-key "1" "DUCT_2" 2) (add-key "1" "DUCT_10" 2)
  (add-key "2" "WIRE_1" 1) (add-key "2" "WIRE_2" 1))

(defun rows-of (sql)
  (foreach row (sg_sql sql)
    (princ "\n")
    (if (listp row)
      (foreach pair row (prin1 (cdr pair)) (princ " "))
      (prin1 row))))

(defun show-layers ()
  (princ "\nlayers")
  (rows-of "select ixLayer, sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle from tblLayer order by ixLayer"))
(defun show-keys ()
  (princ "\nkeys")
  (rows-of "select ixLayerSystem, sKey, ixLayer from tblLayerKey order by ixLayerKey"))
(defun show-systems ()
  (princ "\nsystems")
  (rows-of "select ixLayerSystem, sDescription, iSortOrder from tblLayerSystem order by ixLayerSystem"))

(princ)
