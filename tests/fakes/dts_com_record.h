// The record of the calls of the replaced package classes, and the failures that a test has set for them.
// Both are controlled by environment variables, which are read at each call: see dts_com_server.cpp.
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

/// A call in the form of the record: flags, then each argument's type and value in reading order.
std::string DescribeCall(std::string_view member, WORD flags, const DISPPARAMS& parameters,
                         bool result_wanted);

struct OrderedFailure {
    HRESULT code = E_FAIL;
    /// If empty, the code is the result of the call. Otherwise the result is DISP_E_EXCEPTION and the code is
    /// in the exception's record.
    std::string description;
};

/// The failure that KV_DTS_FAIL sets for this call of the member, if any.
std::optional<OrderedFailure> TakeFailure(std::string_view member);

/// Fills in an exception's record, which may be null, and returns the result of the call.
HRESULT Fail(EXCEPINFO* info, HRESULT code, std::string_view source, std::string_view description);

} // namespace fakes
