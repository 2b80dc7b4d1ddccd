;; Signing and verifying. The file of texts was made with another program.
(load "helpers/show")
(setq f (open "../support/signatures/vectors.txt" "r"))
(while (setq name (read-line f))
  (setq texts (cons (cons name (read-line f)) texts)))
(close f)
(defun text-of (name) (cdr (assoc name texts)))
(setq fox "The quick brown fox jumps over the lazy dog")

(show '(substr (text-of "public1024") 1 60))
(show '(verifyString fox (text-of "public1024") (text-of "plain1024")))
(show '(verifyString fox (text-of "public2048") (text-of "plain2048")))
(show '(verifyString fox (text-of "public520") (text-of "plain520")))
(show '(verifyString "" (text-of "public1024") (text-of "empty1024")))
(show '(verifyString "Gr\U+00F6\U+00DFe 42 m\U+00B2" (text-of "public1024") (text-of "latin1024")))
(show '(verifyString "\U+03A9\U+03BC \U+20AC" (text-of "public1024") (text-of "clipped1024")))
(show '(verifyString "\U+20AC\U+03A9 \U+03BC" (text-of "public1024") (text-of "clipped1024")))

;; A changed text, another key, another signature, and no key at all.
(show '(verifyString (strcat fox ".") (text-of "public1024") (text-of "plain1024")))
(show '(verifyString fox (text-of "public2048") (text-of "plain1024")))
(show '(verifyString fox (text-of "public1024") (text-of "empty1024")))
(show '(verifyString fox "3,7,0,255" (text-of "plain1024")))
(show '(verifyString fox "" ""))
(show '(verifyString fox "-1,1" (text-of "plain1024")))
(show '(verifyString fox "2147483647,6,2" (text-of "plain1024")))
(show '(verifyString fox (text-of "public1024")))
(show '(verifyString nil nil nil))

;; What follows the counted numbers does not matter.
(show '(verifyString fox (strcat (text-of "public1024") ",1,2,3") (text-of "plain1024")))

;; Every signature without a key has a pair of its own.
(setq one (signString "text") two (signString "text"))
(show '(mapcar 'car one))
(show '(mapcar '(lambda (pair) (atoi (cdr pair))) one))
(show '(substr (cdr (assoc "sPublicKey" one)) 1 45))
(show '(equal (cdr (assoc "sPublicKey" one)) (cdr (assoc "sPublicKey" two))))
(defun key (name pairs) (cdr (assoc name pairs)))
(show '(verifyString "text" (key "sPublicKey" one) (key "sSign" one)))
(show '(verifyString "text" (key "sPublicKey" two) (key "sSign" one)))
(show '(verifyString "Text" (key "sPublicKey" one) (key "sSign" one)))

;; A key is taken byte per character, so the form that a result has it in does not import.
(show '(signString "text" (key "sPrivateKey" one)))
(show '(signString "text" (text-of "private1024")))
(show '(mapcar 'car (signString "" "")))
(show '(signString nil))
(show '(signString))
(princ)
