;; A module that is not found: where it was looked for.
(arxload "no_such_module.arx")
