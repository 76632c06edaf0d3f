// Fuzzes the query tool's command line. The input is a list of arguments separated by NUL. A line is
// accepted, or refused with a text that gives the reason; nothing may be thrown.
#include "fuzz/input.h"
#include "querytool/switches.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    const querytool::ParsedLine line = querytool::ParseSwitches(fuzz::Split(text, '\0'));
    fuzz::Require(!line.error || !line.error->empty(), "a refusal has its text");
    fuzz::Require(line.error || line.switches.width > 0, "a line that is taken has a width");
    fuzz::Require(line.error || !line.switches.terminator.empty(), "a line that is taken has a terminator");
    return 0;
}
