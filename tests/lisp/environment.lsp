;; Environment variables.
(load "helpers/show")
(foreach form
  '((setenv "SG_TEST" "here") (getenv "SG_TEST") (getenv "NO_SUCH_VARIABLE_HERE") (getenv 5)
    (= (getenv "HOME") (getenv "home")))
  (show form))
(princ)
