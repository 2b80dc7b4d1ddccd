; Equips an office floor: reads its rooms from the drawing, looks up what they need in the project
; database, places diffusers and luminaires, tags them, leads a supply duct to every diffuser, and keeps
; and draws the schedule.
;
;   swiftgate run examples/office/office.lsp --drawing floor.dxf --path examples/office
;       --save office.dxf -- project.mdb

(foreach part '("rooms" "equipment" "ducts" "schedule") (load part))

(setq project (car (host-arguments)))
(if (not (and project (findfile project)))
  (progn (princ "\nName the project's database: -- project.mdb\n") (exit)))

(setvar "DIMSCALE" 50.0)
(sg_connect project)
(sg_command "DELETE FROM tblSchedule")

(setq rooms (read-rooms))
(princ (strcat "\n" (itoa (length rooms)) " rooms, "
               (rtos (apply '+ (mapcar '(lambda (room) (value-of "area" room)) rooms)) 2 1)
               " m2"))

(make-tag-symbol)
(setq label-layer (layer-for nil "Label"))
(setq diffusers (apply 'append (mapcar 'equip rooms)))
(foreach piece diffusers (tag-equipment piece label-layer))

(princ (strcat "\n" (draw-ducts diffusers)))

; The time of placing is written once, when all is placed.
(sg_table "tblSchedule" "sTag")
(setq row (sg_top)
      today (rtos (getvar "CDATE") 2 0)
      today (strcat (substr today 1 4) "-" (substr today 5 2) "-" (substr today 7 2)))
(while row
  (sg_replace (list (cons "tPlaced" today)))
  (setq row (sg_skip)))

(princ (strcat "\n" (itoa (sg_count)) " pieces of equipment"))
(princ (strcat "\n"
               (itoa (draw-schedule (layer-for nil "Schedule") '(38000.0 13950.0 0.0)))
               " lines in the schedule"))
(sg_close_db)
(princ "\nDone.\n")
(princ)
