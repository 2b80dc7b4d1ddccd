; Packs the files of a job into one archive, and unpacks it again to see that it is whole.
;
;   swiftgate run examples/office/archive.lsp --path examples/office -- job.zip FOLDER FILE...
;
; The files are packed without their folders. FOLDER must not exist; what is unpacked stays there.

(load "tools")

(defun base-name (path) (strcat (vl-filename-base path) (vl-filename-extension path)))

(defun unpacked-size (folder path) (vl-file-size (strcat folder "/" (base-name path))))

; Ends the program when a file has not come out of the archive as long as it went in.
(defun compare-file (folder path)
  (if (/= (vl-file-size path) (unpacked-size folder path))
    (fail (strcat (base-name path) " is not in the archive as it was"))))

(defun make-archive (archive files)
  (foreach file files (needed-file file "a file to pack"))
  (if (not (and (CreateZip archive files) (findfile archive)))
    (fail (strcat archive " could not be made"))))

(defun try-archive (archive folder files)
  (if (findfile folder) (fail (strcat folder " is there already")))
  (if (null (ExtractZip archive folder)) (fail (strcat archive " cannot be unpacked")))
  (foreach file files (compare-file folder file)))

(defun archive-job (archive folder files)
  (if (null files) (fail "Name an archive, a folder and files behind --"))
  (make-archive archive files)
  (try-archive archive folder files)
  (princ (strcat "\n" archive ": " (itoa (length files)) " files, "
                 (rtos (/ (vl-file-size archive) 1024.0) 2 0) " KB\n")))

(archive-job (car (host-arguments)) (cadr (host-arguments)) (cddr (host-arguments)))
(princ)
