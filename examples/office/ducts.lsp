; The supply duct: from the plant room along the corridor, with a branch to each diffuser. Every
; piece is an exact solid with extended data, and has its row in the table tblDuct.
;
; The work begins with draw-ducts, at the end. The layers that it finds, and the height `z` of the
; duct's middle that draw-run reads, are seen by the functions that they call.

(setq hanger-spacing 3000.0
      slab-height 3300.0
      corridor-middle 6900.0
      plant-x 35000.0
      plant-y 12600.0
      plant-diameter 600.0
      end-piece 400.0
      tagged-length 600.0)  ; shorter pieces are not tagged

; --- Recording

; Puts a solid on a layer (they come on "0"), gives it extended data, and adds its row to tblDuct.
; `serves` is the tag of a diffuser, or "main"; `air` is what flows there, nil for hangers.
(defun record-solid (entity layer kind size air serves values)
  (entmod (list (cons -1 entity) (cons 8 layer)))
  (sg_xdput-list entity (list "kind" kind "size" size "air" air "serves" serves))
  (add-row "tblDuct"
           (append (list (cons "sHandle" (value-of 5 (entget entity))) (cons "sKind" kind)
                         (cons "sSize" size) (cons "dAirflow" air) (cons "sServes" serves))
                   values)))

(defun coordinates (names point) (mapcar 'cons names point))

; Draws the straight piece of a section, when the fittings leave one.
(defun draw-piece (section next air serves / entity)
  (if (< (straight-length section) -0.01)
    (fail (strcat "There is no room for the fittings of the duct to " serves ": "
                  (number-text (- (straight-length section)) 0) " mm too little")))
  (setq entity (qn_qn-drawTripleCenter nil 0 section next))
  (if entity
    (record-solid entity duct-layer "Straight" (size-text section) air serves
                  (append (list (cons "dWidth" (section-width section))
                                (cons "dHeight" (section-height section))
                                (cons "dLength" (straight-length section)))
                          (coordinates '("dX1" "dY1" "dZ1") (straight-from section))
                          (coordinates '("dX2" "dY2" "dZ2") (straight-to section))))))

; Records a fitting's solids, its body and the reducer behind it when there is one, and answers it.
; Ends the program when it could not be made: what is drawn would be wrong.
(defun record-fitting (fitting kind section air serves)
  (if (null fitting)
    (fail (strcat "No " (strcase kind T) " could be made for the duct to " serves)))
  (foreach part (list (cons "en1" kind) (cons "en2" "Reducer"))
    (if (value-of (car part) fitting)
      (record-solid (value-of (car part) fitting) duct-layer (cdr part) (size-text section) air
                    serves (coordinates '("dX1" "dY1" "dZ1") (section-to section)))))
  fitting)

(defun elbow-between (first second radius air serves)
  (record-fitting (qn_qn-drawTripleElbow nil 0 nil radius first second) "Elbow" first air serves))

; --- Parts of the run

; A duct's size on a tag above the corridor's middle, where the piece is long enough to be read.
(defun tag-size (section)
  (if (> (straight-length section) tagged-length)
    (tag-place (at-height (middle-of (straight-from section) (straight-to section)) 0.0)
               (size-text section) label-layer 120.0 700.0 200.0)))

(defun draw-hanger (place width / hanger)
  (setq hanger (value-of "hanger" (qn_qn-drawHanger nil place 0.0 width duct-height T 10.0 30.0
                                                    slab-height 0)))
  (if (null hanger) (fail "A hanger could not be made"))
  (record-solid hanger hanger-layer "Hanger" (number-text width 0) nil "main"
                (coordinates '("dX1" "dY1" "dZ1") place)))

; Hangers under the straight piece of a main that runs west, so that none is further from the next,
; or from an end, than the spacing allows.
(defun draw-hangers (section / long count part number)
  (setq long (straight-length section)
        count (if (> long tagged-length) (ceiling (/ long hanger-spacing)) 0)
        number 0)
  (repeat count
    (setq part (/ long count))
    (draw-hanger (moved (straight-from section) (- (* part (+ number 0.5))) 0.0)
                 (section-width section))
    (setq number (1+ number))))

; A piece of the main in the corridor.
(defun draw-main (section air)
  (draw-piece section nil air "main")
  (draw-hangers section)
  (tag-size section))

; A branch: along to above its diffuser, and down to it.
(defun draw-branch (branch drop air serves / elbow)
  (setq elbow (elbow-between branch drop (section-width branch) air serves)
        branch (used-at-tail branch elbow "dHeadLength")
        drop (used-at-head drop elbow "dTailLength"))
  (draw-piece branch drop air serves)
  (draw-piece drop nil air serves))

; Out of the plant room: a round duct, a transition, and a bend into the corridor. Answers the main
; from there to the first diffuser.
(defun draw-plant-end (air width x / from joint bend round riser main fitting)
  (setq from (list plant-x plant-y z)
        joint (list plant-x (- plant-y 800.0) z)
        bend (list plant-x corridor-middle z)
        round (round-duct from joint plant-diameter)
        riser (rectangular joint bend width)
        main (rectangular bend (list x corridor-middle z) width)
        fitting (record-fitting (qn_qn-drawTripleTransition nil 0 round riser) "Transition" round
                                air "main")
        riser (used-at-head riser fitting "dTailLength")
        fitting (elbow-between riser main width air "main"))
  (draw-piece round nil air "main")
  (draw-piece (used-at-tail riser fitting "dHeadLength") nil air "main")
  (used-at-head main fitting "dTailLength"))

; A diffuser's takeoff and branch. `main` ends at it; `behind` is the main behind it. Answers
; `behind` without what the takeoff has used of it.
(defun draw-outlet (outlet main behind air / serves place over branch drop fitting diameter)
  (setq serves (value-of "tag" outlet)
        place (value-of "place" outlet)
        diameter (branch-diameter (value-of "air" outlet))
        over (at-height place z)
        branch (round-duct (section-to main) over diameter)
        drop (round-duct over place diameter)
        fitting (record-fitting (qn_qn-drawTripleTakeoff nil 0 nil 0.0 main behind branch nil)
                                "Takeoff" main air serves))
  (draw-main (used-at-tail main fitting "dHeadLength") air)
  (draw-branch (used-at-head branch fitting "dTailLength2") drop (value-of "air" outlet) serves)
  (used-at-head behind fitting "dTailLength1"))

(defun x-of (outlet) (car (value-of "place" outlet)))

; The run from the plant room past the diffusers, which come from east to west.
(defun draw-run (outlets / z velocity air left x end main behind)
  (setq z (setting "DuctHeightAboveFloor")
        velocity (setting "DuctVelocity")
        air (sum-of "air" outlets)
        main (draw-plant-end air (duct-width air velocity) (x-of (car outlets))))
  (while outlets
    (setq x (x-of (car outlets))
          end (if (cdr outlets) (x-of (cadr outlets)) (- x end-piece))
          left (- air (value-of "air" (car outlets)))
          behind (rectangular (list x corridor-middle z) (list end corridor-middle z)
                              (duct-width left velocity))
          main (draw-outlet (car outlets) main behind air)
          air left
          outlets (cdr outlets))
    (done))
  (draw-main main air))

; Draws all of it for the diffusers, as place-equipment answers them; sizes are tagged on
; `label-layer`. The main gets narrower as its air leaves. `done` is called after each diffuser.
; Nothing is drawn where there is none.
(defun draw-ducts (outlets label-layer done / duct-layer hanger-layer)
  (setq duct-layer (layer-for "Supply air" "Duct")
        hanger-layer (layer-for nil "DuctHanger"))
  (if outlets (draw-run (vl-sort outlets '(lambda (a b) (> (x-of a) (x-of b)))))))
