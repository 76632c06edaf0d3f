// Requests and checks the stop of a session's running call.
#include "devserver/tsql/session/interruption.h"

#include "devserver/storage/sqlite.h"

namespace devsql {

void Interruption::Request() {
    requested_ = true;
    const std::lock_guard lock(mutex_);
    if (blocks_ == 0) {
        connection_.Interrupt();
    }
}

void Interruption::Check() const {
    if (requested_) {
        throw Cancelled{};
    }
}

Interruption::Block::Block(Interruption& interruption) : interruption_(interruption) {
    const std::lock_guard lock(interruption_.mutex_);
    ++interruption_.blocks_;
}

Interruption::Block::~Block() {
    const std::lock_guard lock(interruption_.mutex_);
    --interruption_.blocks_;
}

} // namespace devsql
