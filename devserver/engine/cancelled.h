// The exception that ends whatever a session runs. It is no error: nothing is sent to the client for it.
#pragma once

namespace devsql {

/// Thrown when a running statement notices that the client has cancelled it (Session::Cancel), or that
/// another session has ended this one.
struct Cancelled {};

} // namespace devsql
