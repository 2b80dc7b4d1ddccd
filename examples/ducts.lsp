;; A run of duct with every kind of fitting, and a cable tray.
;;
;;   swiftgate run examples/ducts.lsp --save ducts.dxf
;;   swiftgate render ducts.dxf -o ducts.png --view iso
;;
;; Each fitting tells how much of the runs it has used, and the straight pieces leave that out.

;; A section between two points, as the functions for solids take it.
(defun section (from to width height shape)
  (append from to (list 0 0.0 0.0 width height shape 0.0 0.0 "" "" 0 1.0)))

(defun put (place value items)
  (if (= place 1)
    (cons value (cdr items))
    (cons (car items) (put (1- place) value (cdr items)))))

;; Sections stand in variables and are spoken of by name; a fitting's lengths become setbacks.
(defun use-of-tail (name result key) (set name (put 9 (cdr (assoc key result)) (eval name))))
(defun use-of-head (name result key) (set name (put 8 (cdr (assoc key result)) (eval name))))
(defun colour (result index / made)
  (foreach key '("en1" "en2" "en3" "hanger")
    (if (setq made (cdr (assoc key result))) (AcDbEntity::setColor made index))))

(defun elbow (kind radius from to / made)
  (setq made (qn_qn-drawTripleElbow nil 0 kind radius (eval from) (eval to)))
  (use-of-tail from made "dHeadLength")
  (use-of-head to made "dTailLength")
  (colour made 4))

(defun takeoff (from to off other / made)
  (setq made (qn_qn-drawTripleTakeoff nil 0 nil 0.0 (eval from) (eval to) (eval off) (eval other)))
  (use-of-tail from made "dHeadLength")
  (use-of-head to made "dTailLength1")
  (use-of-head off made "dTailLength2")
  (use-of-head other made "dTailLength3")
  (colour made 3))

(defun wye (from to other / made)
  (setq made (qn_qn-drawTripleWye nil 0 nil 0.0 (eval from) (eval to) (eval other)))
  (use-of-tail from made "dHeadLength")
  (use-of-head to made "dTailLength1")
  (use-of-head other made "dTailLength2")
  (colour made 6))

(defun transition (from to / made)
  (setq made (qn_qn-drawTripleTransition nil 0 (eval from) (eval to)))
  (use-of-head to made "dTailLength")
  (colour made 2))

(defun straight (name next index)
  (AcDbEntity::setColor (qn_qn-drawTripleCenter nil 0 (eval name) (eval next)) index))

;; The duct: a main with two branches, around a corner, up a floor, on in the same direction, and
;; parted in two. The riser's width lies along the runs below and above it, its height across them.
(setq main   (section '(0 0 0) '(200 0 0) 24 12 "RC")
      behind (section '(200 0 0) '(320 0 0) 20 12 "RC")
      left   (section '(200 0 0) '(200 90 0) 10 10 "RC")
      right  (section '(200 0 0) '(200 -80 0) 10 10 "RD")
      side   (section '(320 0 0) '(320 140 0) 20 12 "RC")
      riser  (section '(320 140 0) '(320 140 90) 12 20 "RC")
      above  (section '(320 140 90) '(320 240 90) 20 12 "RC")
      round  (section '(320 240 90) '(320 320 90) 14 14 "RD")
      east   (section '(320 320 90) '(380 380 90) 14 14 "RD")
      west   (section '(320 320 90) '(260 380 90) 14 14 "RD"))
(takeoff 'main 'behind 'left 'right)
(elbow nil 30.0 'behind 'side)
(elbow T 0.0 'side 'riser)
(elbow nil 18.0 'riser 'above)
(transition 'above 'round)
(wye 'round 'east 'west)
(foreach name '(main behind left right side above round east west) (straight name nil 8))
(straight 'riser 'above 8)

;; A cable tray beside it.
(setq tray  (section '(0 -100 20) '(150 -100 20) 12 4 "RC")
      aside (section '(150 -100 20) '(150 -220 20) 12 4 "RC"))
(elbow "CABLETRAY" 18.0 'tray 'aside)
(foreach name '(tray aside) (straight name nil 30))

;; Trapezes under the main, a strap about the round branch.
(foreach x '(40.0 140.0)
  (colour (qn_qn-drawHanger nil (list x 0.0 0.0) 0.0 24.0 12.0 T 1.0 2.0 40.0 0) 1))
(colour (qn_qn-drawHanger T '(200.0 -50.0 0.0) (/ pi 2) 10.0 10.0 nil 1.0 0.5 40.0 0) 1)
(princ)
