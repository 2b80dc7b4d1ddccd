;; The offer is accepted by the script; the download fails.
(princ "the program runs\n")
(princ)
