;; The shell, folders, dialogs, the window and the status bar.
(load "helpers/show")
(setq temp (GetTempPath))
(foreach form
  '((= temp (strcat (getenv "TEMP") "/")) (GetComputerName)
    (numberp (GetSystemMetrics::SM_CXSCREEN)) (> (GetSystemMetrics::SM_CYSCREEN) 0)
    (strlen (CreateCompressedGuidString))
    (= (CreateCompressedGuidString) (CreateCompressedGuidString))
    (PathIsNetworkPath "/") (PathIsNetworkPath "\\\\server\\jobs") (PathIsNetworkPath 5) (PathIsNetworkPath)
    (IsFileReadOnly "shell.lsp") (IsFileReadOnly "none.lsp") (IsFileReadOnly nil))
  (show form))

;; Folders.
(foreach keyword '("WINDOWS" "SYSTEM" "PROGRAM_FILES_COMMON" "DESKTOP" "desktop" "FONTS" 16)
  (show (list 'qn_qn-SHGetFolderPath keyword)))
(show '(wcmatch (qn_qn-SHGetFolderPath "FLAG_CREATE") "*/home/Desktop"))
(show '(wcmatch (qn_qn-SHGetFolderPath "DESKTOP") "*/home/Desktop"))
(show '(wcmatch (qn_qn-SHGetFolderPath "LOCAL_APPDATA") "*/home/`.local/share"))

;; Nothing can be opened here.
(foreach form
  '((qn_qn-shellExecute "open" "shell.lsp" "SHOWNORMAL") (qn_qn-shellExecute "open" "shell.lsp")
    (qn_qn-shellExecute "print" "shell.lsp" "HIDE") (qn_qn-shellExecute "open" 5 "HIDE")
    (qn_qn-SHOpenFolderAndSelect temp '("a" "")) (qn_qn-SHOpenFolderAndSelect temp nil)
    (qn_qn-SHOpenFolderAndSelect nil) (qn_qn-showHelp))
  (show form))

;; The registry.
(foreach path '("HKEY_CURRENT_USER\\Software\\Quillon Software\\" "HKEY_CURRENT_USER\\Software\\Quillon Software"
                "HKEY_CURRENT_USER" "HKEY_CURRENT_USER\\Software\\None" "hkey_current_user" "HKEY_DYN_DATA"
                "Software" "" 5)
  (show (list 'RegEnumKey path)))
(show '(progn (vl-registry-delete "HKEY_CURRENT_USER\\Software\\Quillon Software\\HVAC")
              (RegEnumKey "HKEY_CURRENT_USER\\Software\\Quillon Software")))

;; Files: what the script answers, what must be there, and what would be replaced.
(close (open (strcat temp "plan.dxf") "w"))
(foreach form
  '((CFileDialog T "Open" temp "dxf;dwg" T T) (CFileDialog T "Open" temp "dxf" T T)
    (CFileDialog T "Open" temp "*") (CFileDialog nil "Save" (strcat temp "new.dxf") "dxf")
    (CFileDialog nil "Save" (strcat temp "new.dxf") "dxf") (CFileDialog nil "Save" temp "dxf" nil)
    (CFileDialog nil "Save" temp "dxf") (CFileDialog T 5 "" "") (CFileDialog))
  (show form))
(foreach form
  '((XFolderDialog "Job" temp) (XFolderDialog "" "") (XFolderDialog "Job"))
  (show form))
(show '(vl-registry-read "HKEY_CURRENT_USER\\Software\\Swift Gate\\FolderHistory" "Last"))

;; The window and the status bar.
(foreach form
  '((qn_qn-getAcadWindowText) (qn_qn-setAcadWindowText "Job 12") (qn_qn-getAcadWindowText)
    (qn_qn-setAcadWindowText nil) (qn_qn-disableAutoCADWindow) (qn_qn-enableAutoCADWindow)
    (acedSetStatusBarProgressMeterPos 1) (acedSetStatusBarProgressMeter "Ducts" 10 5)
    (acedSetStatusBarProgressMeter "Ducts" 0 5) (acedSetStatusBarProgressMeterPos 3)
    (acedSetStatusBarProgressMeterPos 3.9) (acedSetStatusBarProgressMeterPos "3")
    (acedSetStatusBarProgressMeter "Ducts" 0) (acedRestoreStatusBar) (acedSetStatusBarProgressMeterPos 3))
  (show form))
(princ)
