;; Points and directions from one coordinate system to another.
(load "helpers/show")
(defun near (a b) (equal a b 1e-9))

;; ---- The world and its likes --------------------------------------------------------------------
;; 0 is the world's, 1 the user's, 2 the display's; in a new drawing all are the same.
(show '(trans '(1 2 3) 0 1))
(show '(trans '(1.0 2.0) 1 0))
(show '(trans '(1 2 3) 0 2))
(show '(trans '(1 2 3) 2 3))
(show '(trans '(1 2 3) 0 0 T))

;; ---- Normals ------------------------------------------------------------------------------------
;; Close to the world's z the x axis is along y cross normal, else along z cross normal.
(show '(trans '(1 2 3) '(0 0 1) 0))
(show '(trans '(1 2 3) '(0 0 -1) 0))
(show '(trans '(1 2 3) '(1 0 0) 0))
(show '(trans '(1 2 3) '(0 1 0) 0))
(show '(near (trans (trans '(1 2 3) '(1 1 1) 0) 0 '(1 1 1)) '(1 2 3)))
;; Its length does not matter.
(show '(near (trans '(1 2 3) '(5 0 0) 0) (trans '(1 2 3) '(1 0 0) 0)))
(show '(near (trans '(1 0 0) '(1 1 1) 0) (list (/ -1 (sqrt 2)) (/ 1 (sqrt 2)) 0)))

;; ---- Entities -----------------------------------------------------------------------------------
(setq flat (entmakex '((0 . "LINE") (10 0 0) (11 1 0)))
      mirrored (entmakex '((0 . "CIRCLE") (10 1 2 3) (40 . 1) (210 0 0 -1)))
      upright (entmakex '((0 . "LWPOLYLINE") (90 . 2) (38 . 5) (10 0 0) (10 1 0) (210 1 0 0))))
(show '(trans '(1 2 3) flat 0))
(show '(trans (cdr (assoc 10 (entget mirrored))) mirrored 0))
(show '(trans '(1 2 5) upright 0))
(show '(trans '(5 1 2) 0 upright))
(show '(near (trans (cdr (assoc 10 (entget mirrored))) mirrored upright) (trans '(-1 2 -3) 0 upright)))
;; An entity is as its normal; a block reference and a text too.
(entmake '((0 . "BLOCK") (2 . "Damper") (10 0 0) (70 . 0)))
(entmake '((0 . "ENDBLK")))
(foreach given '(((0 . "ARC") (40 . 1) (50 . 0) (51 . 1)) ((0 . "TEXT") (40 . 1) (1 . "a")) ((0 . "INSERT") (2 . "Damper"))
                 ((0 . "SOLID") (11 1 0) (12 0 1)))
  (setq e (entmakex (append given '((10 1 2 3) (210 0 1 0)))))
  (show (list 'near (list 'trans ''(1 2 3) 'e 0) '(trans '(1 2 3) '(0 1 0) 0))))

;; ---- The display --------------------------------------------------------------------------------
;; The view is what the viewport looks along (16) from its target (17), turned by a twist (51).
(defun view (direction target twist / record)
  (setq record (entget (tblobjname "VPORT" "*Active")))
  (foreach group (list (cons 16 direction) (cons 17 target) (cons 51 twist))
    (setq record (subst group (assoc (car group) record) record)))
  (type (entmod record)))
(show '(view '(0.0 0.0 1.0) '(10.0 20.0 0.0) 0.0))
(show '(trans '(11 22 3) 0 2))
(show '(trans '(11 22 3) 0 2 T))
(show '(view '(0.0 0.0 1.0) '(0.0 0.0 0.0) (/ pi 2)))
;; Turned by a quarter turn to the left, the world's x shows upwards.
(show '(near (trans '(1 0 0) 0 2) '(0 1 0)))
(show '(near (trans '(0 1 0) 0 2) '(-1 0 0)))
;; From the front the world's z shows upwards, and what is nearer has the greater z.
(show '(view '(0.0 -1.0 0.0) '(0.0 0.0 0.0) 0.0))
(show '(near (trans '(1 2 3) 0 2) '(1 3 -2)))
;; From the right front above.
(show '(view '(1.0 -1.0 1.0) '(0.0 0.0 0.0) 0.0))
(show '(near (trans '(1 1 0) 0 2) (list (sqrt 2) 0 0)))
(show '(near (trans '(1 -1 1) 0 2) (list 0 0 (sqrt 3))))
(show '(near (trans (trans '(4 5 6) 0 2) 2 0) '(4 5 6)))

;; ---- What is no coordinate system ---------------------------------------------------------------
(show '(trans '(1 2 3) 0 7))
(show '(trans '(1 2 3) 0 3))
(show '(trans '(1 2 3) '(0 0 0) 0))
(show '(trans '(1 2 3) "world" 0))
(show '(trans 5 0 1))
(show '(trans '(1) 0 1))
(show '(trans '(1 2 3) 0))
(show '(trans '(1 2 3) (tblobjname "LAYER" "0") 0))
(entdel flat)
(show '(trans '(1 2 3) flat 0))
(princ)
