; Signs a text file of one line, such as a checksum, and verifies that signature later.
;
;   sha256sum job.zip > job.sha256
;   swiftgate run examples/office/signature.lsp --path examples/office -- sign job.sha256
;   swiftgate run examples/office/signature.lsp --path examples/office -- verify job.sha256
;
; The signature goes to FILE.signature: the public key in the first line, the signature in the
; second. Each file is signed with a key of its own, which nobody keeps: whoever has the public key
; from the office can tell that neither file nor signature has been exchanged.

(load "tools")

; The first lines of a text file, as many as asked for.
(defun first-lines (path count / file lines)
  (setq file (open (needed-file path "a text file") "r"))
  (repeat count (setq lines (cons (read-line file) lines)))
  (close file)
  (reverse lines))

(defun write-lines (path lines / file)
  (setq file (open path "w"))
  (if (null file) (fail (strcat path " cannot be written")))
  (foreach line lines (write-line line file))
  (close file))

(defun signature-file (path) (strcat path ".signature"))

(defun sign-file (path / signed)
  (setq signed (signString (car (first-lines path 1))))
  (if (null signed) (fail (strcat path " cannot be signed")))
  (write-lines (signature-file path)
               (list (value-of "sPublicKey" signed) (value-of "sSign" signed)))
  (princ (strcat "\n" path " is signed\n")))

; The signature must belong to the text, and to no other.
(defun verify-file (path / text signature)
  (setq text (car (first-lines path 1))
        signature (first-lines (signature-file path) 2))
  (if (not (verifyString text (car signature) (cadr signature)))
    (fail (strcat path ": the signature is not that of the file")))
  (if (verifyString (strcat text " ") (car signature) (cadr signature))
    (fail (strcat path ": the signature is that of another file too")))
  (princ (strcat "\n  ok       " path ": the signature is the file's\n")))

(defun sign-or-verify (what path)
  (cond ((= what "sign") (sign-file path))
        ((= what "verify") (verify-file path))
        (T (fail "Name sign or verify, and a file, behind --"))))

(sign-or-verify (car (host-arguments)) (cadr (host-arguments)))
(princ)
