;; A module that refuses to load: its offer is answered with the default, the program runs without.
(load "helpers/show")
(show '(arx))
(show '(sg_append))
(princ)
