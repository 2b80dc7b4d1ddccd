#include "platform/db/plain_form.h"

ACRX_NO_CONS_DEFINE_MEMBERS(sgPlainFormPE, AcRxObject)
