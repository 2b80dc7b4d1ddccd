;; The registry store.
(load "helpers/show")
(setq key "HKEY_CURRENT_USER\\Software\\Swift Gate Test")
(foreach form
  '((vl-registry-read key) (vl-registry-write key "Name" "value") (vl-registry-read key "Name")
    (vl-registry-read key "NAME") (vl-registry-write key "Number" 12) (vl-registry-read key "Number")
    (vl-registry-write (strcat key "\\Sub") "" "default") (vl-registry-read (strcat key "\\Sub"))
    (vl-registry-descendents key) (vl-registry-descendents key "")
    (vl-registry-delete key "Number") (vl-registry-read key "Number")
    (vl-registry-delete key) (vl-registry-delete (strcat key "\\Sub")) (vl-registry-delete key)
    (vl-registry-read key "Name"))
  (show form))
(princ)
