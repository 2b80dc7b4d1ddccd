;; Compacts a database file in its place and keeps the file as it was.
;;
;;   (compactDatabase FILE BACKUP HOW)
;;
;; BACKUP is where the file as it was is kept; with nil it stays beside the file, under its name and
;; ".bak", or ".bak2" and so on where there is one already. With a HOW of "Repair" what can be read
;; of a damaged file is saved; otherwise damage ends the work. Answers T when the file is in order
;; now. Otherwise it answers nil, says why, and the file is as it was.
;;
;; sg_connect calls this function, with nil and "Repair", for a file that can't be opened. A program
;; that defines its own takes this one's place.

(defun compactDatabase (file backup how / losses)
  (if (null backup) (setq backup (compactDatabase:backup-name file)))
  (setq losses (vl-catch-all-apply 'host-compact-database (list file backup (= how "Repair"))))
  (cond
    ((vl-catch-all-error-p losses)
      (princ (strcat "\n" file " could not be compacted: " (vl-catch-all-error-message losses)))
      nil)
    (t
      (princ (strcat "\n" file " has been compacted. The file as it was is kept as " backup))
      (foreach loss losses (princ (strcat "\n" loss)))
      t)))

;; The first name beside the file that nothing has yet.
(defun compactDatabase:backup-name (file / name number)
  (setq name (strcat file ".bak")
        number 1)
  (while (findfile name)
    (setq number (1+ number)
          name (strcat file ".bak" (itoa number))))
  name)
