;; Loaded into every new or opened drawing. A program that defines one of these functions itself
;; replaces it.

;; The module calls it with the name of a block that the drawing does not have and for which there
;; is no drawing file on the support path.
(defun qnBlock-alertMissing (name)
  (alert
    (strcat "The block \"" name "\" is missing: it is not in the drawing, and there is no file \""
            name ".dwg\" on the support path."))
  (princ))

(princ)
