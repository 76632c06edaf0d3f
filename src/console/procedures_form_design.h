// The controls of frmStoredProcedures, the dialog that runs one stored procedure.
#pragma once

#include "ui/design.h"

namespace kv {

const ui::FormDesign& ProceduresFormDesign();

} // namespace kv
