;; The module tells that a block is missing by a function that it finds on the support path; a
;; program may have its own.
(load "helpers/show")
(setq points (list '(0.0 0.0 0.0) '(1.0 1.0 0.0) '(2.0 1.0 0.0)))
(show '(= (vl-filename-base (findfile "qnBlock-alertMissing.lsp")) "qnBlock-alertMissing"))
(show '(qn_qn-leader-insert points "0" "Damper" 1.0))
(defun qnBlock-alertMissing (name) (princ (strcat "\nmissing: " name "\n")))
(show '(qn_qn-leader-insert points "0" "Damper" 1.0))
(princ)
