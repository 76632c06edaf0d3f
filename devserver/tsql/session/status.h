// The results of the last statements that later ones can ask for: @@ERROR, @@ROWCOUNT and the like.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "devserver/engine/engine.h"

namespace devsql {

namespace ast {
struct InsertBulkStatement;
}

struct Status {
    std::int32_t line = 1; ///< of the running statement
    std::int32_t last_error = 0;
    std::int64_t row_count = 0;
    std::int64_t fetch_status = 0;
    std::vector<Message> caught; ///< the errors that the running CATCH blocks look at, the innermost last
    /// The INSERT BULK whose rows the client sends next; null for none.
    std::shared_ptr<const ast::InsertBulkStatement> bulk;
};

} // namespace devsql
