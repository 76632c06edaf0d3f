// Splits the embedded .sql files into batches.
#include "devserver/tsql/catalogue/embedded_sql.h"

namespace devsql::embedded {

std::vector<std::string_view> Batches(std::string_view text) {
    constexpr std::string_view kEnd = "\nGO\n";
    std::vector<std::string_view> batches;
    for (std::size_t end = text.find(kEnd); end != std::string_view::npos; end = text.find(kEnd)) {
        batches.push_back(text.substr(0, end));
        text.remove_prefix(end + kEnd.size());
    }
    return batches;
}

std::string_view After(std::string_view word, std::string_view batch) {
    while (batch.starts_with("\n") || batch.starts_with("--")) {
        batch.remove_prefix(batch.find('\n') + 1);
    }
    return batch.starts_with(word) ? batch.substr(word.size()) : std::string_view();
}

} // namespace devsql::embedded
