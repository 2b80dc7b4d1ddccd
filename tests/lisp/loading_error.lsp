;; An error in a loaded file tells both places.
(load "helpers/fails")
