; Makes the project database of an office floor: a layer standard, equipment types, what rooms need,
; and empty schedules.
;
;   swiftgate run examples/office/make_project.lsp --path examples/office -- project.mdb
;
; The standards tables are those that the customization dialogs edit (qn_qn-customizeLayers and its
; kin); the others are the office's own.

(load "tools")

(setq project (car (host-arguments)))
(if (null project) (fail "Name the database to make behind --"))
(if (findfile project) (fail (strcat project " is there already")))

; What every row of a standards table carries besides its own values.
(setq master '(("ixMasterDatabase" "LONG" nil nil) ("iMasterDatabaseIndex" "LONG" nil nil)))

(defun id-field (name) (list name "LONG" nil nil "I" T T))

; Fields of the hatch that marks the ducts of one kind of air.
(defun hatch-fields (air)
  (list (list (strcat air "HatchOn") "BOOL" nil nil)
        (list (strcat air "HatchType") "TEXT" 20 nil "Predefined")
        (list (strcat air "HatchPattern") "TEXT" 60 nil "ANSI31")
        (list (strcat air "HatchAngle") "REAL" nil "0")
        (list (strcat air "HatchScale") "REAL" nil "1")))

; Makes a table, or ends the program with the engine's reason.
(defun make-table (name fields)
  (if (null (sg_create_table name fields)) (fail (strcat name ": " (sg_lastError)))))

; Appends rows to a table; a row lists its values in the order of `fields`.
(defun fill-table (table fields rows)
  (foreach row rows (add-row table (mapcar 'cons fields row)))
  (sg_close_table)
  (princ (strcat "\n  " table ": " (itoa (length rows)) " rows")))

(princ (strcat "\nMaking " project))
(if (null (sg_create_db project)) (fail (strcat project " cannot be made")))
(open-project project)

; --- The layer standard

(make-table "tblGlobal"
  (list (id-field "ixGlobal") '("sKey" "TEXT" 60 T nil "X" T) '("bNumeric" "BOOL" nil nil)
        '("sText" "TEXT" 255 nil nil) '("dNumber" "REAL" nil nil)))
(make-table "tblLayer"
  (append (list (id-field "ixLayer") '("sName" "TEXT" 255 T nil "X" T) '("bRGBColor" "BOOL" nil nil)
                '("iColor" "INT" nil nil) '("iRed" "INT" nil nil) '("iGreen" "INT" nil nil)
                '("iBlue" "INT" nil nil) '("sLinetype" "TEXT" 60 T "Continuous")
                '("bPlot" "BOOL" nil nil) '("sLineweight" "TEXT" 10 nil nil)
                '("sPlotstyle" "TEXT" 60 nil nil))
          master))
(make-table "tblLayerSystem"
  (append (list (id-field "ixLayerSystem") '("sDescription" "TEXT" 80 T nil)
                '("iSortOrder" "INT" nil nil "X") '("bSolid" "BOOL" nil nil)
                '("sPrefix" "TEXT" 20 nil nil) '("sSuffix" "TEXT" 20 nil nil))
          (hatch-fields "supply") (hatch-fields "return") (hatch-fields "exhaust")
          (hatch-fields "outside")
          '(("bHatchFlexDucts" "BOOL" nil nil) ("dHatchOverhang" "REAL" nil "0"))
          master))
(make-table "tblLayerKey"
  (append (list (id-field "ixLayerKey") '("ixLayerSystem" "LONG" nil nil "X")
                '("ixLayer" "LONG" T nil "X") '("sKey" "TEXT" 80 T nil))
          master))
(sg_command "CREATE INDEX isxLayerSystemKey ON tblLayerKey (ixLayerSystem, sKey)")
(make-table "tblTextStyle"
  (append (list (id-field "ixTextStyle") '("sKey" "TEXT" 60 T nil "X" T)
                '("sStyleName" "TEXT" 60 nil nil) '("dHeight" "REAL" nil nil)
                '("dScaleFactor" "REAL" nil nil))
          master))
(make-table "tblLabelGroup"
  (list (id-field "ixLabelGroup") '("sGroup" "TEXT" 60 T nil "X") '("sKey" "TEXT" 60 T nil)
        '("sLabel" "TEXT" 80 nil nil) '("dWidth" "REAL" nil nil)
        '("sJustification" "TEXT" 10 nil "Left") '("bDisplay" "BOOL" nil nil)
        '("iSortOrder" "INT" nil nil)))

(fill-table "tblGlobal" '("sKey" "bNumeric" "sText" "dNumber")
  '(("Units" nil "mm" nil) ("DuctHeightAboveFloor" T nil 2900.0) ("CeilingHeight" T nil 2700.0)
    ("DuctVelocity" T nil 4.5)
    ("SupplyTemperature" T nil 18.0)))

; Name, colour, linetype, lineweight in hundredths of a millimetre; all of them plot.
(setq layers '(("M-DUCT-SUPP" 5 "Continuous" "35") ("M-DUCT-SUPP-CNTR" 1 "CENTER" "18")
               ("M-DUCT-EXTR" 30 "Continuous" "35") ("M-DUCT-EXTR-CNTR" 1 "CENTER" "18")
               ("M-DUCT-HNGR" 8 "Continuous" "18") ("M-DIFF-SUPP" 140 "Continuous" "25")
               ("M-TEXT" 7 "Continuous" nil) ("E-LITE" 42 "Continuous" "25")
               ("E-TEXT" 7 "Continuous" nil) ("X-SCHEDULE" 7 "Continuous" "18")))
(fill-table "tblLayer" '("sName" "bRGBColor" "iColor" "sLinetype" "bPlot" "sLineweight")
  (mapcar '(lambda (layer)
             (list (car layer) nil (cadr layer) (caddr layer) T (cadddr layer)))
          layers))

; Angles are in radians.
(fill-table "tblLayerSystem"
  '("sDescription" "iSortOrder" "bSolid" "sPrefix" "sSuffix" "supplyHatchOn" "supplyHatchType"
    "supplyHatchPattern" "supplyHatchAngle" "supplyHatchScale" "bHatchFlexDucts")
  '(("Supply air" 1 T "SA" "" T "Predefined" "ANSI31" 0.7853982 1.0 nil)
    ("Extract air" 2 T "EA" "" nil "Predefined" "ANSI31" 0.0 1.0 nil)))

(defun layer-id (name)
  (sg_table "tblLayer" "sName")
  (cdr (assoc "ixLayer" (sg_seek name))))

(defun system-id (description)
  (car (sg_sql (strcat "SELECT ixLayerSystem FROM tblLayerSystem WHERE sDescription = '"
                       description "'"))))

; A key without a system belongs to the general one.
(fill-table "tblLayerKey" '("ixLayerSystem" "ixLayer" "sKey")
  (mapcar '(lambda (key)
             (list (if (car key) (system-id (car key))) (layer-id (caddr key)) (cadr key)))
          '((nil "DuctHanger" "M-DUCT-HNGR") (nil "Diffuser" "M-DIFF-SUPP") (nil "Label" "M-TEXT")
            (nil "Luminaire" "E-LITE") (nil "LuminaireLabel" "E-TEXT")
            (nil "Schedule" "X-SCHEDULE") ("Supply air" "Duct" "M-DUCT-SUPP")
            ("Supply air" "DuctCenter" "M-DUCT-SUPP-CNTR") ("Extract air" "Duct" "M-DUCT-EXTR")
            ("Extract air" "DuctCenter" "M-DUCT-EXTR-CNTR"))))

(fill-table "tblTextStyle" '("sKey" "sStyleName" "dHeight" "dScaleFactor")
  '(("Default" "Standard" 200.0 1.0) ("Label" nil 180.0 nil) ("ScheduleTitle" nil 350.0 nil)))

(fill-table "tblLabelGroup"
  '("sGroup" "sKey" "sLabel" "dWidth" "sJustification" "bDisplay" "iSortOrder")
  '(("Equipment schedule" "Schedule Title" "AIR AND LIGHTING" nil "Left" T -1)
    ("Equipment schedule" "Tag" "TAG" 1500.0 "Left" T 0)
    ("Equipment schedule" "Room" "ROOM" 1500.0 "Left" T 1)
    ("Equipment schedule" "Type" "TYPE" 3600.0 "Left" T 2)
    ("Equipment schedule" "Airflow" "AIR m3/h" 1800.0 "Right" T 3)
    ("Equipment schedule" "Power" "POWER W" 1800.0 "Right" T 4)
    ("Equipment schedule" "Remarks" "REMARKS" nil "Left" nil 5)
    ("Duct schedule" "Schedule Title" "SUPPLY DUCT" nil "Left" T -1)
    ("Duct schedule" "Size" "SIZE mm" 1800.0 "Left" T 0)
    ("Duct schedule" "Pieces" "PIECES" 1500.0 "Right" T 1)
    ("Duct schedule" "Length" "LENGTH m" 1800.0 "Right" T 2)))

; --- The office's own tables

(make-table "tblEquipment"
  (list (id-field "ixEquipment") '("sType" "TEXT" 40 T nil "X" T) '("sKind" "TEXT" 20 T nil "X")
        '("sPrefix" "TEXT" 4 T nil) '("dWidth" "REAL" T nil) '("dDepth" "REAL" T nil)
        '("dAirflow" "REAL" nil nil) '("dPower" "REAL" nil nil) '("cPrice" "CURRENCY" nil nil)))
(make-table "tblRoomUse"
  (list (id-field "ixRoomUse") '("sName" "TEXT" 40 T nil "X" T) '("dAirPerArea" "REAL" nil nil)
        '("sDiffuser" "TEXT" 40 nil nil) '("dAreaPerLuminaire" "REAL" nil nil)
        '("sLuminaire" "TEXT" 40 nil nil)))
(make-table "tblSchedule"
  (list (id-field "ixSchedule") '("sTag" "TEXT" 20 T nil "X" T) '("sRoom" "TEXT" 10 T nil "X")
        '("sType" "TEXT" 40 T nil) '("sHandle" "TEXT" 16 nil nil) '("dAirflow" "REAL" nil nil)
        '("dPower" "REAL" nil nil) '("dX" "REAL" nil nil) '("dY" "REAL" nil nil)
        '("dZ" "REAL" nil nil) '("tPlaced" "DATE" nil nil)))

; Pieces of duct: straight ones from one end to the other; fittings and hangers have a place only.
(make-table "tblDuct"
  (list (id-field "ixDuct") '("sHandle" "TEXT" 16 T nil "X" T) '("sKind" "TEXT" 20 T nil "X")
        '("sSize" "TEXT" 20 T nil) '("sServes" "TEXT" 20 T nil "X") '("dAirflow" "REAL" nil nil)
        '("dWidth" "REAL" nil nil) '("dHeight" "REAL" nil nil) '("dLength" "REAL" nil nil)
        '("dX1" "REAL" nil nil) '("dY1" "REAL" nil nil) '("dZ1" "REAL" nil nil)
        '("dX2" "REAL" nil nil) '("dY2" "REAL" nil nil) '("dZ2" "REAL" nil nil)))

; Air in cubic metres an hour, power in watts.
(fill-table "tblEquipment"
  '("sType" "sKind" "sPrefix" "dWidth" "dDepth" "dAirflow" "dPower" "cPrice")
  '(("Swirl diffuser 400" "Diffuser" "SD" 400.0 400.0 180.0 nil 142)
    ("Swirl diffuser 600" "Diffuser" "SD" 600.0 600.0 400.0 nil 188)
    ("Disc valve 160" "Diffuser" "DV" 160.0 160.0 90.0 nil 31)
    ("Panel 600x600 33W" "Luminaire" "L" 600.0 600.0 nil 33.0 96)
    ("Batten 1500 45W" "Luminaire" "L" 1500.0 120.0 nil 45.0 74)
    ("Downlight 18W" "Luminaire" "L" 200.0 200.0 nil 18.0 42)))

(fill-table "tblRoomUse"
  '("sName" "dAirPerArea" "sDiffuser" "dAreaPerLuminaire" "sLuminaire")
  '(("Office" 6.0 "Swirl diffuser 400" 6.0 "Panel 600x600 33W")
    ("Open office" 7.2 "Swirl diffuser 400" 6.0 "Panel 600x600 33W")
    ("Management" 6.0 "Swirl diffuser 400" 7.0 "Panel 600x600 33W")
    ("Reception" 5.0 "Swirl diffuser 400" 8.0 "Downlight 18W")
    ("Meeting" 15.0 "Swirl diffuser 600" 6.0 "Panel 600x600 33W")
    ("Conference" 16.0 "Swirl diffuser 600" 6.0 "Panel 600x600 33W")
    ("Server" 8.0 "Swirl diffuser 400" 8.0 "Batten 1500 45W")
    ("Pantry" 8.0 "Disc valve 160" 8.0 "Downlight 18W")
    ("Washroom" nil nil 5.0 "Downlight 18W")
    ("Plant room" nil nil 10.0 "Batten 1500 45W")
    ("Corridor" nil nil 10.0 "Downlight 18W")))

(sg_close_db)
(princ "\nDone.\n")
(princ)
