#pragma once

#include <cstdint>

// Offers to fetch an installer when the machine lacks something the product needs.
namespace sg {

// The database engine could not be started.
void offerDatabaseDrivers();

// A dialog could not be created.
void offerDialogComponents();

// Called with the result of every modal dialog and answers it unchanged. -1 and 3 mean that the
// dialog could not be created: offerDialogComponents is called.
intptr_t checkDialogResult(intptr_t result);

}  // namespace sg
