;; Every drawing has the alert with which the module tells that a block is missing; a program may
;; have its own.
(load "helpers/show")
(show '(= (vl-filename-base (findfile "swiftgatedoc.lsp")) "swiftgatedoc"))
(show '(qnBlock-alertMissing "Damper"))
(defun qnBlock-alertMissing (name) (list 'missing name))
(show '(qnBlock-alertMissing "Damper"))
(princ)
