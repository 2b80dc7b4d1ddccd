;; Values on their way between AutoLISP and native code and back.
;; Run it with:  swiftgate run examples/marshalling/marshalling.lsp --path build/release/examples

(arxload "marshalling.arx")

(defun show (what value)
  (princ what)
  (princ "  ->  ")
  (prin1 value)
  (terpri))

(show "(sample-length \"Supply air\")" (sample-length "Supply air"))
(show "(sample-middle (0.0 0.0) (10.0 5.0 2.0))" (sample-middle '(0.0 0.0) '(10.0 5.0 2.0)))
(show "(sample-flatten (1 (\"a\" . 2.5) nil T))" (sample-flatten '(1 ("a" . 2.5) nil T)))
(show "(sample-pairs ((\"sName\" . \"M-DUCT \") (\"nColor\" . 3)))"
      (sample-pairs '(("sName" . "M-DUCT ") ("nColor" . 3))))
(show "(sample-pairs (\"s_Note\" \"kept  \" \"Size\" 40000))"
      (sample-pairs '("s_Note" "kept  " "Size" 40000)))
(show "(sample-records 2 2)" (sample-records 2 2))

;; A record list is an association list for each record.
(setq rows (sample-records 1000 3))
(show "sum of field0 over 1000 records"
      (apply '+ (mapcar '(lambda (row) (cdr (assoc "field0" row))) rows)))

;; Wrong arguments raise an error in the calling expression.
(setq failure (vl-catch-all-apply 'sample-length '(12)))
(show "(sample-length 12)" (vl-catch-all-error-message failure))
(princ)
