; The supply duct: from the plant room along the corridor, with a branch to each diffuser.

(setq duct-height 250.0
      branch-velocity 4.0
      hanger-spacing 3000.0
      slab-height 3300.0
      diffuser-height 2700.0
      corridor-middle 6900.0
      plant-x 34500.0
      plant-y 12600.0)

(defun setting (key) (value-of "dNumber" (row-of "tblGlobal" "sKey" key)))

; The next size up, in steps.
(defun size-up (size step) (* step (ceiling (/ (- size 0.01) step))))

; Sizes for so much air, in cubic metres an hour, at so many metres a second.
(defun duct-width (air velocity)
  (max 200.0 (size-up (/ (* air 1000000.0) (* 3600.0 velocity duct-height)) 50.0)))
(defun branch-diameter (air)
  (size-up (* 1000.0 (sqrt (/ (* 4.0 air) (* 3600.0 branch-velocity pi)))) 20.0))

; A section as the functions for solids take it, its reference points in its middle. Its setbacks
; are 0 until fittings take their share.
(defun section (from to width height shape)
  (append from to (list 0 0.0 0.0 width height shape 0.0 0.0 "" "" 0 1.0)))

(defun replace-nth (place value items)
  (if (= place 0)
    (cons value (cdr items))
    (cons (car items) (replace-nth (1- place) value (cdr items)))))

; A section with what a fitting has used at its head or tail.
(defun used-at-head (section fitting key) (replace-nth 7 (value-of key fitting) section))
(defun used-at-tail (section fitting key) (replace-nth 8 (value-of key fitting) section))

; Solids come on the layer "0".
(defun put-on-layer (entity layer)
  (if entity (entmod (list (cons -1 entity) (cons 8 layer)))))

; A fitting with its solids on the ducts' layer. Ends the program when it can't be made: what is
; drawn would be wrong.
(defun made (fitting what)
  (if (null fitting) (progn (princ (strcat "\nCan't make " what "\n")) (exit)))
  (foreach key '("en1" "en2") (put-on-layer (value-of key fitting) duct-layer))
  (setq fittings (1+ fittings))
  fitting)

(defun draw-piece (section next)
  (put-on-layer (qn_qn-drawTripleCenter nil 0 section next) duct-layer)
  (setq pieces (1+ pieces)))

; A branch: along to above the diffuser, and down to it.
(defun draw-branch (branch drop diameter / elbow)
  (setq elbow (made (qn_qn-drawTripleElbow nil 0 nil diameter branch drop) "a branch's elbow")
        branch (used-at-tail branch elbow "dHeadLength")
        drop (used-at-head drop elbow "dTailLength"))
  (draw-piece branch drop)
  (draw-piece drop nil))

; Hangers under a horizontal piece of the main.
(defun draw-hangers (section width / x end)
  (setq x (- (car section) (/ hanger-spacing 2.0))
        end (nth 3 section))
  (while (> x end)
    (put-on-layer (value-of "hanger"
                            (qn_qn-drawHanger nil (list x corridor-middle (caddr section)) 0.0 width
                                              duct-height T 10.0 30.0 slab-height 0))
                  hanger-layer)
    (setq hangers (1+ hangers)
          x (- x hanger-spacing))))

(defun air-of (piece) (value-of "dAirflow" (row-of "tblSchedule" "sTag" (car piece))))

; Draws all of it for the diffusers, ((tag reference place) ...).
(defun draw-ducts (diffusers / z velocity air width main behind round first fitting place branch drop
                             diameter x end)
  (setq z (setting "DuctHeightAboveFloor")
        velocity (setting "DuctVelocity")
        diffusers (vl-sort diffusers '(lambda (a b) (> (car (caddr a)) (car (caddr b)))))
        air (apply '+ (mapcar 'air-of diffusers))
        duct-layer (layer-for "Supply air" "Duct")
        hanger-layer (layer-for nil "DuctHanger")
        pieces 0
        fittings 0
        hangers 0)
  ; Out of the plant room: a round duct, a transition, and a bend into the corridor.
  (setq width (duct-width air velocity)
        round (section (list plant-x plant-y z) (list plant-x (- plant-y 800.0) z) 600.0 600.0 "RD")
        first (section (list plant-x (- plant-y 800.0) z) (list plant-x corridor-middle z) width
                       duct-height "RC")
        x (car (caddr (car diffusers)))
        main (section (list plant-x corridor-middle z) (list x corridor-middle z) width duct-height
                      "RC")
        fitting (made (qn_qn-drawTripleTransition nil 0 round first) "the transition")
        first (used-at-head first fitting "dTailLength"))
  (draw-piece round nil)
  (setq fitting (made (qn_qn-drawTripleElbow nil 0 nil (* 1.0 width) first main) "the bend")
        first (used-at-tail first fitting "dHeadLength")
        main (used-at-head main fitting "dTailLength"))
  (draw-piece first nil)
  ; Along the corridor; the main gets narrower as its air leaves.
  (while diffusers
    (setq place (caddr (car diffusers))
          air (- air (air-of (car diffusers)))
          diameter (branch-diameter (air-of (car diffusers)))
          end (if (cdr diffusers) (car (caddr (cadr diffusers))) (- (car place) 400.0))
          behind (section (list (car place) corridor-middle z) (list end corridor-middle z)
                          (duct-width air velocity) duct-height "RC")
          branch (section (list (car place) corridor-middle z) (list (car place) (cadr place) z)
                          diameter diameter "RD")
          drop (section (list (car place) (cadr place) z)
                        (list (car place) (cadr place) diffuser-height) diameter diameter "RD")
          fitting (made (qn_qn-drawTripleTakeoff nil 0 nil 0.0 main behind branch nil)
                        (strcat "the takeoff to " (car (car diffusers))))
          main (used-at-tail main fitting "dHeadLength")
          behind (used-at-head behind fitting "dTailLength1")
          branch (used-at-head branch fitting "dTailLength2"))
    (draw-piece main nil)
    (draw-hangers main (nth 9 main))
    (draw-branch branch drop diameter)
    (setq main behind
          diffusers (cdr diffusers)))
  (draw-piece main nil)
  (strcat (itoa pieces) " straight pieces, " (itoa fittings) " fittings, " (itoa hangers)
          " hangers"))
