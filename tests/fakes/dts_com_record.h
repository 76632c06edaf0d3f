// The record of the calls of dts_com_server.dll, and the failures that a test has set for them. Both are
// controlled by environment variables (see dts_com_server.cpp), which are read at each call.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "packages/windows/automation.h"

namespace fakes {

/// The value of an environment variable; empty if it is not set.
std::string Setting(const char* name);

/// Appends a line to the file named by KV_DTS_RECORD, if there is one.
void Record(const std::string& line);

/// Returns a call as a line of the record: the member, the flags, then each argument's type and value from
/// left to right.
std::string DescribeCall(std::string_view member, WORD flags, const DISPPARAMS& parameters,
                         bool result_wanted);

/// A failure that a test has set.
struct OrderedFailure {
    HRESULT code = E_FAIL;
    /// If it is empty, the call returns the code. Otherwise the call returns DISP_E_EXCEPTION, and the code
    /// and the description are in the exception's record (EXCEPINFO).
    std::string description;
};

/// Counts a call of the member, and returns the failure that KV_DTS_FAIL sets for it, if any.
std::optional<OrderedFailure> TakeFailure(std::string_view member);

/// Fills in an exception's record, which may be null, and returns the result of the call.
HRESULT Fail(EXCEPINFO* info, HRESULT code, std::string_view source, std::string_view description);

} // namespace fakes
