#pragma once

// The sg_ functions as the call guard runs them; docs/functions/sg.md tells what they do.
namespace sg {

// The product's extended data on entities.
int xdPutList();
int xdGet();
int xdGetList();
int xdGetAll();

// Files and folders.
int fileCopy();
int fileCopyIfChanged();
int fileMove();
int fileDelete();
int fileDirectory();
int makeDirectory();
int removeDirectory();

// Sounds, message boxes and random numbers.
int beep();
int messageBeep();
int messageBox();
int randomNumber();

}  // namespace sg
