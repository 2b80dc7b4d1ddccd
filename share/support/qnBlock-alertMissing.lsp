;; Tells that a block cannot be had.
;;
;;   (qnBlock-alertMissing NAME)
;;
;; The module calls this function for a block that the drawing does not have and for which there is
;; no drawing file on the support path. A program that defines its own takes this one's place.

(defun qnBlock-alertMissing (name)
  (alert
    (strcat "The block \"" name "\" is missing: it is not in the drawing, and there is no file \""
            name ".dwg\" on the support path."))
  (princ))

(princ)
