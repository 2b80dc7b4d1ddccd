#pragma once

#include "host/editor/documents.h"
#include "host/editor/prompts/prompter.h"
#include "host/seam/host.h"

namespace sg {

// Where prompts of a document lead.
inline Prompter::Place promptPlace(Host& host, Document& document) {
    return {host.input(), host.output(), document.systemVariables(), *document.database(),
            document.selection()};
}

}  // namespace sg
