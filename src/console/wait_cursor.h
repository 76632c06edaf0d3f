// CWaitCursor: shows the hourglass as long as the object lives.
#pragma once

#include <cstdint>

#include "platform/pending_events.h"

namespace kv {

/// Objects can be nested: each restores the mouse pointer that it found.
class CWaitCursor {
  public:
    /// Also runs pending events, so that the hourglass is shown at once.
    CWaitCursor() : pointer_(platform::MousePointer()) {
        platform::SetMousePointer(platform::kHourglassPointer);
        platform::RunPendingEvents();
    }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
    ~CWaitCursor() { platform::SetMousePointer(pointer_); }

  private:
    std::int16_t pointer_; ///< the pointer to restore
};

} // namespace kv
