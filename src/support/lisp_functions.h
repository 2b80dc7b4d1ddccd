#pragma once

// The LISP functions for archives, downloads, signatures, files and folders, and for the support's
// dialogs, as implementations for the call guard.
namespace sg {

// (CreateZip archive patterns): T when every pattern was appended, also when the archive could then
// not be written; nil when one was not; no value when the archive cannot be begun.
int createZip();

// (ExtractZip archive folder): T when everything was unpacked.
int extractZip();

// (DownloadFile address file): no value, whatever happens.
int downloadFile();

// (signString text [private-key]): the pairs "sPublicKey", "sPrivateKey" and "sSign", or no value.
int signString();

// (verifyString text public-key signature): T when the signature is valid, otherwise nil.
int verifyString();

// (CFileDialog open title path extensions [confirm-replacing] [must-exist]): the chosen file's full
// path, or no value.
int fileDialog();

// (XFolderDialog title folder): the chosen folder's full path, or no value.
int folderDialog();

// (qn_qn-submitBug mode suffix log-folder system-text [attachments]): no value.
int submitBug();

// (EditUserOptions discipline [edition]): no value.
int editUserOptions();

// (ed_editMultilineText text [title]): the edited text, or no value when it is cancelled.
int editMultilineText();

// (qn_qn-safeContinue title prompt word): T when the word was typed, otherwise nil.
int safeContinue();

}  // namespace sg
