;; The name of a layer key as the layers dialog shows it.
;;
;;   (util-LayerkeyRename KEY)
;;
;; The key with blanks in the place of "_". A program with better names defines its own.

(defun util-LayerkeyRename (key)
  (vl-string-translate "_" " " key))

(princ)
