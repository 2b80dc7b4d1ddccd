;; wcmatch: the patterns of layer filters.
(load "helpers/show")
(foreach form
  '((wcmatch "M-DUCT" "M-*") (wcmatch "M-DUCT" "m-*") (wcmatch "M-DUCT" "P-*,M-*")
    (wcmatch "M-DUCT" "~P-*") (wcmatch "M-DUCT" "~M-*") (wcmatch "A12" "@##") (wcmatch "A12" "@#")
    (wcmatch "A-2" "@.#") (wcmatch "abc" "a?c") (wcmatch "abc" "[abc]*") (wcmatch "xbc" "[~abc]*")
    (wcmatch "b5" "[a-c]#") (wcmatch "a*b" "a`*b") (wcmatch "axb" "a`*b") (wcmatch "" "*")
    (wcmatch "" "?") (wcmatch "a,b" "a`,b") (wcmatch "abc" "") (wcmatch "abc" "*b*") (wcmatch 1 "*"))
  (show form))
(princ)
