// Fuzzes the reading of a registry file. Only RegDamage may be thrown. An unchanged file must be written as
// it was read, and a value that is set must be in the file that is written.
#include "fuzz/input.h"
#include "registry/linux/reg_file.h"

namespace {

constexpr char kValue[] = "PWD";
constexpr std::uint32_t kText = 1;

void ChangeAndReadAgain(registry::RegFile file) {
    const auto key = registry::MakeRegPath(u"HKEY_LOCAL_MACHINE", "SOFTWARE\\Orvik");
    file.AddKey(key, "");
    file.SetValue(key, kValue, kText, "a \\ \" text");
    const registry::RegFile again(file.Bytes());
    fuzz::Require(again.HasKey(key), "a key that was made is there");
    const registry::RegValue* const value = again.Find(key, kValue);
    fuzz::Require(value != nullptr && value->type == kText, "a value that was set is there");
    fuzz::Require(value->bytes == std::string("a \\ \" text") + '\0', "and holds its text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    try {
        const registry::RegFile file(text);
        fuzz::Require(file.Bytes() == text, "an unchanged file is written as it was");
        ChangeAndReadAgain(file);
    } catch (const registry::RegDamage& damage) {
        fuzz::Require(damage.what()[0] != '\0', "a damage has its text");
    }
    return 0;
}
