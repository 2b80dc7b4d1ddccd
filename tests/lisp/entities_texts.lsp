;; Texts: made, listed, changed; the space that they take.
(load "helpers/show")
(load "helpers/entities")
(defun made (given) (own (entmakex given)))
(defun near (a b) (equal a b 1e-9))

;; ---- Single lines -------------------------------------------------------------------------------
(show '(made '((0 . "TEXT") (10 1 2 3) (40 . 2.5) (1 . "Supply air"))))
(show '(made '((0 . "TEXT") (10 1 2) (40 . 2.5) (1 . "") (50 . 1.5) (41 . 0.8) (51 . 0.25) (7 . "standard") (71 . 6) (39 . 1) (210 0 0 -1))))
;; Other alignments stand at the second point; the first follows from it.
(setq centred (entmakex '((0 . "TEXT") (10 99 99) (11 10 20 0) (40 . 2.0) (1 . "Supply air") (72 . 1) (73 . 0)))
      width (- (car (cadr (textbox (entget centred)))) (car (car (textbox (entget centred))))))
(show '(group-of 11 centred))
(show '(< (abs (- (car (group-of 10 centred)) (- 10 (/ width 2)))) 0.5))
(show '(cadr (group-of 10 centred)))
(show '(mapcar '(lambda (code) (assoc code (own centred))) '(72 73)))
(setq right (entmakex '((0 . "TEXT") (10 0 0) (11 10 20 0) (40 . 2.0) (1 . "aa") (72 . 2) (73 . 3))))
;; The top of the letters is at the point: the base line is one height below.
(show '(near (cadr (group-of 10 right)) 18.0))
(show '(< (car (group-of 10 right)) 10.0))
;; Moved by its second point, it takes the first along.
(setq before (group-of 10 right))
(show '(change right 11 '(20.0 20.0 0.0)))
(show '(equal (mapcar '- (group-of 10 right) before) '(10.0 0.0 0.0) 1e-9))
(show '(change right 1 "longer than before"))
(show '(< (car (group-of 10 right)) (+ 10 (car before))))
(show '(change right 7 "no such style"))
(show '(change right 40 0.0))
(show '(group-of 1 right))

;; ---- Paragraphs ---------------------------------------------------------------------------------
(show '(mapcar 'car (made '((0 . "MTEXT") (100 . "AcDbEntity") (100 . "AcDbMText") (10 1 2 3) (40 . 2.5) (41 . 30) (71 . 5) (1 . "Supply\\Pair")))))
(setq note (entlast))
(show '(mapcar '(lambda (code) (assoc code (entget note))) '(10 40 41 46 71 72 1 7 210 11 50 73 44)))
;; Height and width of the letters themselves.
(show '(near (group-of 43 note) (AcDbMText::actualHeight note)))
(show '(near (group-of 42 note) (AcDbMText::actualWidth note)))
(show '(change note 50 1.0))
(show '(near (atan (cadr (group-of 11 note)) (car (group-of 11 note))) 1.0))
(show '(change note 71 9))
;; Long contents come in pieces of 250, the last under 1, and are made of such.
(setq long "") (repeat 60 (setq long (strcat long "0123456789")))
(setq note (entmakex (list '(0 . "MTEXT") '(10 0 0) '(40 . 1.0) (cons 3 (substr long 1 250)) (cons 3 (substr long 251 250)) (cons 1 (substr long 501)))))
(show '(mapcar '(lambda (group) (list (car group) (strlen (cdr group))))
               (vl-remove-if-not '(lambda (group) (member (car group) '(1 3))) (entget note))))
(show '(= long (apply 'strcat (mapcar 'cdr (vl-remove-if-not '(lambda (group) (member (car group) '(1 3))) (entget note))))))
(show '(made '((0 . "MTEXT") (10 0 0) (40 . 1) (1 . "masked") (90 . 1) (63 . 3) (45 . 1.25) (441 . 0))))

;; ---- Definitions of attributes ------------------------------------------------------------------
(show '(made '((0 . "ATTDEF") (10 1 2) (40 . 2.5) (1 . "default") (3 . "Size?") (2 . "size") (70 . 8))))

;; ---- The space that a text takes ----------------------------------------------------------------
(show '(textbox '((0 . "TEXT") (1 . ""))))
(show '(textbox '((0 . "LINE"))))
(show '(textbox '((1 . "H") (40 . 10.0) (7 . "no such style"))))
(show '(textbox nil))
(show '(textbox 5))
(setq box (textbox '((1 . "H") (40 . 10.0))))
;; As high as a capital is; twice as large where the text is; turned and moved it makes no difference.
(show '(near (cadr (cadr box)) 10.0))
(show '(near (cadr (car box)) 0.0))
(show '(near (car (cadr (textbox '((1 . "H") (40 . 20.0))))) (* 2 (car (cadr box)))))
(show '(near (car (cadr (textbox '((1 . "H") (40 . 10.0) (41 . 0.5))))) (/ (car (cadr box)) 2)))
(show '(equal (textbox '((1 . "H") (40 . 10.0) (50 . 1.0) (10 5 5) (11 7 7) (72 . 1) (210 0 0 -1))) box 1e-9))
(show '(< (cadr (car (textbox '((1 . "p") (40 . 10.0))))) 0.0))
(princ)
