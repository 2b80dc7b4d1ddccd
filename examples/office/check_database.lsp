; The checks of the project's database, and of what the drawing has from its standard.

(defun schedule-text (tag room article air power place)
  (line-of (list tag "room" room article "air" air "power" power "at" place)))

(defun expected-schedule (equipment)
  (mapcar '(lambda (piece)
             (schedule-text (value-of "tag" piece) (value-of "room" piece)
                            (value-of "type" piece) (value-of "air" piece)
                            (value-of "power" piece) (value-of "place" piece)))
          equipment))

(defun stored-schedule (rows)
  (mapcar '(lambda (row)
             (schedule-text (value-of "sTag" row) (value-of "sRoom" row)
                            (value-of "sType" row) (value-of "dAirflow" row)
                            (value-of "dPower" row)
                            (list (value-of "dX" row) (value-of "dY" row) (value-of "dZ" row))))
          rows))

(defun duct-text (size serves long) (line-of (list size "for" serves "length" long)))

(defun expected-duct-texts (ducts)
  (mapcar '(lambda (duct)
             (duct-text (value-of "size" duct) (value-of "serves" duct)
                        (value-of "length" duct)))
          ducts))

(defun stored-duct-texts (rows)
  (mapcar '(lambda (row)
             (duct-text (value-of "sSize" row) (value-of "sServes" row)
                        (value-of "dLength" row)))
          rows))

(defun rows-of-kind (kind)
  (vl-remove-if-not '(lambda (row) (= (value-of "sKind" row) kind)) (rows-of "tblDuct" "sKind")))

; Where fittings are, and whom they serve: a takeoff stands in the corridor beside its diffuser, an
; elbow above it, and one is the bend of the main.
(defun stored-places (rows)
  (mapcar '(lambda (row)
             (line-of (list (value-of "sServes" row)
                            (list (value-of "dX1" row) (value-of "dY1" row) (value-of "dZ1" row)))))
          rows))

(defun expected-takeoffs (equipment / z)
  (setq z (setting "DuctHeightAboveFloor"))
  (mapcar '(lambda (piece)
             (line-of (list (value-of "tag" piece)
                            (list (car (value-of "place" piece)) (cadr middle) z))))
          (diffusers-of equipment)))

(defun expected-elbows (equipment / z)
  (setq z (setting "DuctHeightAboveFloor"))
  (cons (line-of (list "main" (list (car middle) (cadr middle) z)))
        (mapcar '(lambda (piece / place)
                   (setq place (value-of "place" piece))
                   (line-of (list (value-of "tag" piece) (list (car place) (cadr place) z))))
                (diffusers-of equipment))))

(defun check-database (equipment ducts / rows)
  (setq rows (rows-of "tblSchedule" "sTag"))
  (check-list "equipment in the schedule" (expected-schedule equipment) (stored-schedule rows))
  (check "sum of air, m3/h" (sum-of "air" equipment)
         (car (sg_sql "SELECT Sum(dAirflow) FROM tblSchedule")))
  (check "sum of power, W" (sum-of "power" equipment)
         (car (sg_sql "SELECT Sum(dPower) FROM tblSchedule")))
  (check "rows without a date" 0
         (length (vl-remove-if '(lambda (row) (value-of "tPlaced" row)) rows)))
  (check-list "straight ducts, with lengths" (expected-duct-texts ducts)
              (stored-duct-texts (rows-of-kind "Straight")))
  (check-list "takeoffs, by diffuser and place" (expected-takeoffs equipment)
              (stored-places (rows-of-kind "Takeoff")))
  (check-list "elbows, by diffuser and place" (expected-elbows equipment)
              (stored-places (rows-of-kind "Elbow")))
  (check "transitions" 1 (length (rows-of-kind "Transition")))
  (check "reducers" (expected-reducers equipment) (length (rows-of-kind "Reducer")))
  (check "hangers" (expected-hangers ducts) (length (rows-of-kind "Hanger"))))

; --- The standard

(defun label-texts ()
  (sg_sql "SELECT sLabel FROM tblLabelGroup WHERE bDisplay = True"))

(defun layer-text (name color linetype weight plots)
  (line-of (list name "color" color linetype "weight" weight "plots" plots)))

; The layers that the standard names, as it wants them.
(defun standard-layers ()
  (mapcar '(lambda (row)
             (layer-text (value-of "sName" row) (value-of "iColor" row)
                         (value-of "sLinetype" row)
                         (if (value-of "sLineweight" row) (atoi (value-of "sLineweight" row)) -3)
                         (if (= (value-of "bPlot" row) -1) 1 0)))
          (vl-remove-if-not '(lambda (row) (tblsearch "LAYER" (value-of "sName" row)))
                            (rows-of "tblLayer" "sName"))))

; The drawing's layers that are not the floor's own.
(defun drawn-layers (/ layer data texts)
  (setq layer (tblnext "LAYER" T))
  (while layer
    (if (not (wcmatch (value-of 2 layer) "0,A-*"))
      (setq data (entget (tblobjname "LAYER" (value-of 2 layer)))
            texts (cons (layer-text (value-of 2 layer) (value-of 62 data) (value-of 6 data)
                                    (cond ((value-of 370 data)) (-3))
                                    (cond ((value-of 290 data)) (1)))
                        texts)))
    (setq layer (tblnext "LAYER")))
  texts)

(defun check-layers ()
  (check-list "layers, as the standard has them" (standard-layers) (drawn-layers)))
