; The schedules: what the database knows of the equipment and of the ducts, drawn as tables.

; The rows of a query of several columns, each as its values alone.
(defun query-rows (sql) (mapcar '(lambda (row) (mapcar 'cdr row)) (sg_sql sql)))

; The columns that are shown of a group of labels: ((key label width justification) ...).
(defun label-columns (group)
  (query-rows (strcat "SELECT sKey, sLabel, dWidth, sJustification FROM tblLabelGroup "
                      "WHERE sGroup = '" group "' AND bDisplay = True AND iSortOrder >= 0 "
                      "ORDER BY iSortOrder")))

(defun label-title (group)
  (car (sg_sql (strcat "SELECT sLabel FROM tblLabelGroup WHERE sGroup = '" group
                       "' AND sKey = 'Schedule Title'"))))

; The equipment, a line for each room and type: ((key . text) ...), and at last their sums.
(defun equipment-lines (/ rows)
  (setq rows (query-rows (strcat "SELECT Min(sTag), sRoom, sType, Count(*), Sum(dAirflow), "
                                 "Sum(dPower) FROM tblSchedule GROUP BY sRoom, sType "
                                 "ORDER BY sRoom, sType")))
  (append
    (mapcar '(lambda (row)
               (mapcar 'cons '("Tag" "Room" "Type" "Airflow" "Power")
                       (list (car row) (cadr row)
                             (strcat (itoa (fix (cadddr row))) " x " (caddr row))
                             (number-text (nth 4 row) 0) (number-text (nth 5 row) 0))))
            rows)
    (equipment-total)))

(defun equipment-total (/ row)
  (setq row (car (query-rows (strcat "SELECT Count(*), Sum(dAirflow), Sum(dPower) "
                                     "FROM tblSchedule"))))
  (list (mapcar 'cons '("Tag" "Type" "Airflow" "Power")
                (list "TOTAL" (strcat (itoa (fix (car row))) " pieces")
                      (number-text (cadr row) 0) (number-text (caddr row) 0)))))

; The ducts, a line for each size: how many straight pieces, and how many metres.
(defun duct-lines ()
  (mapcar '(lambda (row)
             (mapcar 'cons '("Size" "Pieces" "Length")
                     (list (car row) (itoa (fix (cadr row))) (number-text (caddr row) 2))))
          (query-rows (strcat "SELECT sSize, Count(*), Sum(dLength) / 1000 FROM tblDuct "
                              "WHERE sKind = 'Straight' GROUP BY sSize ORDER BY sSize"))))

; The texts of a line in the order of the columns.
(defun cells-of (line columns)
  (mapcar '(lambda (column) (cond ((value-of (car column) line)) (""))) columns))

; Draws the schedule of a group of labels and answers the y of its lower edge.
(defun draw-schedule (group lines layer corner / columns)
  (setq columns (label-columns group))
  (draw-table (list layer 300.0 140.0) corner (label-title group) (mapcar 'cdr columns)
              (mapcar '(lambda (line) (cells-of line columns)) lines)))
