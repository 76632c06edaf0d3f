// Writes the record and reads the rules for failures.
#include "fakes/dts_com_record.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace fakes {
namespace {

std::string Hex(std::uint32_t number) {
    std::array<char, 11> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(number));
    return text.data();
}

std::string Quoted(BSTR text) {
    if (text == nullptr) {
        return "null";
    }
    const packages::Bstr copy(SysAllocStringLen(text, SysStringLen(text)));
    return "\"" + copy.Text() + "\"";
}

std::string Describe(const VARIANT& value) {
    switch (V_VT(&value)) {
    case VT_BYREF | VT_BSTR:
        return "BYREF|BSTR " + Quoted(*V_BSTRREF(&value));
    case VT_BSTR:
        return "BSTR " + Quoted(V_BSTR(&value));
    case VT_I2:
        return "I2 " + std::to_string(V_I2(&value));
    case VT_BOOL:
        return V_BOOL(&value) == VARIANT_FALSE ? "BOOL False" : "BOOL True";
    case VT_ERROR:
        return "ERROR " + Hex(static_cast<std::uint32_t>(V_ERROR(&value)));
    default:
        return "VARTYPE " + Hex(V_VT(&value));
    }
}

std::string DescribeFlags(WORD flags) {
    struct Name {
        WORD flag;
        const char* name;
    };
    constexpr std::array kNames = {Name{DISPATCH_METHOD, "METHOD"}, Name{DISPATCH_PROPERTYGET, "PROPERTYGET"},
                                   Name{DISPATCH_PROPERTYPUT, "PROPERTYPUT"},
                                   Name{DISPATCH_PROPERTYPUTREF, "PROPERTYPUTREF"}};
    std::string text;
    for (const Name& known : kNames) {
        if ((flags & known.flag) != 0) {
            text += (text.empty() ? "" : "|") + std::string(known.name);
        }
    }
    return text;
}

std::vector<std::string> Split(const std::string& text, char separator, std::size_t most) {
    std::vector<std::string> parts;
    std::size_t from = 0;
    while (parts.size() + 1 < most) {
        const std::size_t end = text.find(separator, from);
        if (end == std::string::npos) {
            break;
        }
        parts.push_back(text.substr(from, end - from));
        from = end + 1;
    }
    parts.push_back(text.substr(from));
    return parts;
}

/// One entry of KV_DTS_FAIL.
struct Rule {
    std::string member;
    int only_call = 0; ///< counted from 1; 0: every call
    OrderedFailure failure;
    int calls = 0;
};

Rule ParseRule(const std::string& entry) {
    const std::vector<std::string> parts = Split(entry, ':', 3);
    const std::vector<std::string> call = Split(parts[0], '@', 2);
    Rule rule;
    rule.member = call[0];
    rule.only_call = call.size() > 1 ? std::stoi(call[1]) : 0;
    if (parts.size() > 1) {
        rule.failure.code = static_cast<HRESULT>(std::stoul(parts[1], nullptr, 0));
    }
    rule.failure.description = parts.size() > 2 ? parts[2] : "";
    return rule;
}

/// The rules of KV_DTS_FAIL and the calls counted so far. A change of the variable's text starts the counts
/// again.
std::vector<Rule>& Rules() {
    static std::string read_from;
    static std::vector<Rule> rules;
    if (const std::string text = Setting("KV_DTS_FAIL"); text != read_from) {
        rules.clear();
        for (const std::string& entry : Split(text, ';', text.size() + 1)) {
            if (!entry.empty()) {
                rules.push_back(ParseRule(entry));
            }
        }
        read_from = text;
    }
    return rules;
}

} // namespace

std::string Setting(const char* name) {
    // This asks the system, because the C library of this DLL copied the environment when it was loaded.
    std::array<char, 32767> value{};
    const DWORD length = GetEnvironmentVariableA(name, value.data(), static_cast<DWORD>(value.size()));
    return {value.data(), length};
}

void Record(const std::string& line) {
    if (const std::string path = Setting("KV_DTS_RECORD"); !path.empty()) {
        std::ofstream(path, std::ios::binary | std::ios::app) << line << '\n';
    }
}

std::string DescribeCall(std::string_view member, WORD flags, const DISPPARAMS& parameters,
                         bool result_wanted) {
    std::string text = std::string(member) + " " + DescribeFlags(flags) + " (";
    for (UINT i = parameters.cArgs; i > 0; --i) { // the last argument comes first
        text += Describe(parameters.rgvarg[i - 1]) + (i > 1 ? ", " : "");
    }
    text += ")";
    if (parameters.cNamedArgs != 0) {
        text += " named " + std::to_string(parameters.cNamedArgs);
    }
    return text + (result_wanted ? " for its result" : "");
}

std::optional<OrderedFailure> TakeFailure(std::string_view member) {
    for (Rule& rule : Rules()) {
        if (rule.member == member && (++rule.calls == rule.only_call || rule.only_call == 0)) {
            return rule.failure;
        }
    }
    return std::nullopt;
}

HRESULT Fail(EXCEPINFO* info, HRESULT code, std::string_view source, std::string_view description) {
    if (description.empty()) {
        return code;
    }
    if (info != nullptr) {
        *info = {};
        info->scode = code;
        info->bstrSource = packages::Bstr(source).Release();
        info->bstrDescription = packages::Bstr(description).Release();
    }
    return DISP_E_EXCEPTION;
}

} // namespace fakes
