; Marks each room of a floor with the power of its lamps, as the project's schedule has it.
;
;   swiftgate run examples/lamps.lsp --drawing floor.dxf --save lamps.dwg -- project.mdb

(setq project (car (host-arguments)))
(if (null (and project (sg_connect project)))
  (vl-exit-with-error "Name the project's database behind --"))

(defun value-of (key row) (cdr (assoc key row)))

; The place of a room's number in the drawing; nil when the drawing has no such room.
(defun room-place (number / found)
  (setq found (ssget "_X" (list '(0 . "TEXT") '(8 . "A-AREA-NUMB") (cons 1 number))))
  (if found (value-of 10 (entget (ssname found 0)))))

(defun mark-room (number text / place)
  (if (setq place (room-place number))
    (entmake (list '(0 . "TEXT") '(8 . "E-TEXT") (cons 10 (polar place (* pi 1.5) 1000.0))
                   '(40 . 180.0) (cons 1 text)))
    (princ (strcat "\nThe drawing has no room " number))))

(qn_qn-createLayer "E-TEXT")
(foreach row (sg_sql "SELECT sRoom, Sum(dPower) AS Power FROM tblSchedule
                      WHERE dPower > 0 GROUP BY sRoom")
  (mark-room (value-of "sRoom" row) (strcat (rtos (value-of "Power" row) 2 0) " W")))
(sg_close_db)
(princ)
