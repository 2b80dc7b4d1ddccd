; Tags: a leader from a thing to its text.

; The symbol at a leader's end, of radius one, as leaders want it.
(defun make-tag-symbol ()
  (if (null (tblsearch "BLOCK" "TAG"))
    (progn
      (entmake '((0 . "BLOCK") (2 . "TAG") (70 . 0) (10 0.0 0.0 0.0)))
      (entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))
      (entmake '((0 . "ENDBLK"))))))

; Tags a place: the leader goes up to a knee, and on to the right to its symbol, behind which the
; text stands, so many drawing units high. `rise` and `along` are the lengths of the leader's parts.
(defun tag-place (start text layer height rise along / radius knee end)
  (setq radius (* 0.35 height)
        knee (moved start (* 0.6 rise) rise)
        end (moved knee along 0.0))
  (if (null (qn_qn-leader-insert (list start knee end) layer "TAG"
                                 (/ radius (getvar "DIMSCALE"))))
    (fail (strcat "No leader could be drawn for " text)))
  (entmake (list '(0 . "TEXT") (cons 8 layer)
                 (cons 10 (moved end (+ radius (* 0.5 height)) (* -0.5 height)))
                 (cons 40 height) (cons 1 text))))

; A piece of equipment, as place-equipment answers it. Tags lie on the floor, as all texts do.
(defun tag-equipment (piece layer height)
  (tag-place (at-height (value-of "place" piece) 0.0) (value-of "tag" piece) layer height
             (* 4.0 height) (* 2.5 height)))
