; Sections: straight runs of duct as the functions for solids take them, and their sizes.

(setq duct-height 250.0
      branch-velocity 4.0)

; Sizes for so much air, in cubic metres an hour, at so many metres a second.
(defun duct-width (air velocity)
  (max 200.0 (size-up (/ (* air 1000000.0) (* 3600.0 velocity duct-height)) 50.0)))
(defun branch-diameter (air)
  (size-up (* 1000.0 (sqrt (/ (* 4.0 air) (* 3600.0 branch-velocity pi)))) 20.0))

; A section with its reference points in its middle. Its setbacks, what its straight piece leaves to
; the fittings at its head and tail, are 0 until fittings take their share.
(defun section (from to width height shape)
  (append from to (list 0 0.0 0.0 width height shape 0.0 0.0 "" "" 0 1.0)))
(defun rectangular (from to width) (section from to width duct-height "RC"))
(defun round-duct (from to diameter) (section from to diameter diameter "RD"))

(defun section-from (section) (list (car section) (cadr section) (caddr section)))
(defun section-to (section) (section-from (cdddr section)))
(defun section-width (section) (nth 9 section))
(defun section-height (section) (nth 10 section))
(defun round-p (section) (= (nth 11 section) "RD"))
(defun section-length (section) (distance (section-from section) (section-to section)))

; 950x250, or the diameter.
(defun size-text (section)
  (if (round-p section)
    (strcat "D" (number-text (section-width section) 0))
    (strcat (number-text (section-width section) 0) "x"
            (number-text (section-height section) 0))))

(defun replace-nth (place value items)
  (if (= place 0)
    (cons value (cdr items))
    (cons (car items) (replace-nth (1- place) value (cdr items)))))

; A section with what a fitting has used at its head or tail.
(defun used-at-head (section fitting key) (replace-nth 7 (value-of key fitting) section))
(defun used-at-tail (section fitting key) (replace-nth 8 (value-of key fitting) section))

; What the fittings leave of a section: the length of its straight piece, and the two ends of that.
(defun straight-length (section) (- (section-length section) (nth 7 section) (nth 8 section)))
(defun point-along (section along / part)
  (setq part (/ along (section-length section)))
  (mapcar '(lambda (from to) (+ from (* part (- to from))))
          (section-from section) (section-to section)))
(defun straight-from (section) (point-along section (nth 7 section)))
(defun straight-to (section) (point-along section (- (section-length section) (nth 8 section))))
