; Equips an office floor: reads its rooms from the drawing, looks up what they need in the project
; database, places diffusers and luminaires, leads a supply duct to every diffuser, tags everything,
; and keeps and draws the schedules.
;
;   swiftgate run examples/office/office.lsp --drawing floor.dxf --path examples/office
;       --save office.dwg -- project.mdb

(foreach part '("tools" "rooms" "equipment" "tags" "sections" "ducts" "table" "schedule")
  (load part))

; --- What is done with an error: the database is closed, and the progress meter goes.

(defun finish ()
  (acedRestoreStatusBar)
  (sg_close_db))

(defun *error* (message)
  (finish)
  (princ (strcat "\nThe floor is not equipped: " message "\n")))

(defun say (text) (princ (strcat "\n" text)))
(defun step () (acedSetStatusBarProgressMeterPos -1))

; --- The work

(defun start-over ()
  (foreach table '("tblSchedule" "tblDuct") (sg_command (strcat "DELETE FROM " table))))

; Places the equipment of all rooms; answers (diffusers luminaires).
(defun equip-rooms (rooms / diffusers luminaires placed)
  (acedSetStatusBarProgressMeter "Equipping rooms" 0 (length rooms))
  (foreach room rooms
    (setq placed (equip room)
          diffusers (append diffusers (car placed))
          luminaires (append luminaires (cadr placed)))
    (step))
  (say (strcat (itoa (length diffusers)) " diffusers, " (itoa (length luminaires))
               " luminaires"))
  (list diffusers luminaires))

(defun tag-all (pieces key height / layer)
  (setq layer (layer-for nil key))
  (foreach piece pieces (tag-equipment piece layer height)))

; How many rows of tblDuct are of a kind.
(defun count-of (kind) (fix (car (sg_sql (strcat "SELECT Count(*) FROM tblDuct WHERE sKind = '"
                                                 kind "'")))))

(defun lay-ducts (diffusers)
  (acedSetStatusBarProgressMeter "Laying ducts" 0 (length diffusers))
  (draw-ducts diffusers (layer-for nil "Label") step)
  (say (strcat (itoa (count-of "Straight")) " straight pieces, "
               (itoa (count-of "Takeoff")) " takeoffs, " (itoa (count-of "Elbow")) " elbows, "
               (itoa (count-of "Transition")) " transition, "
               (itoa (count-of "Reducer")) " reducers, " (itoa (count-of "Hanger"))
               " hangers")))

(defun today (/ date)
  (setq date (rtos (getvar "CDATE") 2 0))
  (strcat (substr date 1 4) "-" (substr date 5 2) "-" (substr date 7 2)))

; The date of placing is written once, when all is placed. Answers how many rows have got it.
(defun date-schedule (/ row date rows)
  (use-table "tblSchedule" "sTag")
  (setq row (sg_top)
        date (today)
        rows 0)
  (while row
    (if (null (sg_replace (list (cons "tPlaced" date))))
      (fail (strcat "The schedule cannot be changed: " (sg_lastError))))
    (setq rows (1+ rows)
          row (sg_skip)))
  rows)

(defun draw-schedules (/ layer bottom)
  (setq layer (layer-for nil "Schedule")
        bottom (draw-schedule "Equipment schedule" (equipment-lines) layer '(38000.0 13650.0 0.0)))
  (draw-schedule "Duct schedule" (duct-lines) layer (list 38000.0 (- bottom 1200.0) 0.0)))

(defun equip-floor (/ rooms placed)
  (setvar "DIMSCALE" 50.0)
  (start-over)
  (setq rooms (read-rooms))
  (say (strcat (itoa (length rooms)) " rooms, " (number-text (sum-of "area" rooms) 1) " m2"))
  (make-tag-symbol)
  (setq placed (equip-rooms rooms))
  (tag-all (car placed) "Label" 120.0)
  (tag-all (cadr placed) "LuminaireLabel" 90.0)
  (lay-ducts (car placed))
  (say (strcat (itoa (date-schedule)) " rows in the schedule"))
  (draw-schedules))

(open-project (car (host-arguments)))
(equip-floor)
(finish)
(princ "\nDone.\n")
(princ)
