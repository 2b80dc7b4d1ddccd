; A comment to the end of the line, (with parens "and quotes
(princ "one") ; after a form
;| A comment over
   several lines (with "everything in it |;
(princ ;| inside a form |; " two")
(princ " ;not a comment") ;;;; done
(princ " ;| nor this |;")
(terpri)
(prin1 '(a;comment ends the symbol
b)) (terpri)
(prin1 (list 'UPPER 'Lower 'a.b '1+ '-x '+ '1a 1.5e1)) (terpri)
(princ)
