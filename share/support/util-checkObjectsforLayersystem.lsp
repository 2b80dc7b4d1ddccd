;; Whether objects of the drawing use a layer system.
;;
;;   (util-checkObjectsforLayersystem SYSTEM)
;;
;; The layers dialog calls this function before it deletes a system; a text that it answers is shown
;; and the system stays. Here no object is known to belong to one.

(defun util-checkObjectsforLayersystem (system) nil)

(princ)
