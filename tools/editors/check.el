;; For tools/test_editors: what eglot gets from korv-ls, in main.kor, which includes lib.kor.
(add-to-list 'load-path (car (file-expand-wildcards "/usr/share/emacs/site-lisp/elpa/eglot-*")))
(require 'eglot)
(require 'flymake)
(define-derived-mode korv-mode prog-mode "Korv" (setq-local comment-start ";"))
(add-to-list 'auto-mode-alist '("\\.kor\\'" . korv-mode))
(add-to-list 'eglot-server-programs (list 'korv-mode (getenv "KORV_LS")))
(setq eglot-sync-connect t eglot-autoshutdown t)

(defun expect (what test)
  "Waits until TEST gives something else than nil."
  (let ((rounds 200))
    (while (and (not (funcall test)) (> (setq rounds (1- rounds)) 0))
      (accept-process-output nil 0.05))
    (when (= rounds 0)
      (message "Emacs: %s: not seen" what)
      (kill-emacs 1))
    (message "Emacs: %s" what)))

(find-file "main.kor")
(apply #'eglot (list 'korv-mode (project-current t default-directory) 'eglot-lsp-server
                     (list (getenv "KORV_LS")) "korv"))
(goto-char (point-min))
(forward-line 1)
(end-of-line)
(insert "S")
(eglot--signal-textDocument/didChange)
(expect "a message for an unsaved change"
        (lambda () (flymake-start) (seq-some (lambda (each) (string-match-p "LIMITS" (flymake-diagnostic-text each)))
                                             (flymake-diagnostics))))
(goto-char (point-min))
(search-forward "PRI")
(expect "definition"
        (lambda () (let ((found (xref-backend-definitions 'eglot (xref-backend-identifier-at-point 'eglot))))
                     (and found (string-match-p "lib.kor" (format "%s" found))))))
(eglot-shutdown (eglot-current-server))
(kill-emacs 0)
