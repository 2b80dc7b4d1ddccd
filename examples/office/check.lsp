; Checks what office.lsp has made of a floor: opens the project's database, or a drawing, again and
; compares it with what the program was given.
;
;   swiftgate run examples/office/check.lsp --drawing floor.dxf --path examples/office
;       -- project.mdb [office.dwg | plain.dxf | ducts.step]
;
; The drawing may be a plain one too, as `swiftgate convert --flatten` makes it: leaders are then
; two lines and a symbol, ducts are faces. Of a STEP file the bodies are counted and named. The
; program ends with an error when something differs.

(foreach part '("tools" "rooms" "checks" "expected" "check_database" "check_ducts") (load part))

; --- The floor: nothing of it may have changed

; Layer and kind of each entity on some layers.
(defun layers-and-kinds (layers)
  (mapcar '(lambda (data) (strcat (value-of 8 data) " " (value-of 0 data)))
          (data-like (list (cons 8 layers)))))

(defun room-texts (rooms)
  (mapcar '(lambda (room) (line-of (mapcar 'cdr room))) rooms))

; --- Equipment

(defun block-of (article) (vl-string-translate " /" "__" (strcase article)))

(defun equipment-text (tag room article place block)
  (line-of (list tag "room" room article "at" place "block" block)))

(defun expected-references (equipment)
  (mapcar '(lambda (piece)
             (equipment-text (value-of "tag" piece) (value-of "room" piece)
                             (value-of "type" piece) (value-of "place" piece)
                             (block-of (value-of "type" piece))))
          equipment))

; What stands in the drawing, by its blocks and its extended data.
(defun drawn-references (layers / data values)
  (mapcar '(lambda (entity)
             (setq data (entget entity)
                   values (sg_xdget-all entity))
             (equipment-text (value-of "tag" values) (value-of "room" values)
                             (value-of "type" values) (value-of 10 data) (value-of 2 data)))
          (entities-like (list '(0 . "INSERT") (cons 8 layers)))))

; --- Tags: a leader from the middle of each piece of equipment, and its text

(defun leader-starts (layers plain)
  (mapcar '(lambda (data) (point-text (value-of 10 data)))
          (if plain
            (vl-remove-if-not 'leader-start-p
                              (data-like (list '(0 . "LINE") (cons 8 layers))))
            (data-like (list '(0 . "QNLEADER") (cons 8 layers))))))

; The first line of a leader rises; the second one is level.
(defun leader-start-p (data)
  (not (equal (cadr (value-of 10 data)) (cadr (value-of 11 data)) 0.001)))

(defun on-floor (piece) (at-height (value-of "place" piece) 0.0))

(defun check-tags (equipment layers plain / tagged)
  (setq tagged (tagged-ducts))
  (check-list "leaders, by where they start"
              (append (mapcar '(lambda (piece) (point-text (on-floor piece))) equipment)
                      (mapcar '(lambda (duct) (point-text (value-of "middle" duct))) tagged))
              (leader-starts layers plain))
  (check-list "texts at leaders"
              (append (mapcar '(lambda (piece) (value-of "tag" piece)) equipment)
                      (mapcar '(lambda (duct) (value-of "size" duct)) tagged))
              (mapcar '(lambda (data) (value-of 1 data))
                      (data-like (list '(0 . "TEXT") (cons 8 layers))))))

; --- The drawn schedules

; The equipment of one room and type as texts of a line in the schedule.
(defun schedule-cells (pieces / first)
  (setq first (car pieces))
  (vl-remove ""
             (list (car (sorted (mapcar '(lambda (piece) (value-of "tag" piece)) pieces)))
                   (value-of "room" first)
                   (strcat (itoa (length pieces)) " x " (value-of "type" first))
                   (if (value-of "air" first) (rtos (sum-of "air" pieces) 2 0) "")
                   (if (value-of "power" first) (rtos (sum-of "power" pieces) 2 0) ""))))

(defun duct-cells (pieces)
  (list (value-of "size" (car pieces)) (itoa (length pieces))
        (rtos (/ (sum-of "length" pieces) 1000.0) 2 2)))

; Items in groups of those for which a function answers the same text.
(defun groups-by (key items / groups group)
  (foreach item items
    (setq group (assoc (key item) groups)
          groups (if group
                   (subst (append group (list item)) group groups)
                   (cons (list (key item) item) groups))))
  (mapcar 'cdr groups))

(defun room-and-type (piece) (strcat (value-of "room" piece) " " (value-of "type" piece)))
(defun size-of (duct) (value-of "size" duct))

(defun expected-cells (equipment ducts)
  (append
    (apply 'append (mapcar 'schedule-cells (groups-by room-and-type equipment)))
    (list "TOTAL" (strcat (itoa (length equipment)) " pieces")
          (rtos (sum-of "air" equipment) 2 0) (rtos (sum-of "power" equipment) 2 0))
    (apply 'append (mapcar 'duct-cells (groups-by size-of ducts)))
    (mapcar '(lambda (label) (strcat "{\\L" label "}")) (label-texts))))

(defun drawn-cells (layer)
  (mapcar '(lambda (data) (value-of 1 data)) (data-like (list '(0 . "MTEXT") (cons 8 layer)))))

; Rules below the title and every line, and on both sides of every column.
(defun expected-rules (equipment ducts)
  (+ 1 1 (length (groups-by room-and-type equipment)) 1 (1+ 5)
     1 1 (length (groups-by size-of ducts)) (1+ 3)))

; --- All of it

(defun given-floor (/ rooms)
  (setq rooms (read-rooms)
        given-rooms (room-texts rooms)
        given-entities (layers-and-kinds "A-*")
        equipment (expected-equipment rooms)
        ducts (expected-ducts equipment)))

(defun check-drawing (name / plain)
  (host-open-drawing (needed-file name "a drawing of the floor"))
  (open-project project)
  (setq plain (null (entities-like '((0 . "QNLEADER,QN_HVACSOLID")))))
  (check-list "rooms, with name and area" given-rooms (room-texts (read-rooms)))
  (check-list "entities of the floor" given-entities (layers-and-kinds "A-*"))
  (check-layers)
  (check-list "equipment, with extended data" (expected-references equipment)
              (drawn-references "M-DIFF-*,E-LITE"))
  (check-tags equipment "M-TEXT,E-TEXT" plain)
  (check-list "texts in the schedules" (expected-cells equipment ducts)
              (drawn-cells "X-SCHEDULE"))
  (check "rules in the schedules" (expected-rules equipment ducts)
         (length (entities-like '((0 . "LINE") (8 . "X-SCHEDULE")))))
  (if plain (check-faces equipment) (check-solids)))

; What a file is, its name's ending tells; without one the database itself is checked.
(defun check-file (name)
  (cond ((null name) (check-database equipment ducts))
        ((= (strcase (vl-filename-extension name) T) ".step") (check-step name))
        (T (check-drawing name))))

(setq project (car (host-arguments)))
(open-project project)
(given-floor)
(check-file (cadr (host-arguments)))
(sg_close_db)
(finish-checks)
(princ)
