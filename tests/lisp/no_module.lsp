;; Without the module its functions are not there.
(load "helpers/show")
(show '(arx))
(show '(sg_append))
(princ)
