;; Nobody is there: boxes get their default button and are reported, prompts are cancelled.
(load "helpers/show")
(show '(alert "First line\nsecond line"))
(show '(getstring "\nName: "))
(princ "unfinished line")
(alert "between")
(princ " goes on\n")
(princ)
