#include "host/editor/command_line_output.h"
#include "host/editor/input_source.h"
#include "host/seam/host.h"
#include "platform/ui/scripted.h"

// platform/ui on the Host, but for the dialogs themselves, which are in host/ui.

void sgRunDialog(sg::ui::ScriptedDialog& dialog) {
    sg::Host& host = sg::Host::the();
    host.input().dialog({dialog, [&](const std::wstring& text) { host.output().print(text); }});
}
